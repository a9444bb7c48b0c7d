#include "launcherapp/platform/linux/watching/TreeWatches.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/linux/watching/ChangeFold.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <time.h>
#include <unordered_map>
#include <utility>

namespace tessarine {

namespace {

using Stamp = TreeWatches::Stamp;

constexpr std::uint32_t names = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t mask = names | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;

/// More events of one directory than this at once cost more than looking at it does.
constexpr std::size_t hotEvents = 1000;
/// Enough for some thousand events a read; the kernel's queue has 16384 unless told otherwise.
constexpr std::size_t bufferBytes = 65536;
/// The most to take in one go, so that who writes faster than we read can't keep us reading.
constexpr std::size_t takenAtOnceBytes = std::size_t{1} << 20;
/// Questions to the disk between two looks at what else there is to do.
constexpr std::size_t placedAtOnce = 256;

constexpr Stamp second = 1'000'000'000;

Stamp nanoseconds(const timespec& time) {
    return Stamp{time.tv_sec} * second + time.tv_nsec;
}

/// How much later than it says a change may have been. The kernel stamps files with its clock's
/// last tick, at most 10 ms ago; some file systems keep whole seconds, or even ones (FAT).
Stamp grain(Stamp stamp) {
    constexpr Stamp tick = 20'000'000;
    return stamp % second == 0 ? 2 * second : tick;
}

/// The stamp to compare with at the next look; none if a change may yet come under the same one.
Stamp settled(Stamp stamp) {
    return stamp >= TreeWatches::now() - grain(stamp) ? WatchedDirectories::noStamp : stamp;
}

bool isSince(Stamp stamp, Stamp since) {
    return stamp >= since - grain(stamp);
}

} // namespace

TreeWatches::Stamp TreeWatches::now() {
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return nanoseconds(time);
}

TreeWatches::TreeWatches(std::string root,
                         Stamp since,
                         std::shared_ptr<WatchBudget> budget,
                         ChangeFold& fold)
    : root_(std::move(root)), budget_(std::move(budget)), fold_(fold),
      kernel_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), buffer_(bufferBytes),
      waitingSince_(since), rootWatchedSince_(since) {
    directories_.replace({root_});
}

TreeWatches::~TreeWatches() {
    std::size_t held = 0;
    for (Index i = 0; i < directories_.size(); ++i)
        held += directories_.detach(i) ? 1 : 0;
    kernel_ = FileDescriptor(); // removes them all, before others may take their place
    budget_->giveBack(held);
}

std::optional<int> TreeWatches::events() const {
    return kernel_ ? std::optional(kernel_.number()) : std::nullopt;
}

/// When names in the directory changed last, as far as its file system tells; nothing when it is
/// no directory. The later of two stamps, since programs that copy trees set the one back.
std::optional<Stamp> TreeWatches::lastChange(Index index) const {
    struct stat info {};

    const char* path = directories_.path(index);
    const int result = isRoot(index) ? ::stat(path, &info) : ::lstat(path, &info);
    if (result != 0 || !S_ISDIR(info.st_mode))
        return std::nullopt;
    return std::max(nanoseconds(info.st_mtim), nanoseconds(info.st_ctim));
}

void TreeWatches::note(Index index) {
    fold_.note(directories_.path(index));
}

void TreeWatches::drop(int descriptor) {
    // It fails for a directory that is gone, whose watch went with it.
    (void)::inotify_rm_watch(kernel_.number(), descriptor);
    budget_->giveBack(1);
}

void TreeWatches::release(Index index) {
    if (const auto descriptor = directories_.detach(index))
        drop(*descriptor);
}

void TreeWatches::waitSince(Stamp since) {
    waitingSince_ =
        directories_.count(State::waiting) == 0 ? since : std::min(waitingSince_, since);
    nextToPlace_ = 0;
}

