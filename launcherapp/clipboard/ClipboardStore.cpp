#include "launcherapp/clipboard/ClipboardStore.h"

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/clipboard/ClipboardJson.h"
#include "LauncherCore/text/Counted.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <cassert>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t mostFreedHere = std::size_t{1} << 20; // bytes: well below a millisecond

/// What the document on disk gave.
struct Loaded {
    ClipboardHistory history;
    std::optional<std::string> old; ///< the text, when the next save would lose some of it
};

std::optional<Loaded> decoded(const std::string& text) {
    auto document = ClipboardJson::decoded(text);
    if (!document)
        return std::nullopt;
    return Loaded{.history = std::move(document->history),
                  .old = document->losesOld ? std::optional(text) : std::nullopt};
}

std::size_t textBytes(const std::vector<ClipboardEntry>& entries) {
    std::size_t bytes = 0;
    for (const auto& entry : entries)
        bytes += entry.text.string().size();
    return bytes;
}

/// Walks from the tail to the head, as the cap on their number does, and takes out unpinned entries
/// until the texts left are small enough together.
std::vector<ClipboardEntry> takeLargeFromTail(std::vector<ClipboardEntry>& entries) {
    std::vector<ClipboardEntry> taken;
    auto bytes = textBytes(entries);
    for (auto at = entries.end(); bytes > ClipboardStore::mostTextBytes && at != entries.begin();) {
        --at;
        if (at->pinned)
            continue;
        bytes -= at->text.string().size();
        taken.push_back(std::move(*at));
        at = entries.erase(at);
    }
    return taken;
}

} // namespace

ClipboardStore::ClipboardStore(Services services, StateFile file)
    : services_(std::move(services)), file_(std::move(file)),
      pictures_({.queue = services_.queue,
                 .work = services_.work,
                 .diagnostics = services_.diagnostics,
                 .pictures = services_.pictures},
                history_),
      stamps_(services_.queue, services_.prefs) {}

ClipboardStore::~ClipboardStore() = default;

void ClipboardStore::load(std::function<void()> loaded) {
    requireMainThread(services_.queue);
    file_.loadLater(services_.queue,
                    decoded,
                    [this, alive = std::weak_ptr(alive_), loaded = std::move(loaded)](
                        std::optional<Loaded> document) {
                        if (alive.expired())
                            return;
                        wasReadWhole_ = document && !document->old;
                        if (document && document->old)
                            file_.markDamaged(*std::move(document->old));
                        takeLoaded(document ? std::move(document->history) : ClipboardHistory{});
                        loaded();
                    });
}

void ClipboardStore::takeLoaded(ClipboardHistory history) {
    history_ = std::move(history);
    isLoaded_ = true;
    for (const auto& newerThan : std::exchange(earlyClearings_, {}))
        clear(newerThan);
    changes_.tell();
}

void ClipboardStore::record(ClipboardEntry entry) {
    requireMainThread(services_.queue);
    assert(isLoaded_);
    std::vector given{entry}; // what it brought may be dropped for what was there already
    auto dropped = history_.record(std::move(entry));
    auto& front = history_.entries.front();
    if (front.id == given.front().id) {
        // A first copy on a full disk has no files; a later one brings them.
        if (!front.imageFile)
            front.imageFile = given.front().imageFile;
        if (!front.fullFile)
            front.fullFile = given.front().fullFile;
    }
    letGo(std::move(given));
    letGo(std::move(dropped));
    keepWithinBounds();
    if (!history_.entries.empty())
        stamps_.stamp(history_.entries.front());
    changed();
}

void ClipboardStore::keepWithinBounds() {
    auto dropped = takeLargeFromTail(history_.entries);
    if (dropped.empty())
        return;
    services_.diagnostics.log(fmt::format("clipboard: dropped {} {}, as the texts together are "
                                          "over {} MB",
                                          dropped.size(),
                                          dropped.size() == 1 ? "entry" : "entries",
                                          mostTextBytes >> 20));
    letGo(std::move(dropped));
}

/// How many picture files no clipping names any more; they go with the next save.
std::size_t ClipboardStore::letGo(std::vector<ClipboardEntry> dropped) {
    for (const auto& entry : dropped) {
        if (!has(entry.id))
            services_.groups.forget(entry.id); // it may come back, with other marks
    }
    const auto files = pictures_.drop(dropped);
    // Giving back the memory of many large texts takes long.
    if (textBytes(dropped) > mostFreedHere)
        services_.work.run(WorkPriority::utility,
                           [dropped = std::make_shared<std::vector<ClipboardEntry>>(
                                std::move(dropped))] { dropped->clear(); });
    return files;
}

void ClipboardStore::bump(std::string_view id) {
    requireMainThread(services_.queue);
    if (!has(id))
        return;
    history_.bump(id, services_.queue.now());
    changed();
}

