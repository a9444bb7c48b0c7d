#include "launcherapp/platform/linux/watching/WatchedDirectories.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace tessarine {

std::size_t WatchedDirectories::lowerBound(std::string_view path) const {
    const auto found = std::ranges::lower_bound(
        directories_, path, std::less<>{}, [this](const Directory& directory) {
            return std::string_view(paths_.c_str() + directory.pathBegin);
        });
    return static_cast<std::size_t>(found - directories_.begin());
}

std::optional<WatchedDirectories::Index> WatchedDirectories::find(std::string_view path) const {
    const auto index = lowerBound(path);
    if (index == size() || path != this->path(static_cast<Index>(index)))
        return std::nullopt;
    return static_cast<Index>(index);
}

std::vector<WatchedDirectories::Index> WatchedDirectories::atOrBelow(std::string_view path) const {
    std::vector<Index> found;
    if (const auto itself = find(path))
        found.push_back(*itself);
    // Not simply those after it: "a b" stands between "a" and "a/b".
    std::string prefix(path);
    if (!prefix.ends_with('/'))
        prefix += '/';
    for (auto i = lowerBound(prefix); i < size(); ++i) {
        const auto index = static_cast<Index>(i);
        if (!std::string_view(this->path(index)).starts_with(prefix))
            break;
        if (found.empty() || found.front() != index)
            found.push_back(index);
    }
    return found;
}

std::vector<WatchedDirectories::Index> WatchedDirectories::sharing(int descriptor) const {
    std::vector<Index> found;
    for (auto link = std::ranges::lower_bound(links_, descriptor, std::less<>{}, &Link::descriptor);
         link != links_.end() && link->descriptor == descriptor;
         ++link) {
        if (link->index != unlinked)
            found.push_back(link->index);
    }
    return found;
}

void WatchedDirectories::setState(Index index, State state) {
    auto& directory = directories_[index];
    --counts_[static_cast<std::size_t>(directory.state)];
    ++counts_[static_cast<std::size_t>(state)];
    directory.state = state;
}

void WatchedDirectories::link(int descriptor, Index index) {
    // The kernel counts its descriptors upwards, so this is nearly always the end.
    const auto position =
        std::ranges::upper_bound(links_, descriptor, std::less<>{}, &Link::descriptor);
    links_.insert(position, {.descriptor = descriptor, .index = index});
}

void WatchedDirectories::attach(Index index, int descriptor) {
    directories_[index].descriptor = descriptor;
    directories_[index].isDoubtful = false;
    setState(index, State::watched);
    link(descriptor, index);
}

std::optional<int> WatchedDirectories::detach(Index index) {
    auto& directory = directories_[index];
    const int descriptor = std::exchange(directory.descriptor, -1);
    if (descriptor < 0)
        return std::nullopt;
    for (auto link = std::ranges::lower_bound(links_, descriptor, std::less<>{}, &Link::descriptor);
         link != links_.end() && link->descriptor == descriptor;
         ++link) {
        if (link->index == index) {
            link->index = unlinked;
            ++unlinkedCount_;
            break;
        }
    }
    const bool isLast = !isInUse(descriptor);
    // Moving all the links up for each of a thousand removals would cost more than the holes do.
    if (unlinkedCount_ > links_.size() / 2) {
        std::erase_if(links_, [](const Link& link) { return link.index == unlinked; });
        unlinkedCount_ = 0;
    }
    return isLast ? std::optional(descriptor) : std::nullopt;
}

std::vector<int> WatchedDirectories::replace(std::vector<std::string> paths) {
    std::ranges::sort(paths);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    std::vector<int> unused;
    auto kept = paths.cbegin();
    for (Index i = 0; i < size(); ++i) {
        while (kept != paths.cend() && *kept < path(i))
            ++kept;
        const bool isKept = kept != paths.cend() && *kept == path(i);
        if (isKept && !at(i).isDoubtful && at(i).state != State::gone)
            continue;
        if (const auto descriptor = detach(i))
            unused.push_back(*descriptor);
        directories_[i].state = State::waiting;
        directories_[i].isDoubtful = false;
    }
    std::size_t length = 0;
    for (const auto& path : paths)
        length += path.size() + 1;
    std::string pool;
    pool.reserve(length);
    std::vector<Directory> directories;
    directories.reserve(paths.size());
    links_.clear();
    unlinkedCount_ = 0;
    counts_ = {};
    Index before = 0;
    for (const auto& path : paths) {
        while (before < size() && path > this->path(before))
            ++before;
        const bool isKnown = before < size() && path == this->path(before);
        auto& directory = directories.emplace_back(isKnown ? at(before) : Directory{});
        directory.pathBegin = static_cast<std::uint32_t>(pool.size());
        pool += path;
        pool += '\0';
        ++counts_[static_cast<std::size_t>(directory.state)];
        if (directory.descriptor >= 0)
            links_.push_back({.descriptor = directory.descriptor,
                              .index = static_cast<Index>(directories.size() - 1)});
    }
    std::ranges::stable_sort(links_, std::less<>{}, &Link::descriptor);
    paths_ = std::move(pool);
    directories_ = std::move(directories);
    return unused;
}

} // namespace tessarine