void TreeWatches::cover(std::vector<std::string> directories, Stamp readAt) {
    directories.push_back(root_);
    waitSince(readAt);
    // The old ones go first, which makes room in the budget when a large tree was renamed. What
    // happens in between is found by the stamps.
    for (const int descriptor : directories_.replace(std::move(directories)))
        drop(descriptor);
    checkRoot(readAt);
}

/// The root is watched before anybody told when it was read.
void TreeWatches::checkRoot(Stamp readAt) {
    if (readAt >= std::exchange(rootWatchedSince_, std::numeric_limits<Stamp>::min()))
        return;
    const auto root = directories_.find(root_);
    const auto stamp = root ? lastChange(*root) : std::nullopt;
    if (stamp && isSince(*stamp, readAt))
        note(*root);
}

bool TreeWatches::placeSome() {
    std::size_t placed = 0;
    for (; nextToPlace_ < directories_.size() && placed < placedAtOnce; ++nextToPlace_) {
        const auto index = static_cast<Index>(nextToPlace_);
        if (directories_.at(index).state != State::waiting)
            continue;
        place(index, waitingSince_);
        ++placed;
    }
    return directories_.count(State::waiting) > 0;
}

/// Watches the directory, and reports it if it changed since that moment.
void TreeWatches::place(Index index, Stamp since) {
    if (!kernel_ || !budget_->take()) {
        poll(index, since);
        return;
    }
    // The root may be a link to where the user keeps it; below it, links are never followed.
    const auto flags = isRoot(index) ? mask : mask | IN_DONT_FOLLOW;
    const int descriptor = ::inotify_add_watch(kernel_.number(), directories_.path(index), flags);
    if (descriptor < 0) {
        const bool isRefused = errno == ENOSPC || errno == ENOMEM;
        budget_->giveBack(1);
        if (isRefused)
            poll(index, since);
        else
            directories_.setState(index, State::gone);
        return;
    }
    if (directories_.isInUse(descriptor))
        budget_->giveBack(1); // another path of the same directory has it already
    directories_.attach(index, descriptor);
    const auto stamp = lastChange(index);
    if (stamp && isSince(*stamp, since))
        note(index);
}

void TreeWatches::poll(Index index, Stamp since) {
    const auto stamp = lastChange(index);
    directories_.setState(index, stamp ? State::polled : State::gone);
    if (!stamp)
        return;
    directories_.setStamp(index, settled(*stamp));
    if (isSince(*stamp, since))
        note(index);
}

std::size_t TreeWatches::polled() const {
    // A root that is gone is waited for.
    const auto root = directories_.find(root_);
    const bool isGone = root && directories_.at(*root).state == State::gone;
    return directories_.count(State::polled) + (isGone ? 1 : 0);
}

void TreeWatches::pollSome(std::size_t count) {
    for (std::size_t seen = 0; seen < directories_.size() && count > 0; ++seen) {
        nextToPoll_ = nextToPoll_ + 1 < directories_.size() ? nextToPoll_ + 1 : 0;
        const auto index = static_cast<Index>(nextToPoll_);
        const auto state = directories_.at(index).state;
        if (state != State::polled && !(state == State::gone && isRoot(index)))
            continue;
        pollOnce(index);
        --count;
    }
}

void TreeWatches::pollOnce(Index index) {
    const bool wasThere = directories_.at(index).state == State::polled;
    const auto looked = now();
    const auto stamp = lastChange(index);
    if (stamp ? !wasThere || *stamp != directories_.at(index).stamp : wasThere)
        note(index);
    directories_.setState(index, stamp ? State::polled : State::gone);
    if (!stamp)
        return;
    directories_.setStamp(index, settled(*stamp));
    if (kernel_ && !budget_->isSpent())
        place(index, looked);
}

std::size_t TreeWatches::resting() const {
    return directories_.count(State::resting);
}

void TreeWatches::lookAtResting() {
    for (Index i = 0; i < directories_.size(); ++i) {
        if (directories_.at(i).state != State::resting)
            continue;
        const auto looked = now();
        const auto stamp = lastChange(i);
        if (stamp && *stamp == directories_.at(i).stamp) {
            place(i, looked);
            continue;
        }
        note(i);
        if (stamp)
            directories_.setStamp(i, settled(*stamp));
        else
            directories_.setState(i, State::gone);
    }
}

