#include "launcherapp/clipboard/groups/ClipFileFacts.h"

#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/WorkQueues.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tessarine {

ClipFileFacts::ClipFileFacts(MainQueue& queue,
                             WorkQueues& work,
                             std::shared_ptr<const FileStore> files)
    : queue_(queue), work_(work), files_(std::move(files)) {}

ClipFileBeginning ClipFileFacts::read(const FileStore& files, const std::string& path) {
    if (!files.info(path))
        return {};
    std::string start;
    try {
        files.readPieces(path, [&start](std::string_view piece) {
            start += piece.substr(0, ClipGroupsRuntime::needleBytes - start.size());
            return start.size() < ClipGroupsRuntime::needleBytes;
        });
    } catch (const FileError&) {
        start.clear(); // what can't be read has nothing to be found in
    }
    return {.bytes = std::move(start)};
}

std::optional<ClipFileBeginning> ClipFileFacts::beginning(const std::string& path) {
    requireMainThread(queue_);
    const auto found = known_.find(path);
    const double age = found == known_.end() ? 0 : queue_.now() - found->second.at;
    // A clock that was set back leaves what was read in the future.
    const bool isFresh = found != known_.end() && age >= 0 && age < ClipGroupsRuntime::fileFactTTL;
    if (!isFresh && !looking_.contains(path)) {
        waiting_.insert(path);
        startWaiting();
    }
    if (found == known_.end())
        return std::nullopt;
    return ClipFileBeginning{.bytes = found->second.bytes, .isOld = !isFresh};
}

bool ClipFileFacts::mayStart() const {
    const auto hanging = std::ranges::count_if(looking_, [now = queue_.uptime()](const auto& look) {
        return now - look.second >= patience;
    });
    return looking_.size() - static_cast<std::size_t>(hanging) < mostAtOnce &&
           looking_.size() < mostHanging;
}

void ClipFileFacts::startWaiting() {
    while (!waiting_.empty() && mayStart())
        start(waiting_.extract(waiting_.begin()).value());
}

void ClipFileFacts::start(const std::string& path) {
    looking_.emplace(path, queue_.uptime());
    work_.runApart([files = files_, path] { return read(*files, path); },
                   [this, path, alive = std::weak_ptr(alive_)](ClipFileBeginning found) {
                       if (!alive.expired())
                           take(path, std::move(found));
                   });
    queue_.postAfter(patience, [this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired())
            startWaiting();
    });
}

void ClipFileFacts::take(const std::string& path, ClipFileBeginning found) {
    looking_.erase(path);
    const auto old = known_.find(path);
    const bool isNew = old == known_.end() || old->second.bytes != found.bytes;
    // Twice the clippings there are: beyond it most are of clippings that are gone.
    if (old == known_.end() && known_.size() >= mostKept)
        known_.clear();
    known_.insert_or_assign(path, Known{.bytes = std::move(found.bytes), .at = queue_.now()});
    startWaiting();
    if (isNew)
        arrivals_.tell();
}

} // namespace tessarine
