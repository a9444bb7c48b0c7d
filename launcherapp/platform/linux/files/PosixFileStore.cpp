#include "launcherapp/platform/linux/files/PosixFileStore.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/SaveLeftover.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tessarine {

namespace {

constexpr mode_t ownersFile = 0600;
constexpr mode_t ownersFolder = 0700;
constexpr mode_t permissionBits = 07777;
/// Of a file that is read piece by piece: small enough for the processor's caches.
constexpr std::size_t pieceBytes = std::size_t{1} << 18;

[[noreturn]] void fail(const std::string& path, const char* what, int error) {
    throw FileError(path + " could not be " + what + ": " + std::generic_category().message(error));
}

/// Where a chain of links leads, whether or not something is there. What can't be followed to its
/// end stays the link at which it stopped.
std::string linksTarget(std::string path) {
    constexpr int longestChain = 40; // the kernel's own limit (path_resolution(7))
    for (int i = 0; i < longestChain; ++i) {
        std::error_code error;
        const auto link = std::filesystem::read_symlink(path, error);
        if (error)
            break; // no link, or nothing at all
        path = link.is_absolute() ? link.string()
                                  : std::string(Paths::parent(path)) + '/' + link.string();
    }
    return path;
}

FileKind kindOf(mode_t mode) {
    if (S_ISREG(mode))
        return FileKind::file;
    return S_ISDIR(mode) ? FileKind::directory : FileKind::other;
}

/// Writes everything; 0, or the error that stopped it.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// A new file beside the target, gone again unless it has taken the target's place.
class ReplacementFile {
public:
    explicit ReplacementFile(const std::string& target)
        : path_(target + std::string(SaveLeftover::mark) + std::string(SaveLeftover::pattern)),
          file_(::mkostemp(path_.data(), O_CLOEXEC)) {
        if (!file_)
            fail(target, "saved", errno);
    }

    ~ReplacementFile() {
        if (file_)
            ::unlink(path_.c_str());
    }

    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    int add(std::string_view bytes) { return writeAll(file_.number(), bytes); }

    int setMode(mode_t mode) { return ::fchmod(file_.number(), mode) == 0 ? 0 : errno; }

    /// Waits until the disk has it.
    int flush() { return ::fsync(file_.number()) == 0 ? 0 : errno; }

    int takePlaceOf(const std::string& target) {
        if (::rename(path_.c_str(), target.c_str()) != 0)
            return errno;
        file_ = {};
        return 0;
    }

private:
    std::string path_;
    FileDescriptor file_;
};

/// Makes the new name in the folder survive a crash of the machine, as far as it can.
void flushFolder(const std::string& folder) {
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        (void)::fsync(opened.number());
}

struct OpenedFile {
    FileDescriptor file; ///< none when there is none of the path
    std::uint64_t sizeBytes = 0;
};

/// A regular file to be read.
OpenedFile openedForReading(const std::string& path) {
    // A pipe or a device would make an ordinary open wait, or do something.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) {
        if (errno == ENOENT || errno == ENOTDIR)
            return {};
        fail(path, "read", errno);
    }

    struct stat status {};

    if (::fstat(file.number(), &status) != 0)
        fail(path, "read", errno);
    if (!S_ISREG(status.st_mode))
        throw FileError(path + " could not be read: it is no regular file");
    return {.file = std::move(file), .sizeBytes = static_cast<std::uint64_t>(status.st_size)};
}

/// Where a save goes, and the mode that the file keeps.
struct SaveTarget {
    std::string path;
    mode_t mode = ownersFile;
};

SaveTarget preparedTarget(const std::string& path, PosixFileStore& files) {
    // A link stays a link: what it leads to is replaced.
    SaveTarget target{.path = linksTarget(path)};
    files.makeDirectories(std::string(Paths::parent(target.path)));

    struct stat old {};

    if (::stat(target.path.c_str(), &old) != 0) {
        if (errno != ENOENT)
            fail(path, "saved", errno);
        return target;
    }
    if (!S_ISREG(old.st_mode))
        throw FileError(path + " could not be saved: it is no regular file");
    target.mode = old.st_mode & permissionBits;
    return target;
}

} // namespace

std::optional<std::string> PosixFileStore::read(const std::string& path,
                                                std::size_t limitBytes) const {
    const auto opened = openedForReading(path);
    if (!opened.file)
        return std::nullopt;

    // One byte more than the size tells that the file has grown meanwhile.
    std::string bytes;
    std::size_t length = 0;
    for (;;) {
        if (length > limitBytes)
            throw FileError(path + " could not be read: it is larger than " +
                            std::to_string(limitBytes) + " bytes");
        if (length == bytes.size())
            bytes.resize(length == 0 ? static_cast<std::size_t>(
                                           std::min<std::uint64_t>(opened.sizeBytes, limitBytes)) +
                                           1
                                     : length * 2);
        const auto got = ::read(opened.file.number(), bytes.data() + length, bytes.size() - length);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            fail(path, "read", errno);
        if (got == 0)
            break;
        length += static_cast<std::size_t>(got);
    }
    bytes.resize(length);
    return bytes;
}