void TreeWatches::rest(int descriptor) {
    for (const auto index : directories_.sharing(descriptor)) {
        release(index);
        directories_.setState(index, State::resting);
        directories_.setStamp(index, WatchedDirectories::noStamp);
    }
}

void TreeWatches::mountChanged(const std::string& path) {
    const bool isAbove = Paths::isAtOrBelow(root_, path);
    const std::string parent(Paths::parent(path));
    // Mounts where nobody looks, like those that containers make by the dozen, are no news.
    if (!isAbove && !directories_.find(path) && !directories_.find(parent))
        return;
    // Its new walk begins after this moment, so only what changes from now on has to be found.
    waitSince(now());
    for (const auto index : directories_.atOrBelow(isAbove ? root_ : path)) {
        release(index);
        directories_.setState(index, State::waiting);
    }
    fold_.note(isAbove ? root_ : path);
}

void TreeWatches::readEvents() {
    if (!kernel_)
        return;
    std::unordered_map<int, std::size_t> heat;
    for (std::size_t taken = 0; taken < takenAtOnceBytes;) {
        const auto length = ::read(kernel_.number(), buffer_.data(), buffer_.size());
        if (length <= 0)
            break;
        taken += static_cast<std::size_t>(length);
        for (ssize_t at = 0; at < length;) {
            inotify_event event;
            std::memcpy(&event, buffer_.data() + at, sizeof event);
            const char* const name = buffer_.data() + at + sizeof event;
            at += static_cast<ssize_t>(sizeof event + event.len);
            handle(event, {name, event.len > 0 ? ::strnlen(name, event.len) : 0});
            ++heat[event.wd];
        }
    }
    for (const auto& [descriptor, events] : heat) {
        if (events > hotEvents)
            rest(descriptor);
    }
}

void TreeWatches::handle(const inotify_event& event, std::string_view name) {
    if (event.mask & IN_Q_OVERFLOW) {
        // The end of any directory may be among what was lost.
        for (Index i = 0; i < directories_.size() && !fold_.isDropped(); ++i)
            directories_.setDoubtful(i);
        fold_.noteDropped();
        return;
    }
    for (const auto index : directories_.sharing(event.wd)) {
        if (event.mask & IN_IGNORED) {
            if (directories_.detach(index))
                budget_->giveBack(1);
            directories_.setState(index, State::gone);
        } else if (event.mask & (IN_DELETE_SELF | IN_UNMOUNT)) {
            note(index); // the kernel says next that its watch is gone
        } else if (event.mask & IN_MOVE_SELF) {
            if (isRoot(index))
                loseRoot();
            else
                doubt(directories_.path(index));
        } else {
            noteName(index, event, name);
        }
    }
}

void TreeWatches::noteName(Index directory, const inotify_event& event, std::string_view name) {
    if (name.starts_with('.'))
        return; // the index never shows it, nor what is below it
    if (event.mask & IN_ISDIR) {
        std::string path = directories_.path(directory);
        if (!path.ends_with('/'))
            path += '/';
        doubt(path.append(name));
    }
    note(directory);
}

/// A directory came, went or was renamed here. Its watch goes on, as does that of each below it,
/// under the path they had, until somebody tells which directory has which path now.
void TreeWatches::doubt(std::string_view path) {
    for (const auto index : directories_.atOrBelow(path))
        directories_.setDoubtful(index);
}

void TreeWatches::loseRoot() {
    for (Index i = 0; i < directories_.size(); ++i) {
        release(i);
        directories_.setState(i, State::gone);
    }
    fold_.note(root_);
}

TreeWatchCounts TreeWatches::counts() const {
    return {.watched = directories_.count(State::watched),
            .polled = directories_.count(State::polled) + resting()};
}

} // namespace tessarine
