#include "launcherapp/platform/linux/system/files/FreedesktopTrash.h"

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/system/files/TreeRemoval.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <optional>
#include <set>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

using FreedesktopTrash::Emptied;

/// So that a disk that fails doesn't tell of each of its files.
constexpr std::size_t mostProblems = 3;

constexpr std::string_view infoSuffix = ".trashinfo";

/// Longer than it takes to move anything into the trash, from another disk too.
constexpr std::chrono::hours orphanAge{24};

constexpr auto withoutTrash = std::to_array<std::string_view>({
    "autofs",     "binfmt_misc", "bpf",       "cgroup",   "cgroup2", "configfs",  "debugfs",
    "devpts",     "devtmpfs",    "efivarfs",  "erofs",    "fusectl", "hugetlbfs", "iso9660",
    "mqueue",     "nfsd",        "nsfs",      "overlay",  "proc",    "pstore",    "ramfs",
    "rpc_pipefs", "securityfs",  "selinuxfs", "squashfs", "sysfs",   "tracefs",   "udf",
});

/// A folder that was asked for by name, and whose it must be.
struct Wanted {
    int parent;
    std::string name;
    std::string path; ///< for the user
    std::optional<uid_t> owner;
};

/// What opening gave: neither a folder nor a problem when nothing of the name is there.
struct Opened {
    FileDescriptor folder;
    std::optional<std::string> problem;
};

Opened open(const Wanted& wanted) {
    auto [folder, error] = TreeRemoval::openFolder(wanted.parent, wanted.name);
    if (error == ENOENT)
        return {};
    if (error == ELOOP || error == ENOTDIR)
        return {.problem = wanted.path + " is not a folder, so it was left alone"};
    if (error != 0)
        return {.problem = fmt::format(
                    "{} can't be opened: {}", wanted.path, std::generic_category().message(error))};

    struct stat status {};

    if (::fstat(folder.number(), &status) != 0 || (wanted.owner && status.st_uid != *wanted.owner))
        return {.problem = wanted.path + " is another user's, so it was left alone"};
    return {.folder = std::move(folder)};
}

std::string noteOf(const std::string& item) {
    return item + std::string(infoSuffix);
}

bool isThere(const FileDescriptor& folder, const std::string& name) {
    struct stat status {};

    // Whatever can't be told may be there.
    return ::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 ||
           errno != ENOENT;
}

/// What a trash folder holds, and what is noted of it.
struct Contents {
    FileDescriptor files;
    FileDescriptor info; ///< none when there are no notes
    std::vector<std::string> items;
    std::set<std::string> noted; ///< names of items that a note was found for
};

/// Empties one trash folder that was found to be the user's.
class TrashFolder {
public:
    TrashFolder(FileDescriptor folder, std::string path, const FreedesktopTrash::Order& order)
        : folder_(std::move(folder)), path_(std::move(path)), order_(order) {}

