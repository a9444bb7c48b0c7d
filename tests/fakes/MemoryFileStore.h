#pragma once

#include "launcherapp/platform/FileStore.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessarine {

/// A small file system in memory: folders, files, symbolic links, permissions. Paths are absolute
/// and without "." or ".."; a link's target may be relative to its folder.
class MemoryFileStore : public FileStore {
public:
    MemoryFileStore();

    // Building a tree.
    void file(const std::string& path, std::string_view bytes);
    void folder(const std::string& path);
    void link(const std::string& path, std::string target);

    void makeExecutable(const std::string& path) { node(path)->executable = true; }

    /// Reading and changing what is at the path fails from now on, or no more.
    void forbid(const std::string& path) { forbidden_.insert(path); }

    void allow(const std::string& path) { forbidden_.erase(path); }

    /// What the clock says for files written from now on.
    double now = 0;
    /// Called before each listing, so that a test can change the tree under a walk.
    std::function<void(const std::string& path)> beforeEntries;
    mutable int reads = 0; ///< whole files read so far

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

private:
    struct Node {
        enum class Type { file, folder, link } type = Type::file;
        std::string content; ///< a file's bytes, a link's target
        double modified = 0;
        bool executable = false;
    };

    /// Null when the path leads nowhere; does not follow a link in the last place.
    Node* node(const std::string& path);
    const Node* node(const std::string& path) const;
    bool isForbidden(const std::string& resolved) const;
    std::optional<std::string> resolve(const std::string& path, int linksLeft) const;

    std::map<std::string, Node> nodes_; ///< by path without links
    std::set<std::string> forbidden_;
};

} // namespace tessarine
