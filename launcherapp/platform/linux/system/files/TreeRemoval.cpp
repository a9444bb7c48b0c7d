#include "launcherapp/platform/linux/system/files/TreeRemoval.h"

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <fmt/format.h>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace tessarine {

namespace {

/// Each level keeps a folder open, and a process has 1024 descriptors by default.
constexpr int deepest = 256;

std::string inWords(const std::string& name, int error) {
    if (error == EXDEV)
        return fmt::format("{} holds another mounted file system", name);
    return fmt::format("{}: {}", name, std::generic_category().message(error));
}

/// The root of a mount, a folder bound onto another place of the same file system too. Kernels
/// before 5.8 don't tell of those; the device tells of all others.
bool isMounted(int folder, int parent) {
    struct statx here {};

    struct statx above {};

    if (::statx(folder, "", AT_EMPTY_PATH, STATX_BASIC_STATS, &here) != 0 ||
        ::statx(parent, "", AT_EMPTY_PATH, STATX_BASIC_STATS, &above) != 0)
        return true;
    return (here.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0 ||
           here.stx_dev_major != above.stx_dev_major || here.stx_dev_minor != above.stx_dev_minor;
}

/// What was thrown away may be a folder that its owner may not change: it goes all the same.
void makeWritable(int parent, const std::string& name) {
    const FileDescriptor folder(
        ::openat(parent, name.c_str(), O_PATH | O_NOFOLLOW | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        ::chmod(fmt::format("/proc/self/fd/{}", folder.number()).c_str(), S_IRWXU);
}

std::optional<std::string> removeBelow(int parent, const std::string& name, int depth);

std::optional<std::string> emptyFolder(int parent, const std::string& name, int depth) {
    if (depth == deepest)
        return fmt::format("{} is nested too deeply", name);
    FileDescriptor folder(TreeRemoval::openFolder(parent, name));
    if (!folder && errno == EACCES) {
        makeWritable(parent, name);
        folder = FileDescriptor(TreeRemoval::openFolder(parent, name));
    }
    if (!folder)
        return inWords(name, errno);

    struct stat status {};

    if (::fstat(folder.number(), &status) == 0 && (status.st_mode & S_IRWXU) != S_IRWXU)
        ::fchmod(folder.number(), S_IRWXU);

    std::optional<std::string> problem;
    for (const auto& each : TreeRemoval::names(folder.number())) {
        auto next = removeBelow(folder.number(), each, depth + 1);
        if (!problem)
            problem = std::move(next);
    }
    return problem;
}

std::optional<std::string> removeBelow(int parent, const std::string& name, int depth) {
    if (::unlinkat(parent, name.c_str(), 0) == 0 || errno == ENOENT)
        return std::nullopt;
    // Linux says EISDIR of a folder, POSIX allows EPERM.
    if (errno != EISDIR && errno != EPERM)
        return inWords(name, errno);
    const int why = errno;
    if (::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT)
        return std::nullopt;
    if (errno == ENOTDIR)
        return inWords(name, why);
    auto problem = emptyFolder(parent, name, depth);
    if (problem || ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT)
        return problem;
    return inWords(name, errno);
}

} // namespace

std::vector<std::string> TreeRemoval::names(int folder) {
    std::vector<std::string> names;
    // A stream closes what it reads from.
    const int own = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(own < 0 ? nullptr : ::fdopendir(own),
                                                     &::closedir);
    if (!stream)
        return names;
    while (const auto* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    return names;
}

int TreeRemoval::openFolder(int parent, const std::string& name) {
    FileDescriptor folder(
        ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder)
        return -1;
    if (isMounted(folder.number(), parent)) {
        errno = EXDEV;
        return -1;
    }
    return ::fcntl(folder.number(), F_DUPFD_CLOEXEC, 0);
}

std::optional<std::string> TreeRemoval::remove(int parent, const std::string& name) {
    return removeBelow(parent, name, 0);
}

} // namespace tessarine
