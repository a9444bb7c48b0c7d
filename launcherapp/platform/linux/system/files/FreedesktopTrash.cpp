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
    std::optional<unsigned> owner;
};

/// What opening gave: neither a folder nor a problem when nothing of the name is there.
struct Opened {
    FileDescriptor folder;
    std::optional<std::string> problem;
};

Opened open(const Wanted& wanted) {
    FileDescriptor folder(TreeRemoval::openFolder(wanted.parent, wanted.name));
    if (!folder) {
        if (errno == ENOENT)
            return {};
        if (errno == ELOOP || errno == ENOTDIR)
            return {.problem = wanted.path + " is not a folder, so it was left alone"};
        return {.problem = fmt::format(
                    "{} can't be opened: {}", wanted.path, std::generic_category().message(errno))};
    }

    struct stat status {};

    if (::fstat(folder.number(), &status) != 0 || (wanted.owner && status.st_uid != *wanted.owner))
        return {.problem = wanted.path + " is another user's, so it was left alone"};
    return {.folder = std::move(folder)};
}

/// Empties one trash folder that was found to be the user's.
class TrashFolder {
public:
    TrashFolder(FileDescriptor folder, std::string path, unsigned user)
        : folder_(std::move(folder)), path_(std::move(path)), user_(user) {}

    Emptied empty() {
        const auto files = part("files");
        const auto info = part("info");
        const auto stay = removeAll(files);
        removeInfo(info, stay);
        // Where programs keep what they could not remove at once; it holds nothing to be put back.
        const auto expunged = part("expunged");
        const auto before = emptied_.items;
        removeAll(expunged);
        emptied_.items = before;
        // A cache of the sizes of what was there.
        if (emptied_.problems.empty())
            ::unlinkat(folder_.number(), "directorysizes", 0);
        return std::move(emptied_);
    }

private:
    FileDescriptor part(const char* name) {
        auto opened = open(
            {.parent = folder_.number(), .name = name, .path = path_ + "/" + name, .owner = user_});
        if (opened.problem)
            report(*std::move(opened.problem));
        return std::move(opened.folder);
    }

    /// The names of what could not be removed.
    std::set<std::string> removeAll(const FileDescriptor& folder) {
        std::set<std::string> stay;
        if (!folder)
            return stay;
        for (const auto& name : TreeRemoval::names(folder.number())) {
            auto problem = TreeRemoval::remove(folder.number(), name);
            if (!problem) {
                ++emptied_.items;
                continue;
            }
            stay.insert(name);
            report(fmt::format("{}: {}", path_, *problem));
        }
        return stay;
    }

    /// Last, and not of what stays, which can then still be put back.
    void removeInfo(const FileDescriptor& info, const std::set<std::string>& stay) {
        if (!info)
            return;
        for (const auto& name : TreeRemoval::names(info.number())) {
            if (name.ends_with(infoSuffix) &&
                !stay.contains(name.substr(0, name.size() - infoSuffix.size())))
                ::unlinkat(info.number(), name.c_str(), 0);
        }
    }

    void report(std::string problem) {
        if (emptied_.problems.size() < mostProblems)
            emptied_.problems.push_back(std::move(problem));
    }

    FileDescriptor folder_;
    std::string path_;
    unsigned user_;
    Emptied emptied_;
};

Emptied emptyFolder(const Wanted& wanted) {
    auto opened = open(wanted);
    if (opened.problem)
        return {.problems = {*std::move(opened.problem)}};
    if (!opened.folder)
        return {};
    return TrashFolder(std::move(opened.folder), wanted.path, *wanted.owner).empty();
}

FileDescriptor parentFolder(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// A trash of all users must be a real folder in which nobody removes another's: with the sticky
/// bit (Trash specification, "Trash directories"). One that isn't is as good as none.
bool isFitForAll(const FileDescriptor& shared) {
    struct stat status {};

    return shared && ::fstat(shared.number(), &status) == 0 && (status.st_mode & S_ISVTX) != 0;
}

Emptied joined(Emptied first, Emptied second) {
    first.items += second.items;
    std::ranges::move(second.problems, std::back_inserter(first.problems));
    return first;
}

} // namespace

Emptied FreedesktopTrash::emptyHome(const std::string& dataHome, unsigned user) {
    const auto parent = parentFolder(dataHome);
    if (!parent)
        return {};
    return emptyFolder(
        {.parent = parent.number(), .name = "Trash", .path = dataHome + "/Trash", .owner = user});
}

Emptied FreedesktopTrash::emptyMount(const std::string& mountPath, unsigned user) {
    const auto top = parentFolder(mountPath);
    if (!top)
        return {};
    const auto below = mountPath == "/" ? std::string() : mountPath;
    auto emptied = emptyFolder({.parent = top.number(),
                                .name = fmt::format(".Trash-{}", user),
                                .path = fmt::format("{}/.Trash-{}", below, user),
                                .owner = user});
    const auto shared = open({.parent = top.number(), .name = ".Trash", .path = below + "/.Trash"});
    if (!isFitForAll(shared.folder))
        return emptied;
    return joined(std::move(emptied),
                  emptyFolder({.parent = shared.folder.number(),
                               .name = std::to_string(user),
                               .path = fmt::format("{}/.Trash/{}", below, user),
                               .owner = user}));
}

bool FreedesktopTrash::mayHaveTrash(const Mount& mount) {
    return std::ranges::count(withoutTrash, std::string_view(mount.type)) == 0;
}

} // namespace tessarine