void PosixFileStore::save(const std::string& path, std::string_view bytes) {
    const auto target = preparedTarget(path, *this);
    ReplacementFile replacement(target.path);
    if (const int error = replacement.add(bytes))
        fail(path, "saved", error);
    if (const int error = replacement.setMode(target.mode))
        fail(path, "saved", error);
    if (const int error = replacement.flush())
        fail(path, "saved", error);
    if (const int error = replacement.takePlaceOf(target.path))
        fail(path, "saved", error);
    flushFolder(std::string(Paths::parent(target.path)));
}

bool PosixFileStore::readPieces(const std::string& path,
                                const std::function<bool(std::string_view)>& take) const {
    const auto opened = openedForReading(path);
    if (!opened.file)
        return false;
    std::string piece(pieceBytes, '\0');
    for (;;) {
        const auto got = ::read(opened.file.number(), piece.data(), piece.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            fail(path, "read", errno);
        if (got == 0 || !take(std::string_view(piece).substr(0, static_cast<std::size_t>(got))))
            return true;
    }
}

void PosixFileStore::savePieces(const std::string& path,
                                const std::function<std::optional<std::string_view>()>& next) {
    const auto target = preparedTarget(path, *this);
    ReplacementFile replacement(target.path);
    while (const auto piece = next()) {
        if (const int error = replacement.add(*piece))
            fail(path, "saved", error);
    }
    if (const int error = replacement.setMode(target.mode))
        fail(path, "saved", error);
    if (const int error = replacement.takePlaceOf(target.path))
        fail(path, "saved", error);
}

void PosixFileStore::append(const std::string& path, std::string_view bytes) {
    const FileDescriptor file(
        ::open(path.c_str(),
               O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC,
               ownersFile));
    if (!file)
        fail(path, "opened", errno);
    if (const int error = writeAll(file.number(), bytes))
        fail(path, "written", error);
}

std::optional<std::vector<DirectoryEntry>> PosixFileStore::entries(const std::string& path) const {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), ::closedir);
    if (!folder)
        return std::nullopt;
    std::vector<DirectoryEntry> result;
    while (const dirent* entry = ::readdir(folder.get())) {
        DirectoryEntry found{.name = entry->d_name};
        if (found.name == "." || found.name == "..")
            continue;
        found.isLink = entry->d_type == DT_LNK;
        if (entry->d_type == DT_REG) {
            found.kind = FileKind::file;
        } else if (entry->d_type == DT_DIR) {
            found.kind = FileKind::directory;
        } else if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
            // Some file systems tell no types; then the entry itself says whether it is a link.
            struct stat status {};

            const int directory = ::dirfd(folder.get());
            if (::fstatat(directory, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
                found.isLink = S_ISLNK(status.st_mode);
            if (::fstatat(directory, entry->d_name, &status, 0) == 0)
                found.kind = kindOf(status.st_mode);
        }
        result.push_back(std::move(found));
    }
    return result;
}

std::optional<FileInfo> PosixFileStore::info(const std::string& path) const {
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return FileInfo{.kind = kindOf(status.st_mode),
                    .sizeBytes = static_cast<std::uint64_t>(status.st_size),
                    .modified = static_cast<double>(status.st_mtim.tv_sec) +
                                static_cast<double>(status.st_mtim.tv_nsec) * 1e-9,
                    .executable = ::access(path.c_str(), X_OK) == 0};
}

std::optional<std::string> PosixFileStore::realPath(const std::string& path) const {
    const std::unique_ptr<char, void (*)(void*)> resolved(::realpath(path.c_str(), nullptr),
                                                          ::free);
    if (!resolved)
        return std::nullopt;
    return std::string(resolved.get());
}

void PosixFileStore::makeDirectories(const std::string& path) {
    if (::mkdir(path.c_str(), ownersFolder) == 0)
        return;
    const int error = errno;

    struct stat status {};

    if (error == EEXIST && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return;
    if (error != ENOENT || path == "/")
        fail(path, "made", error);
    makeDirectories(std::string(Paths::parent(path)));
    // Another process may have made it in between.
    if (::mkdir(path.c_str(), ownersFolder) != 0 && errno != EEXIST)
        fail(path, "made", errno);
}

void PosixFileStore::rename(const std::string& from, const std::string& to) {
    if (::rename(from.c_str(), to.c_str()) != 0)
        fail(from, "renamed", errno);
}

void PosixFileStore::remove(const std::string& path) {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (error && error != std::errc::no_such_file_or_directory)
        fail(path, "removed", error.value());
}

} // namespace tessarine
