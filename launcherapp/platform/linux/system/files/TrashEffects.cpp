#include "launcherapp/platform/linux/system/files/TrashEffects.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/platform/linux/system/files/FileManagers.h"
#include "launcherapp/platform/linux/system/files/FreedesktopTrash.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using FreedesktopTrash::Emptied;

/// One emptying of all: it tells once, when the last place is done or the time is over.
class Emptying {
public:
    Emptying(EffectWays::Doors doors, EffectDone done)
        : doors_(std::move(doors)), done_(std::move(done)) {}

    void expect(const std::string& place) { waiting_.insert(place); }

    void finished(const std::string& place, const Emptied& emptied) {
        if (waiting_.erase(place) == 0)
            return;
        items_ += emptied.items;
        problems_.insert(problems_.end(), emptied.problems.begin(), emptied.problems.end());
        if (waiting_.empty())
            tell();
    }

    void timeOver() {
        for (const auto& place : std::exchange(waiting_, {}))
            problems_.push_back(place + " does not answer");
        tell();
    }

private:
    void tell() {
        const auto done = std::exchange(done_, nullptr);
        if (!done)
            return;
        doors_->log(fmt::format("trash: {} item(s) removed{}{}",
                                items_,
                                problems_.empty() ? "" : "; ",
                                fmt::join(problems_, "; ")));
        done(problems_.empty()
                 ? std::nullopt
                 : std::optional(fmt::format("Not all of the Trash could be emptied: {}",
                                             fmt::join(problems_, "; "))));
    }

    EffectWays::Doors doors_;
    EffectDone done_;
    std::set<std::string> waiting_;
    std::vector<std::string> problems_;
    std::size_t items_ = 0;
};

template <typename Job>
void emptyApart(const EffectWays::Doors& doors,
                const std::shared_ptr<Emptying>& emptying,
                const std::string& place,
                Job job) {
    emptying->expect(place);
    doors->work.runApart(std::move(job), [emptying, place](const Emptied& emptied) {
        emptying->finished(place, emptied);
    });
}

void emptyAll(const EffectWays::Doors& doors, EffectDone done) {
    const auto emptying = std::make_shared<Emptying>(doors, std::move(done));
    const auto user = doors->user;
    emptyApart(doors, emptying, "the home folder", [dataHome = doors->environment.dataHome, user] {
        return FreedesktopTrash::emptyHome(dataHome, user);
    });
    std::set<std::string> seen; // mounts stand over one another, and the last is the one seen
    for (const auto& mount : doors->mounts.mounts()) {
        if (FreedesktopTrash::mayHaveTrash(mount) && seen.insert(mount.path).second)
            emptyApart(doors, emptying, mount.path, [path = mount.path, user] {
                return FreedesktopTrash::emptyMount(path, user);
            });
    }
    doors->queue.postAfter(doors->patience.disk, [emptying] { emptying->timeOver(); });
}

void openFilesFolder(const EffectWays::Doors& doors, EffectDone done) {
    doors->work.runApart(
        [path = doors->environment.dataHome + "/Trash/files"] {
            std::error_code ignored;
            return std::filesystem::is_directory(path, ignored) ? path : std::string();
        },
        [doors, done = std::move(done)](const std::string& path) {
            if (path.empty())
                done("nothing has been moved to the Trash yet");
            else
                doors->openUrl(Urls::fileUrl(path), done);
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
    if (manager && !manager->trashUrl.empty() && context.facts.hasProgram(manager->program))
        ways.push_back(
            EffectWays::detached(context.doors,
                                 {context.facts.programs.at(std::string(manager->program)),
                                  std::string(manager->trashUrl)}));
    ways.push_back(
        [doors = context.doors](EffectDone done) { openFilesFolder(doors, std::move(done)); });
    return Effect::by(EffectWays::firstOf(std::move(ways)));
}

} // namespace tessarine