void ClipboardStore::touch(std::string_view id) {
    requireMainThread(services_.queue);
    if (!has(id))
        return;
    history_.touch(id, services_.queue.now());
    changed();
}

void ClipboardStore::togglePin(std::string_view id) {
    requireMainThread(services_.queue);
    if (!has(id))
        return;
    history_.togglePin(id);
    changed();
}

void ClipboardStore::remove(std::string_view id) {
    requireMainThread(services_.queue);
    auto removed = history_.remove(id);
    if (removed.empty())
        return;
    stamps_.noteDeletion(removed.front().id);
    letGo(std::move(removed));
    changed();
}

void ClipboardStore::notePaste(std::string_view id, std::string_view into) {
    requireMainThread(services_.queue);
    if (!has(id))
        return;
    history_.notePaste(id, into, services_.groups);
    changed();
}

void ClipboardStore::clear(std::optional<Seconds> newerThan) {
    requireMainThread(services_.queue);
    ++clearings_;
    if (!isLoaded_)
        return earlyClearings_.push_back(newerThan);
    auto cleared = history_.clear(services_.queue.now(), newerThan);
    for (const auto& entry : cleared)
        stamps_.noteDeletion(entry.id);
    auto line = fmt::format(
        "clipboard: cleared {} {}", cleared.size(), cleared.size() == 1 ? "entry" : "entries");
    if (newerThan)
        line += fmt::format(", newer than {:.0f} minutes", std::floor(newerThan->count() / 60));
    letGo(std::move(cleared));
    changed();
    services_.diagnostics.log(line);
}

void ClipboardStore::pruneNow() {
    requireMainThread(services_.queue);
    keepWithinBounds();
    auto dropped = history_.prune(services_.queue.now(), services_.prefs.clipRetention());
    if (!dropped.empty()) {
        const auto count = dropped.size();
        const auto files = letGo(std::move(dropped));
        services_.diagnostics.log(
            fmt::format("clipboard: pruned {} entries past their retention window, deleted {}",
                        count,
                        counted(files, "thumbnail")));
        changed();
    } else if (!saveScheduled_ && saving_ == 0 && revision_ != savedRevision_) {
        save();
    }
}

void ClipboardStore::keepPicture(std::string bytes,
                                 std::function<void(std::optional<ClipPictures::Kept>)> done) {
    requireMainThread(services_.queue);
    pictures_.keep(std::move(bytes), std::move(done));
}

void ClipboardStore::discard(const ClipPictures::Kept& kept) {
    requireMainThread(services_.queue);
    pictures_.discard(kept);
}

void ClipboardStore::sweepPictures() {
    requireMainThread(services_.queue);
    file_.removeLeftovers();
    pictures_.removeLeftovers();
    if (wasReadWhole_) // else nothing says what is wanted
        pictures_.sweep(file_.path());
}

void ClipboardStore::changed() {
    ++revision_;
    if (!std::exchange(saveScheduled_, true)) {
        services_.queue.postAfter(savePause, [this, alive = std::weak_ptr(alive_)] {
            if (alive.expired() || !std::exchange(saveScheduled_, false))
                return;
            if (saving_ == 0) // else it is saved when that is done
                save();
        });
    }
    changes_.tell();
}

void ClipboardStore::flush() {
    requireMainThread(services_.queue);
    saveScheduled_ = false;
    if (revision_ != savedRevision_ && (saving_ == 0 || revision_ != savingRevision_))
        save();
}

void ClipboardStore::end() {
    pictures_.end();
    flush();
}

void ClipboardStore::save() {
    ++saving_;
    savingRevision_ = revision_;
    *newest_ = revision_;
    file_.saveMade(
        services_.queue,
        [history = history_,
         newest = newest_,
         revision = revision_]() -> std::optional<std::string> {
            // Somebody may be about to end the program: only the newest is worth the time.
            if (*newest != revision)
                return std::nullopt;
            auto text = ClipboardJson::encoded(history);
            return *newest == revision ? std::optional(std::move(text)) : std::nullopt;
        },
        [this, alive = std::weak_ptr(alive_), revision = revision_, gone = pictures_.dropped()](
            StateFile::Saved outcome) {
            if (alive.expired())
                return;
            if (outcome == StateFile::Saved::yes)
                pictures_.documentSaved(gone);
            saved(revision, outcome);
        });
}

void ClipboardStore::saved(std::uint64_t revision, StateFile::Saved outcome) {
    --saving_;
    if (outcome == StateFile::Saved::yes)
        savedRevision_ = revision;
    if (saving_ == 0 && revision_ != revision && !saveScheduled_)
        save();
}

} // namespace tessarine
