#include "launcherapp/platform/linux/system/files/TrashEffects.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/platform/linux/system/files/FileManagers.h"
#include "launcherapp/platform/linux/system/files/FreedesktopTrash.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using FreedesktopTrash::Emptied;
using FreedesktopTrash::Order;
using FreedesktopTrash::Progress;

std::string outcome(std::size_t items, const std::vector<std::string>& problems) {
    return fmt::format(
        "{} item(s) removed{}{}", items, problems.empty() ? "" : "; ", fmt::join(problems, "; "));
}

/// One emptying of all. It tells once: when the last place is done, or none of those that are left
/// has got on for as long as a disk is waited for. What ends after that is logged.
class Emptying : public std::enable_shared_from_this<Emptying> {
public:
    Emptying(EffectWays::Doors doors, EffectDone done)
        : doors_(std::move(doors)), done_(std::move(done)) {}

    /// `empty` is run apart with an order of its own.
    template <typename Empty> void begin(const std::string& place, Empty empty) {
        const Order order{.user = doors_->user, .now = std::chrono::system_clock::now()};
        waiting_.emplace(place, Waiting{.progress = order.progress});
        doors_->work.runApart([order, empty = std::move(empty)] { return empty(order); },
                              [self = shared_from_this(), place](const Emptied& emptied) {
                                  self->finished(place, emptied);
                              });
    }

    void lookAfterIt() {
        doors_->queue.postAfter(doors_->patience.disk, [self = shared_from_this()] {
            if (self->done_)
                self->giveUpOnTheStill();
        });
    }

private:
    struct Waiting {
        Progress progress;
        std::size_t seen = 0; ///< of the progress, at the last look
    };

    void finished(const std::string& place, const Emptied& emptied) {
        if (waiting_.erase(place) == 0) {
            doors_->log(fmt::format("trash: {} answered after all: {}",
                                    place,
                                    outcome(emptied.items, emptied.problems)));
            return;
        }
        items_ += emptied.items;
        isBusy_ |= emptied.isBusy;
        problems_.insert(problems_.end(), emptied.problems.begin(), emptied.problems.end());
        if (waiting_.empty())
            tell();
    }

    void giveUpOnTheStill() {
        for (auto each = waiting_.begin(); each != waiting_.end();) {
            auto& [place, waiting] = *each;
            const auto removed = waiting.progress->load();
            if (removed != std::exchange(waiting.seen, removed)) {
                doors_->log(fmt::format(
                    "trash: still emptying {}, {} file(s) gone so far", place, removed));
                ++each;
                continue;
            }
            problems_.push_back(place + " does not answer");
            each = waiting_.erase(each);
        }
        if (waiting_.empty())
            tell();
        else
            lookAfterIt();
    }

    void tell() {
        const auto done = std::exchange(done_, nullptr);
        doors_->log("trash: " + outcome(items_, problems_));
        if (!problems_.empty())
            done(fmt::format("Not all of the Trash could be emptied: {}",
                             fmt::join(problems_, "; ")));
        // A file system that is mounted twice is busy with ourselves.
        else if (isBusy_ && items_ == 0)
            done("it is being emptied already");
        else
            done(std::nullopt);
    }

    EffectWays::Doors doors_;
    EffectDone done_; ///< empty once it was told
    std::map<std::string, Waiting> waiting_;
    std::vector<std::string> problems_;
    std::size_t items_ = 0;
    bool isBusy_ = false;
};

void emptyAll(const EffectWays::Doors& doors, EffectDone done) {
    const auto emptying = std::make_shared<Emptying>(doors, std::move(done));
    emptying->begin("the home folder",
                    [dataHome = doors->environment.dataHome](const Order& order) {
                        return FreedesktopTrash::emptyHome(dataHome, order);
                    });
    std::set<std::string> seen; // mounts stand over one another, and the last is the one seen
    for (const auto& mount : doors->mounts.mounts()) {
        if (FreedesktopTrash::mayHaveTrash(mount) && seen.insert(mount.path).second)
            emptying->begin(mount.path, [path = mount.path](const Order& order) {
                return FreedesktopTrash::emptyMount(path, order);
            });
    }
    emptying->lookAfterIt();
}

void openFilesFolder(const EffectWays::Doors& doors, EffectDone done) {
    doors->work.runApart(
        [path = doors->environment.dataHome + "/Trash/files"] {
            std::error_code ignored;
            return std::filesystem::is_directory(path, ignored) ? std::optional(path)
                                                                : std::nullopt;
        },
        [doors, done = std::move(done)](const std::optional<std::string>& path) {
            if (path)
                doors->openUrl(Urls::fileUrl(*path), done);
            else
                done("nothing has been moved to the Trash yet");
        });
}

} // namespace

Effect TrashEffects::empty(const EffectContext& context) {
    return Effect::by(
        [doors = context.doors](EffectDone done) { emptyAll(doors, std::move(done)); });
}

Effect TrashEffects::show(const EffectContext& context) {
    std::vector<EffectWay> ways;
    const auto* const manager = FileManagers::byDesktopID(context.facts.folderOpener);
    if (manager && context.facts.hasProgram(manager->program))
        ways.push_back(
            EffectWays::detached(context.doors,
                                 {context.facts.programs.at(std::string(manager->program)),
                                  std::string(manager->trashUrl)}));
    ways.push_back(
        [doors = context.doors](EffectDone done) { openFilesFolder(doors, std::move(done)); });
    return Effect::by(EffectWays::firstOf(std::move(ways)));
}

} // namespace tessarine