    Emptied empty() {
        // Held until the folder is closed. Where files can't be locked, two may empty at once:
        // each takes what the other one left.
        if (::flock(folder_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            return {.isBusy = true};
        if (const auto found = contents()) {
            removeItems(*found);
            removeOrphans(*found);
            removeExpunged();
        }
        // A cache of the sizes of what was there.
        if (emptied_.problems.empty())
            ::unlinkat(folder_.number(), "directorysizes", 0);
        return std::move(emptied_);
    }

private:
    Opened part(const char* name) {
        auto opened = open({.parent = folder_.number(),
                            .name = name,
                            .path = path_ + "/" + name,
                            .owner = order_.user});
        if (opened.problem)
            report(*opened.problem);
        return opened;
    }

    /// Nothing, after a report, when not all of it can be told.
    std::optional<Contents> contents() {
        auto files = part("files");
        auto info = part("info");
        if (files.problem || info.problem)
            return std::nullopt;
        Contents found{.files = std::move(files.folder), .info = std::move(info.folder)};
        // The notes first: a note is written before its item is moved in, so what is thrown away
        // from here on has a note that isn't among these.
        for (const auto& name : listed(found.info, "info")) {
            if (name.ends_with(infoSuffix))
                found.noted.insert(name.substr(0, name.size() - infoSuffix.size()));
        }
        found.items = listed(found.files, "files");
        if (!found.files && !found.noted.empty())
            report(path_ + "/files is not there, so the notes of what was in it were left alone");
        return found.files && emptied_.problems.empty() ? std::optional(std::move(found))
                                                        : std::nullopt;
    }

    std::vector<std::string> listed(const FileDescriptor& folder, const char* name) {
        if (!folder)
            return {};
        auto listing = TreeRemoval::names(folder.number());
        if (listing.error != 0)
            report(fmt::format("{}/{} can't be read: {}",
                               path_,
                               name,
                               std::generic_category().message(listing.error)));
        return std::move(listing.names);
    }

    void removeItems(const Contents& found) {
        for (const auto& name : found.items) {
            const bool isNoted = found.noted.contains(name);
            if (!isNoted && found.info && isThere(found.info, noteOf(name)))
                continue; // thrown away just now
            if (const auto problem = removed(found.files, name)) {
                report(fmt::format("{}: {}", path_, *problem));
                continue;
            }
            ++emptied_.items;
            if (isNoted)
                removeNote(found, name);
        }
    }

    std::optional<std::string> removed(const FileDescriptor& folder, const std::string& name) {
        return TreeRemoval::remove(folder.number(), name, *order_.progress);
    }

    /// As long as there is a note, nobody throws another item of that name away.
    static void removeNote(const Contents& found, const std::string& item) {
        if (!isThere(found.files, item))
            ::unlinkat(found.info.number(), noteOf(item).c_str(), 0);
    }

    /// Notes of nothing are no use to anybody, unless what they are of is only on its way.
    void removeOrphans(const Contents& found) {
        auto orphans = found.noted;
        for (const auto& item : found.items)
            orphans.erase(item);
        for (const auto& orphan : orphans) {
            if (isOld(found.info, noteOf(orphan)))
                removeNote(found, orphan);
        }
    }

    bool isOld(const FileDescriptor& folder, const std::string& name) const {
        using std::chrono::system_clock;

        struct stat status {};

        if (::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return false;
        // What was copied here keeps the time of its content alone.
        const auto since = std::max(status.st_mtime, status.st_ctime);
        return order_.now - system_clock::from_time_t(since) > orphanAge;
    }

    /// Where programs keep what they could not remove at once; it holds nothing to be put back.
    void removeExpunged() {
        const auto expunged = part("expunged").folder;
        for (const auto& name : listed(expunged, "expunged")) {
            if (const auto problem = removed(expunged, name))
                report(fmt::format("{}: {}", path_, *problem));
        }
    }

    void report(std::string problem) {
        if (emptied_.problems.size() < mostProblems)
            emptied_.problems.push_back(std::move(problem));
    }

    FileDescriptor folder_;
    std::string path_;
    const FreedesktopTrash::Order& order_;
    Emptied emptied_;
};

Emptied emptyFolder(const Wanted& wanted, const FreedesktopTrash::Order& order) {
    auto opened = open(wanted);
    if (opened.problem)
        return {.problems = {*std::move(opened.problem)}};
    if (!opened.folder)
        return {};
    return TrashFolder(std::move(opened.folder), wanted.path, order).empty();
}

FileDescriptor parentFolder(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// A trash of all users must be a real folder in which nobody removes another's: with the sticky
/// bit (freedesktop Trash 1.0, "Trash directories"). One that isn't is as good as none.
bool isFitForAll(const FileDescriptor& shared) {
    struct stat status {};

    return shared && ::fstat(shared.number(), &status) == 0 && (status.st_mode & S_ISVTX) != 0;
}

Emptied joined(Emptied first, Emptied second) {
    first.items += second.items;
    first.isBusy |= second.isBusy;
    std::ranges::move(second.problems, std::back_inserter(first.problems));
    return first;
}

} // namespace

Emptied FreedesktopTrash::emptyHome(const std::string& dataHome, const Order& order) {
    const auto parent = parentFolder(dataHome);
    if (!parent)
        return {};
    return emptyFolder({.parent = parent.number(),
                        .name = "Trash",
                        .path = dataHome + "/Trash",
                        .owner = order.user},
                       order);
}

Emptied FreedesktopTrash::emptyMount(const std::string& mountPath, const Order& order) {
    const auto top = parentFolder(mountPath);
    if (!top)
        return {};
    const auto below = mountPath == "/" ? std::string() : mountPath;
    auto emptied = emptyFolder({.parent = top.number(),
                                .name = fmt::format(".Trash-{}", order.user),
                                .path = fmt::format("{}/.Trash-{}", below, order.user),
                                .owner = order.user},
                               order);
    const auto shared = open({.parent = top.number(), .name = ".Trash", .path = below + "/.Trash"});
    if (!isFitForAll(shared.folder))
        return emptied;
    return joined(std::move(emptied),
                  emptyFolder({.parent = shared.folder.number(),
                               .name = std::to_string(order.user),
                               .path = fmt::format("{}/.Trash/{}", below, order.user),
                               .owner = order.user},
                              order));
}

bool FreedesktopTrash::mayHaveTrash(const Mount& mount) {
    return std::ranges::count(withoutTrash, std::string_view(mount.type)) == 0;
}

} // namespace tessarine
