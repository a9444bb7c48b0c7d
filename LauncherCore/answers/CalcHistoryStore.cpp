#include "LauncherCore/answers/CalcHistoryStore.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

bool holds(const CalcEntry& entry, std::string_view foldedNeedle) {
    const auto isIn = [&](const std::string& text) {
        return Folding::fold(text).find(foldedNeedle) != std::string::npos;
    };
    return isIn(entry.expression) || isIn(entry.formatted) ||
           (entry.detail && isIn(*entry.detail)) || (entry.name && isIn(*entry.name));
}

} // namespace

CalcHistoryStore::CalcHistoryStore(std::vector<CalcEntry> entries) : entries_(std::move(entries)) {}

const CalcEntry* CalcHistoryStore::entry(std::string_view id) const {
    const auto found = std::ranges::find(entries_, id, &CalcEntry::id);
    return found == entries_.end() ? nullptr : &*found;
}

CalcEntry* CalcHistoryStore::find(std::string_view id) {
    const auto found = std::ranges::find(entries_, id, &CalcEntry::id);
    return found == entries_.end() ? nullptr : &*found;
}

const CalcEntry& CalcHistoryStore::record(CalcEntry entry) {
    const auto earlier = std::ranges::find_if(entries_, [&](const CalcEntry& each) {
        return each.kind == entry.kind && each.expression == entry.expression;
    });
    if (earlier != entries_.end()) {
        entry.id = std::move(earlier->id);
        entry.pinned = earlier->pinned;
        if (earlier->name)
            entry.name = std::move(earlier->name);
        entries_.erase(earlier);
    }
    entries_.insert(entries_.begin(), std::move(entry));
    trim();
    return entries_.front();
}

void CalcHistoryStore::trim() {
    if (entries_.size() <= keep)
        return;
    const auto old = entries_.begin() + static_cast<std::ptrdiff_t>(keep);
    const auto isDropped = [](const CalcEntry& each) { return !each.pinned; };
    entries_.erase(std::remove_if(old, entries_.end(), isDropped), entries_.end());
}

bool CalcHistoryStore::remove(std::string_view id) {
    return std::erase_if(entries_, [&](const CalcEntry& each) { return each.id == id; }) > 0;
}

bool CalcHistoryStore::pin(std::string_view id) {
    auto* const found = find(id);
    if (found)
        found->pinned = true;
    return found != nullptr;
}

bool CalcHistoryStore::unpin(std::string_view id) {
    auto* const found = find(id);
    if (found)
        found->pinned = false;
    return found != nullptr;
}

void CalcHistoryStore::clear(Pinned pinned) {
    std::erase_if(entries_,
                  [&](const CalcEntry& each) { return pinned == Pinned::removed || !each.pinned; });
}

std::vector<CalcEntry> CalcHistoryStore::search(std::string_view query, std::size_t limit) const {
    const auto needle = Folding::fold(Folding::trimmed(query));
    std::vector<CalcEntry> found;
    for (const auto& entry : entries_) {
        if (found.size() == limit)
            break;
        if (needle.empty() || holds(entry, needle))
            found.push_back(entry);
    }
    return found;
}

Calc::Variables CalcHistoryStore::variables() const {
    Calc::Variables result;
    // From the oldest on, so that the newest stays.
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
        if (entry->name)
            result[*entry->name] = entry->value;
    }
    if (!entries_.empty())
        result["ans"] = entries_.front().value;
    return result;
}

} // namespace tessarine
