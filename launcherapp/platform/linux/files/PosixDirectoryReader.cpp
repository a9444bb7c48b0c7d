#include "launcherapp/platform/linux/files/PosixDirectoryReader.h"

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace tessarine {

namespace {

/// As much as the C library's own reader asks for; a directory of ordinary size is one call.
constexpr std::size_t bufferBytes = 32768;

/// What the kernel's record of an entry takes at least; a name of some length takes 40. Half of a
/// buffer of them is names at most, unless they are very long.
constexpr std::size_t ordinaryRecordBytes = 32;

/// Opens a path that is longer than the kernel takes at once, piece by piece.
FileDescriptor openInPieces(std::string_view path, int flags) {
    FileDescriptor above(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    path.remove_prefix(1);
    while (above && path.size() >= PATH_MAX) {
        const auto cut = path.rfind('/', PATH_MAX - 2);
        if (cut == std::string_view::npos) {
            errno = ENAMETOOLONG;
            return {};
        }
        const std::string piece(path.substr(0, cut));
        above = FileDescriptor(
            ::openat(above.number(), piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        path.remove_prefix(cut + 1);
    }
    if (!above)
        return {};
    return FileDescriptor(::openat(above.number(), std::string(path).c_str(), flags));
}

/// Never follows a link in the last place.
FileDescriptor openPath(const std::string& path, int flags) {
    flags |= O_NOFOLLOW | O_CLOEXEC;
    if (path.size() >= PATH_MAX && path.front() == '/')
        return openInPieces(path, flags);
    return FileDescriptor(::open(path.c_str(), flags));
}

/// For file systems that don't tell the kind with the name.
bool isDirectory(int directory, const char* name) {
    struct stat status {};

    return ::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

std::optional<DirectoryListing> PosixDirectoryReader::list(const std::string& path) const {
    const auto directory = openPath(path, O_RDONLY | O_DIRECTORY);
    if (!directory)
        return std::nullopt;
    DirectoryListing listing;
    alignas(dirent64) char buffer[bufferBytes];
    for (;;) {
        const auto filled = ::getdents64(directory.number(), buffer, sizeof buffer);
        if (filled < 0 && errno == EINTR)
            continue;
        if (filled < 0) {
            if (listing.size() == 0)
                return std::nullopt;
            listing.markPartial();
            break;
        }
        if (filled == 0)
            break;
        if (listing.size() == 0)
            listing.reserve(static_cast<std::size_t>(filled) / ordinaryRecordBytes,
                            static_cast<std::size_t>(filled) / 2);
        for (ssize_t at = 0; at < filled;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
            at += entry->d_reclen;
            const char* name = static_cast<const char*>(entry->d_name);
            if (name[0] == '.' || name[0] == '\0')
                continue;
            listing.add(name,
                        entry->d_type == DT_DIR ||
                            (entry->d_type == DT_UNKNOWN && isDirectory(directory.number(), name)));
        }
    }
    listing.sort();
    return listing;
}

bool PosixDirectoryReader::isLink(const std::string& path) const {
    const auto file = openPath(path, O_PATH);

    struct stat status {};

    return file && ::fstat(file.number(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool PosixDirectoryReader::isGone(const std::string& path) const {
    const auto file = openPath(path, O_PATH);
    // Any other failure is of the way there: out of descriptors, not permitted, no answer.
    if (!file)
        return errno == ENOENT || errno == ENOTDIR || errno == ELOOP;

    struct stat status {};

    return ::fstat(file.number(), &status) == 0 && !S_ISDIR(status.st_mode);
}

} // namespace tessarine
