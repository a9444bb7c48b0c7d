#include "launcherapp/clipboard/groups/ClipGroupStore.h"

#include "LauncherCore/clipboard/ClipGroupsJson.h"
#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/DirectoryWatcher.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr std::size_t largestFile = std::size_t{4} << 20;
constexpr Seconds settling{0.1}; ///< an editor saves in several steps

constexpr std::string_view notParsed = "did not parse";
constexpr std::string_view notRead = "could not be read";

} // namespace

ClipGroupStore::ClipGroupStore(Services services, std::string path)
    : services_(services), path_(std::move(path)) {}

ClipGroupStore::~ClipGroupStore() = default;

void ClipGroupStore::load(Upkeep upkeep) {
    requireMainThread(services_.queue);
    upkeep_ = upkeep;
    auto& since = services_.prefs.clipPasteTrackingSince;
    const auto known = since() != 0 ? since() : services_.queue.now();
    if (since() == 0 && upkeep == Upkeep::all)
        since.set(known);
    services_.runtime.setPasteTrackingSince(known);
    if (!readAgain() && upkeep == Upkeep::all)
        write(ClipGroups::suggested());
}

bool ClipGroupStore::readAgain() {
    requireMainThread(services_.queue);
    try {
        const auto text = services_.files.read(path_, largestFile);
        if (!text)
            loadError_.reset(); // what could not be read is gone
        else if (text != lastText_)
            take(*text);
        return text.has_value();
    } catch (const FileError& error) {
        services_.diagnostics.log(error.what());
        lastText_.reset(); // once it can be read, even the same text is news
        refuse(notRead);
        return true;
    }
}

void ClipGroupStore::take(const std::string& text) {
    lastText_ = text;
    auto document = ClipGroupsJson::decoded(text);
    if (!document)
        return refuse(notParsed);
    loadError_.reset();
    auto [groups, isUpgraded] = ClipGroups::migratingLedger(std::move(document->groups));
    if (isUpgraded && upkeep_ == Upkeep::all && save(groups))
        services_.diagnostics.log("clip groups: upgraded the handoff ledger to read the handoff "
                                  "file instead of the paste ledger");
    services_.runtime.setCurrent(std::move(groups));
    changes_.tell();
}

void ClipGroupStore::refuse(std::string_view problem) {
    loadError_ =
        fmt::format("clip-groups.json {}. {} in force until it {}.",
                    problem,
                    services_.runtime.current()->groups.empty() ? "No taught group is"
                                                                : "The groups read before stay",
                    problem == notParsed ? "does" : "can be");
    services_.diagnostics.log("clip groups: " + *loadError_);
}

bool ClipGroupStore::write(const ClipGroups& groups) {
    requireMainThread(services_.queue);
    if (!save(groups))
        return false;
    loadError_.reset();
    services_.runtime.setCurrent(groups);
    changes_.tell();
    return true;
}

bool ClipGroupStore::save(const ClipGroups& groups) {
    auto& files = services_.files;
    try {
        const auto old = files.read(path_, largestFile);
        const auto document = old ? ClipGroupsJson::decoded(*old) : std::nullopt;
        if (old && !document) {
            refuse(notParsed); // it is left for the user to mend
            return false;
        }
        if (document && document->losesOld)
            files.save(StateFile::freeCopyName(files, path_), *old);
        auto text = ClipGroupsJson::encoded(groups);
        files.save(path_, text);
        lastText_ = std::move(text);
        return true;
    } catch (const FileError& error) {
        services_.diagnostics.log(error.what());
        return false;
    }
}

ClipGroupStore::Removal ClipGroupStore::remove(std::string_view name) {
    auto groups = *services_.runtime.current();
    if (!groups.remove(name))
        return Removal::absent;
    return write(groups) ? Removal::done : Removal::notWritten;
}

void ClipGroupStore::follow(DirectoryWatcher& directories) {
    requireMainThread(services_.queue);
    watch_ = directories.watch(StateFile::foldersOf(services_.files, path_),
                               Seconds{0},
                               [this](const DirectoryChanges&) { lookSoon(); });
}

/// The folder holds files that change all the time: one look stands for all of a moment.
void ClipGroupStore::lookSoon() {
    if (std::exchange(isLookDue_, true))
        return;
    services_.queue.postAfter(settling, [this, alive = std::weak_ptr(alive_)] {
        if (alive.expired())
            return;
        isLookDue_ = false;
        look();
    });
}

void ClipGroupStore::look() {
    services_.work.run(
        WorkPriority::utility,
        [&files = services_.files, path = path_]() -> std::optional<std::string> {
            try {
                return files.read(path, largestFile);
            } catch (const FileError&) {
                return std::nullopt;
            }
        },
        [this, alive = std::weak_ptr(alive_), known = lastText_](
            const std::optional<std::string>& text) {
            // What was read or written here meanwhile is newer, and what is in force outlives a
            // file that is gone or can't be read.
            if (!alive.expired() && text && known == lastText_ && text != lastText_)
                take(*text);
        });
}

} // namespace tessarine
