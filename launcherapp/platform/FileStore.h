#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A file operation that failed; `what()` is a sentence for the user, with the path in it.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class FileKind { file, directory, other };

struct FileInfo {
    FileKind kind = FileKind::other;
    std::uint64_t sizeBytes = 0;
    double modified = 0;     ///< seconds since 1970, UTC
    bool executable = false; ///< the user may execute it (a file) or enter it (a directory)

    bool operator==(const FileInfo&) const = default;
};

struct DirectoryEntry {
    std::string name;
    FileKind kind = FileKind::other; ///< of what a symbolic link leads to; `other` if nowhere
    bool isLink = false;

    bool operator==(const DirectoryEntry&) const = default;
};

/// Whole files and folders by absolute path. Any thread; each call waits for the disk, so on the
/// main thread only small files at start-up.
class FileStore {
public:
    virtual ~FileStore() = default;

    /// The bytes of a regular file, through links; nothing when there is none of this path.
    /// Throws FileError when it can't be read, is no regular file, or is larger than `limitBytes`.
    virtual std::optional<std::string> read(const std::string& path,
                                            std::size_t limitBytes) const = 0;

    /// Makes `bytes` the file's whole content at once: whoever reads it, and whatever interrupts
    /// the save, finds the old content or the new. A link is followed, the file's mode kept.
    /// Missing folders are made. Throws FileError, and then the old content stands.
    virtual void save(const std::string& path, std::string_view bytes) = 0;

    /// Reads a regular file piece by piece, for what is too large to be held whole: `take` gets
    /// each in turn, and ends the reading by giving false. False when there is no file of this
    /// path. Throws FileError as `read` does.
    virtual bool readPieces(const std::string& path,
                            const std::function<bool(std::string_view piece)>& take) const = 0;

    /// As `save`, for content that is made piece by piece: `next` gives each, and nothing at the
    /// end. It is not waited for until the disk has it, so that after a crash of the machine the
    /// file may be damaged: for what can be made again.
    virtual void savePieces(const std::string& path,
                            const std::function<std::optional<std::string_view>()>& next) = 0;

    /// Adds `bytes` at the end in one write, creating the file readable by its owner alone.
    /// Throws FileError.
    virtual void append(const std::string& path, std::string_view bytes) = 0;

    /// What a folder holds, in no order, without "." and "..". Nothing when it is no folder or
    /// can't be read.
    virtual std::optional<std::vector<DirectoryEntry>> entries(const std::string& path) const = 0;

    /// Follows links; nothing when the path leads nowhere.
    virtual std::optional<FileInfo> info(const std::string& path) const = 0;

    /// The path with every link resolved; nothing when it leads nowhere.
    virtual std::optional<std::string> realPath(const std::string& path) const = 0;

    /// Makes a folder and those above it, each for the owner alone. Throws FileError.
    virtual void makeDirectories(const std::string& path) = 0;

    /// Gives a file another name, over whatever has it. Throws FileError.
    virtual void rename(const std::string& from, const std::string& to) = 0;

    /// Removes a file, or a folder with all it holds; an absent path is no error. Links are
    /// removed, not followed. Throws FileError.
    virtual void remove(const std::string& path) = 0;
};

} // namespace tessarine
