#include "LauncherCore/clipboard/ClipboardHistory.h"

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <utility>

namespace tessarine {

namespace {

constexpr double secondsOfADay = 86400;

std::int64_t days(const ClipRetention& retention, ClipKind kind) {
    switch (kind) {
    case ClipKind::text:
        return retention.textDays;
    case ClipKind::file:
        return retention.fileDays;
    case ClipKind::image:
        return retention.imageDays;
    }
    return 0;
}

bool hasExpired(const ClipboardEntry& entry, double now, const ClipRetention& retention) {
    const auto kept = days(retention, entry.kind);
    return !entry.pinned && kept >= 1 &&
           static_cast<double>(kept) * secondsOfADay < now - entry.lastSeen;
}

using Entries = std::vector<ClipboardEntry>;

auto hasId(std::string_view id) {
    return [id](const ClipboardEntry& entry) { return entry.id == id; };
}

auto placeOf(Entries& entries, std::string_view id) {
    return std::ranges::find_if(entries, hasId(id));
}

/// Takes out what `goes`; both lists keep their order.
template <typename Goes> Entries takeOut(Entries& entries, Goes goes) {
    Entries taken;
    const auto gone = std::stable_partition(entries.begin(), entries.end(), std::not_fn(goes));
    taken.assign(std::make_move_iterator(gone), std::make_move_iterator(entries.end()));
    entries.erase(gone, entries.end());
    return taken;
}

/// Walks from the tail to the head and takes out unpinned entries until `most` are left. The last
/// one comes first.
Entries takeFromTail(Entries& entries, std::size_t most) {
    Entries taken;
    for (auto at = entries.end(); entries.size() > most && at != entries.begin();) {
        --at;
        if (at->pinned)
            continue;
        taken.push_back(std::move(*at));
        at = entries.erase(at);
    }
    return taken;
}

} // namespace

const ClipboardEntry* ClipboardHistory::entry(std::string_view id) const {
    const auto found = std::ranges::find_if(entries, hasId(id));
    return found == entries.end() ? nullptr : &*found;
}

std::vector<ClipboardEntry> ClipboardHistory::record(ClipboardEntry entry) {
    const auto old = placeOf(entries, entry.id);
    if (old == entries.end()) {
        entries.insert(entries.begin(), std::move(entry));
    } else {
        old->lastSeen = entry.lastSeen;
        ++old->count;
        if (entry.sourceApp)
            old->sourceApp = std::move(entry.sourceApp);
        std::rotate(entries.begin(), old, std::next(old));
    }
    return takeFromTail(entries, keep);
}

void ClipboardHistory::bump(std::string_view id, double at) {
    const auto found = placeOf(entries, id);
    if (found == entries.end())
        return;
    found->lastSeen = at;
    ++found->count;
}

void ClipboardHistory::touch(std::string_view id, double at) {
    if (const auto found = placeOf(entries, id); found != entries.end())
        found->lastSeen = at;
}

std::vector<ClipboardEntry> ClipboardHistory::remove(std::string_view id) {
    // The id may be that of an entry itself, which moves.
    const std::string wanted(id);
    return takeOut(entries, hasId(wanted));
}

void ClipboardHistory::togglePin(std::string_view id) {
    if (const auto found = placeOf(entries, id); found != entries.end())
        found->pinned = !found->pinned;
}

void ClipboardHistory::notePaste(std::string_view id,
                                 std::string_view into,
                                 ClipGroupsRuntime& groups) {
    const auto found = placeOf(entries, id);
    if (found == entries.end())
        return;
    std::string place(into);
    auto places = std::move(found->pastedInto).value_or(std::vector<std::string>());
    std::erase(places, place);
    places.push_back(std::move(place));
    found->pastedInto = std::move(places);
    // A rule may ask where it was pasted.
    groups.forget(found->id);
}

std::vector<ClipboardEntry> ClipboardHistory::prune(double now, const ClipRetention& retention) {
    auto dropped = takeOut(
        entries, [&](const ClipboardEntry& entry) { return hasExpired(entry, now, retention); });
    const auto kept = static_cast<std::size_t>(std::max<std::int64_t>(retention.keep, 0));
    std::ranges::move(takeFromTail(entries, kept), std::back_inserter(dropped));
    return dropped;
}

bool ClipboardHistory::isCleared(const ClipboardEntry& entry,
                                 double now,
                                 std::optional<Seconds> newerThan) {
    return !entry.pinned && (!newerThan || now - entry.lastSeen <= newerThan->count());
}

std::vector<ClipboardEntry> ClipboardHistory::clear(double now, std::optional<Seconds> newerThan) {
    return takeOut(entries,
                   [&](const ClipboardEntry& entry) { return isCleared(entry, now, newerThan); });
}

std::vector<ClipboardEntry> ClipboardHistory::search(std::string_view query,
                                                     std::size_t limit,
                                                     const std::optional<ClipFilterKey>& filter,
                                                     ClipGroupsRuntime& groups) const {
    const auto folded = Folding::fold(query);
    std::vector<const ClipboardEntry*> found;
    for (const auto& each : entries) {
        if (each.text.holds(folded) && (!filter || groups.filterKey(each) == *filter))
            found.push_back(&each);
    }
    std::ranges::stable_sort(found, std::greater(), &ClipboardEntry::lastSeen);
    found.resize(std::min(found.size(), limit));
    std::vector<ClipboardEntry> result;
    result.reserve(found.size());
    for (const auto* each : found)
        result.push_back(*each);
    return result;
}

std::map<ClipFilterKey, std::int64_t> ClipboardHistory::counts(ClipGroupsRuntime& groups) const {
    std::map<ClipFilterKey, std::int64_t> result;
    for (const auto& each : entries)
        ++result[groups.filterKey(each)];
    return result;
}

} // namespace tessarine
