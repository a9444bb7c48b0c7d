#include "launcherapp/clipboard/ClipboardStore.h"

#include "LauncherCore/clipboard/ClipboardJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace tessarine {

namespace {

/// Adds the picture files of an entry.
void addPictures(ClipboardStore::FileNames& names, const ClipboardEntry& entry) {
    for (const auto& name : {entry.imageFile, entry.fullFile}) {
        if (name)
            names.insert(*name);
    }
}

ClipboardStore::FileNames namedPictures(const ClipboardHistory& history) {
    ClipboardStore::FileNames names;
    for (const auto& entry : history.entries)
        addPictures(names, entry);
    return names;
}

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

} // namespace

ClipboardStore::ClipboardStore(Services services, StateFile file)
    : services_(std::move(services)), file_(std::move(file)),
      pictureQueue_(services_.work.serial("clip-pictures")) {}

ClipboardStore::~ClipboardStore() = default;

void ClipboardStore::load(std::function<void()> loaded) {
    requireMainThread(services_.queue);
    file_.loadLater(services_.queue,
                    decoded,
                    [this, alive = std::weak_ptr(alive_), loaded = std::move(loaded)](
                        std::optional<Loaded> document) {
                        if (alive.expired())
                            return;
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
    const auto id = entry.id;
    FileNames brought;
    addPictures(brought, entry);
    dropPictures(history_.record(std::move(entry)));
    // An entry of this content that was there already keeps the files that it had.
    if (!brought.empty())
        dropPictures(std::move(brought));
    stampLocal(id);
    changed();
}

void ClipboardStore::bump(std::string_view id) {
    requireMainThread(services_.queue);
    history_.bump(id, services_.queue.now());
    changed();
}

void ClipboardStore::touch(std::string_view id) {
    requireMainThread(services_.queue);
    history_.touch(id, services_.queue.now());
    changed();
}

void ClipboardStore::togglePin(std::string_view id) {
    requireMainThread(services_.queue);
    history_.togglePin(id);
    changed();
}

void ClipboardStore::remove(std::string_view id) {
    requireMainThread(services_.queue);
    const auto removed = history_.remove(id);
    if (removed.empty())
        return;
    noteDeletion(removed.front().id);
    dropPictures(removed);
    changed();
}

void ClipboardStore::notePaste(std::string_view id, std::string_view into) {
    requireMainThread(services_.queue);
    history_.notePaste(id, into, services_.groups);
    changed();
}

std::vector<ClipboardEntry>
ClipboardStore::clearing(ClipboardHistory& history, double now, std::optional<Seconds> newerThan) {
    const auto isKept = [&](const ClipboardEntry& entry) {
        return entry.pinned || (newerThan && now - entry.lastSeen > newerThan->count());
    };
    auto& entries = history.entries;
    const auto first = std::ranges::stable_partition(entries, isKept).begin();
    std::vector cleared(std::make_move_iterator(first), std::make_move_iterator(entries.end()));
    entries.erase(first, entries.end());
    return cleared;
}

void ClipboardStore::clear(std::optional<Seconds> newerThan) {
    requireMainThread(services_.queue);
    ++clearings_;
    if (!isLoaded_)
        return earlyClearings_.push_back(newerThan);
    const auto cleared = clearing(history_, services_.queue.now(), newerThan);
    for (const auto& entry : cleared)
        noteDeletion(entry.id);
    dropPictures(cleared);
    changed();
    auto line = fmt::format(
        "clipboard: cleared {} {}", cleared.size(), cleared.size() == 1 ? "entry" : "entries");
    if (newerThan)
        line += fmt::format(", newer than {:.0f} minutes", std::floor(newerThan->count() / 60));
    services_.diagnostics.log(line);
}

void ClipboardStore::pruneNow() {
    requireMainThread(services_.queue);
    const auto dropped = history_.prune(services_.queue.now(), services_.prefs.clipRetention());
    if (dropped.empty())
        return;
    const auto files = dropPictures(dropped);
    services_.diagnostics.log(
        fmt::format("clipboard: pruned {} entries past their retention window, deleted {} {}",
                    dropped.size(),
                    files,
                    files == 1 ? "thumbnail" : "thumbnails"));
    changed();
}

// Pictures. All that writes or deletes them stands in one line, and the names that are to go are
// compared with the clippings again once no picture is on its way into the history: a copy of the
// same picture may have been made meanwhile.

void ClipboardStore::keepPicture(std::string bytes,
                                 std::function<void(std::optional<ClipPictures::Kept>)> done) {
    requireMainThread(services_.queue);
    ++keeping_;
    auto finished = [this, alive = std::weak_ptr(alive_), done = std::move(done)](
                        std::optional<ClipPictures::Kept> kept) {
        if (alive.expired())
            return;
        done(std::move(kept));
        if (!alive.expired())
            picturesAreKept();
    };
    pictureQueue_.submit([&queue = services_.queue,
                          pictures = services_.pictures,
                          bytes = std::make_shared<std::string>(std::move(bytes)),
                          finished = std::move(finished)] {
        const auto own = std::move(*bytes); // freed here, as that takes time too
        queue.post([finished, kept = pictures->keep(own)] { finished(kept); });
    });
}

void ClipboardStore::picturesAreKept() {
    if (--keeping_ > 0)
        return;
    dropPictures(std::exchange(toDrop_, {}));
    if (std::exchange(sweepsLater_, false))
        sweepPictures();
}

void ClipboardStore::discard(const ClipPictures::Kept& kept) {
    ClipboardEntry entry;
    entry.imageFile = kept.imageFile;
    entry.fullFile = kept.fullFile;
    dropPictures(std::vector{std::move(entry)});
}

ClipboardStore::FileNames
ClipboardStore::unnamedPictures(const ClipboardHistory& history,
                                const std::vector<ClipboardEntry>& dropped) {
    FileNames names;
    for (const auto& entry : dropped)
        addPictures(names, entry);
    if (names.empty())
        return names;
    const auto named = namedPictures(history);
    std::erase_if(names, [&](const std::string& name) { return named.contains(name); });
    return names;
}

/// How many files no clipping names any more.
std::size_t ClipboardStore::dropPictures(const std::vector<ClipboardEntry>& dropped) {
    auto names = unnamedPictures(history_, dropped);
    const auto count = names.size();
    dropPictures(std::move(names));
    return count;
}

void ClipboardStore::dropPictures(FileNames names) {
    if (keeping_ > 0) {
        toDrop_.merge(names);
        return;
    }
    if (names.empty())
        return;
    const auto named = namedPictures(history_);
    std::erase_if(names, [&](const std::string& name) { return named.contains(name); });
    pictureQueue_.submit([pictures = services_.pictures, names = std::move(names)] {
        for (const auto& name : names)
            pictures->remove(name);
    });
}

void ClipboardStore::sweepPictures() {
    requireMainThread(services_.queue);
    if (!isLoaded_)
        return; // nothing says yet what is wanted
    if (keeping_ > 0) {
        sweepsLater_ = true;
        return;
    }
    pictureQueue_.submit([pictures = services_.pictures, named = namedPictures(history_)] {
        for (const auto& name : pictures->names()) {
            if (!named.contains(name))
                pictures->remove(name);
        }
    });
}

// Saving.

void ClipboardStore::changed() {
    if (isLoaded_ && !std::exchange(saveScheduled_, true)) {
        services_.queue.postAfter(savePause, [this, alive = std::weak_ptr(alive_)] {
            if (!alive.expired())
                flush();
        });
    }
    changes_.tell();
}

void ClipboardStore::flush() {
    requireMainThread(services_.queue);
    if (!std::exchange(saveScheduled_, false))
        return;
    file_.saveMade([history = history_] { return ClipboardJson::encoded(history); });
}

// What other devices are to hear of.

std::int64_t ClipboardStore::nextLamport() {
    const auto next = services_.prefs.clipSyncLamport() + 1;
    services_.prefs.clipSyncLamport.set(next);
    return next;
}

void ClipboardStore::stampLocal(std::string_view id) {
    if (!services_.prefs.clipSyncEnabled())
        return;
    const auto entry = std::ranges::find(history_.entries, id, &ClipboardEntry::id);
    if (entry == history_.entries.end())
        return;
    entry->syncOrigin = services_.prefs.clipSyncDeviceID();
    entry->syncLamport = nextLamport();
}

void ClipboardStore::noteDeletion(std::string_view id) {
    if (!services_.prefs.clipSyncEnabled())
        return;
    std::erase_if(tombstones_, [&](const ClipTombstone& each) { return each.id == id; });
    tombstones_.push_back({.id = std::string(id),
                           .origin = services_.prefs.clipSyncDeviceID(),
                           .lamport = nextLamport(),
                           .at = services_.queue.now()});
    trimTombstones();
}

void ClipboardStore::trimTombstones() {
    std::erase_if(tombstones_, [now = services_.queue.now()](const ClipTombstone& each) {
        return now - each.at > tombstoneWindow;
    });
}

} // namespace tessarine
