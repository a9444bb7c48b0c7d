#include "launcherapp/platform/linux/system/files/TreeRemoval.h"

#include <fmt/format.h>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

using TreeRemoval::OpenedFolder;

std::string inWords(const std::string& name, int error) {
    if (error == EXDEV)
        return fmt::format("{} holds another mounted file system", name);
    return fmt::format("{}: {}", name, std::generic_category().message(error));
}

/// The root of a mount, a folder bound onto another place of the same file system too. Kernels
/// before 5.8 don't tell of those: there the device alone tells, which a subvolume of btrfs has of
/// its own too.
bool isMounted(int folder, int parent) {
    struct statx here {};

    struct statx above {};

    if (::statx(folder, "", AT_EMPTY_PATH, STATX_BASIC_STATS, &here) != 0)
        return true;
    if ((here.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0)
        return (here.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    return ::statx(parent, "", AT_EMPTY_PATH, STATX_BASIC_STATS, &above) != 0 ||
           here.stx_dev_major != above.stx_dev_major || here.stx_dev_minor != above.stx_dev_minor;
}

/// What was thrown away may be a folder that its owner may not change: it goes all the same. What
/// is mounted there keeps its mode.
void makeWritable(int parent, const std::string& name) {
    const FileDescriptor folder(
        ::openat(parent, name.c_str(), O_PATH | O_NOFOLLOW | O_DIRECTORY | O_CLOEXEC));
    if (folder && !isMounted(folder.number(), parent))
        ::chmod(fmt::format("/proc/self/fd/{}", folder.number()).c_str(), S_IRWXU);
}

OpenedFolder openWritable(int parent, const std::string& name) {
    auto opened = TreeRemoval::openFolder(parent, name);
    if (opened.error == EACCES) {
        makeWritable(parent, name);
        opened = TreeRemoval::openFolder(parent, name);
    }

    struct stat status {};

    if (opened.folder && ::fstat(opened.folder.number(), &status) == 0 &&
        (status.st_mode & S_IRWXU) != S_IRWXU)
        ::fchmod(opened.folder.number(), S_IRWXU);
    return opened;
}

/// What became of one name.
enum class Outcome {
    gone,
    holdsMore, ///< a folder that isn't empty
    stays,     ///< for the reason in errno
};

Outcome removeOne(int parent, const std::string& name) {
    if (::unlinkat(parent, name.c_str(), 0) == 0 || errno == ENOENT)
        return Outcome::gone;
    // Linux says EISDIR of a folder, POSIX allows EPERM.
    if (errno != EISDIR && errno != EPERM)
        return Outcome::stays;
    const int why = errno;
    if (::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT)
        return Outcome::gone;
    if (errno != ENOTDIR)
        return Outcome::holdsMore;
    errno = why;
    return Outcome::stays;
}

/// One removal. Only the deepest folder is held open, so that no depth is too much for a process's
/// descriptors or its stack; the way back up is "..", checked to be where it came from.
class Removal {
public:
    explicit Removal(std::atomic<std::size_t>& removed) : removed_(removed) {}

    std::optional<std::string> remove(int parent, const std::string& name) {
        top_ = parent;
        take(name);
        while (!levels_.empty()) {
            auto& names = levels_.back().names;
            if (names.empty()) {
                if (!leave())
                    return problem_;
                continue;
            }
            const auto next = std::move(names.back());
            names.pop_back();
            take(next);
        }
        return problem_;
    }

private:
    /// A folder on the way down.
    struct Level {
        std::string name; ///< in the one above
        dev_t device = 0;
        ino_t number = 0;
        std::vector<std::string> names; ///< still to be removed
        bool holdsOthers = false;       ///< something in it stays, and so does it
    };

    int current() const { return levels_.empty() ? top_ : folder_.number(); }

    void take(const std::string& name) {
        switch (removeOne(current(), name)) {
        case Outcome::gone:
            ++removed_;
            return;
        case Outcome::stays:
            keep(name, errno);
            return;
        case Outcome::holdsMore:
            enter(name);
            return;
        }
    }

    void enter(const std::string& name) {
        auto opened = openWritable(current(), name);
        if (!opened.folder)
            return keep(name, opened.error);

        struct stat status {};

        if (::fstat(opened.folder.number(), &status) != 0)
            return keep(name, errno);
        auto listing = TreeRemoval::names(opened.folder.number());
        if (listing.error != 0)
            return keep(name, listing.error);
        levels_.push_back({.name = name,
                           .device = status.st_dev,
                           .number = status.st_ino,
                           .names = std::move(listing.names)});
        folder_ = std::move(opened.folder);
    }

    /// To the folder above, removing the one left; false when the way up is lost.
    bool leave() {
        const auto left = std::move(levels_.back());
        levels_.pop_back();
        if (!levels_.empty()) {
            FileDescriptor above(
                ::openat(folder_.number(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            if (!isLevel(above, levels_.back())) {
                if (!problem_)
                    problem_ = left.name + " was moved meanwhile";
                return false;
            }
            folder_ = std::move(above);
        }
        if (left.holdsOthers)
            keepParent();
        else if (::unlinkat(current(), left.name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT)
            ++removed_;
        else
            keep(left.name, errno);
        return true;
    }

    /// Somebody may have moved the folder meanwhile, out of the trash even.
    static bool isLevel(const FileDescriptor& folder, const Level& level) {
        struct stat status {};

        return folder && ::fstat(folder.number(), &status) == 0 && status.st_dev == level.device &&
               status.st_ino == level.number;
    }

    void keep(const std::string& name, int error) {
        if (!problem_)
            problem_ = inWords(name, error);
        keepParent();
    }

    void keepParent() {
        if (!levels_.empty())
            levels_.back().holdsOthers = true;
    }

    std::atomic<std::size_t>& removed_;
    int top_ = -1;
    std::vector<Level> levels_;
    FileDescriptor folder_; ///< of the last level
    std::optional<std::string> problem_;
};

} // namespace

TreeRemoval::Listing TreeRemoval::names(int folder) {
    Listing listing;
    // A stream closes what it reads from.
    const int own = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(own < 0 ? nullptr : ::fdopendir(own),
                                                     &::closedir);
    if (!stream) {
        listing.error = errno;
        return listing;
    }
    while (true) {
        errno = 0; // else the end and a failure look the same
        const auto* entry = ::readdir(stream.get());
        if (!entry)
            break;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            listing.names.emplace_back(name);
    }
    listing.error = errno;
    return listing;
}

OpenedFolder TreeRemoval::openFolder(int parent, const std::string& name) {
    FileDescriptor folder(
        ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder)
        return {.folder = {}, .error = errno};
    if (isMounted(folder.number(), parent))
        return {.folder = {}, .error = EXDEV};
    return {.folder = std::move(folder)};
}

std::optional<std::string>
TreeRemoval::remove(int parent, const std::string& name, std::atomic<std::size_t>& removed) {
    return Removal(removed).remove(parent, name);
}

} // namespace tessarine
