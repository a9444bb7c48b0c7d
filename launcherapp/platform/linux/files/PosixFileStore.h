#pragma once

#include "launcherapp/platform/FileStore.h"

namespace tessarine {

/// The file store over the file system of the machine. Without state; any thread.
class PosixFileStore : public FileStore {
public:
    std::optional<std::string> read(const std::string& path, std::size_t limitBytes) const override;
    void save(const std::string& path, std::string_view bytes) override;
    bool readPieces(const std::string& path,
                    const std::function<bool(std::string_view piece)>& take) const override;
    void savePieces(const std::string& path,
                    const std::function<std::optional<std::string_view>()>& next) override;
    void append(const std::string& path, std::string_view bytes) override;
    std::optional<std::vector<DirectoryEntry>> entries(const std::string& path) const override;
    std::optional<FileInfo> info(const std::string& path) const override;
    std::optional<std::string> realPath(const std::string& path) const override;
    void makeDirectories(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void remove(const std::string& path) override;
};

} // namespace tessarine
