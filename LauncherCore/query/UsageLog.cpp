#include "LauncherCore/query/UsageLog.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace tessarine {

namespace {

constexpr std::int64_t highestFrecency = 900;
constexpr double weightWhenOlder = 2;

/// What one launch adds while it is younger than `ageSeconds`.
struct Freshness {
    double ageSeconds;
    double weight;
};

constexpr auto freshness = std::to_array<Freshness>({
    {4 * 3600, 100},
    {86400, 70},
    {3 * 86400, 50},
    {7 * 86400, 30},
    {30 * 86400, 10},
});

/// Whether the query is plain ASCII that lower-casing and trimming would leave as it is.
bool isNormalized(std::string_view query) {
    return !query.starts_with(' ') && !query.ends_with(' ') &&
           std::ranges::all_of(
               query, [](char c) { return c >= ' ' && c <= '~' && !(c >= 'A' && c <= 'Z'); });
}

double weight(double age) {
    // A launch stamped in the future, or at no time at all, counts as fresh.
    if (!(age >= 0))
        return freshness.front().weight;
    for (const auto& step : freshness) {
        if (age < step.ageSeconds)
            return step.weight;
    }
    return weightWhenOlder;
}

/// What `picks` of a row for a query are worth, from the second pick on.
std::int64_t worth(std::int64_t picks) {
    // Six picks reach the ceiling; capping them first keeps a forged count from overflowing.
    return std::min<std::int64_t>(1200 + (std::min<std::int64_t>(picks, 100) - 2) * 400, 2600);
}

std::int64_t exactWorth(std::int64_t picks) {
    if (picks < 1)
        return 0;
    return picks == 1 ? 600 : worth(picks);
}

std::int64_t prefixWorth(std::int64_t picks) {
    if (picks < 1)
        return 0;
    return picks == 1 ? 200 : worth(picks) / 3;
}

/// Whether `query` begins with `prefix`, as characters, and is longer.
bool isLonger(std::string_view query, std::string_view prefix) {
    if (query.size() <= prefix.size() || !query.starts_with(prefix))
        return false;
    // The bytes may part a character in two: then the texts begin differently after all.
    const auto head = Graphemes::prefix(query, Graphemes::count(prefix));
    return head == prefix;
}

/// The launches of both, the newest `keep` of them, oldest first.
std::vector<double> mergedLaunches(std::vector<double> left, const std::vector<double>& right) {
    left.insert(left.end(), right.begin(), right.end());
    std::ranges::sort(left);
    if (left.size() > UsageLog::keep)
        left.erase(left.begin(), left.end() - static_cast<std::ptrdiff_t>(UsageLog::keep));
    return left;
}

std::int64_t bestPick(const UsageLog::Picks& picks) {
    std::int64_t best = 0;
    for (const auto& [id, count] : picks)
        best = std::max(best, count);
    return best;
}

} // namespace

std::span<const UsageLog::Renaming> UsageLog::renamedIDs() {
    static constexpr auto table = std::to_array<Renaming>({{"cmd:wispr", "cmd:sys.fixWispr"}});
    return table;
}

std::string UsageLog::normalizedQuery(std::string_view query) {
    auto text = Folding::lowercase(query);
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.back()))
        text.pop_back();
    const auto first = std::ranges::find_if_not(text, isBlank);
    text.erase(text.begin(), first);
    return text;
}

void UsageLog::record(std::string_view id, double at) {
    auto& record = items[std::string(id)];
    record.launches.push_back(at);
    if (record.launches.size() > keep)
        record.launches.erase(record.launches.begin(),
                              record.launches.end() - static_cast<std::ptrdiff_t>(keep));
    ++record.total;
}

void UsageLog::recordChoice(std::string_view query, std::string_view id, double) {
    const auto normalized = normalizedQuery(query);
    const auto length = Graphemes::count(normalized);
    if (length < shortestQuery || length > longestQuery)
        return;
    ++choices[normalized][std::string(id)];
    if (choices.size() <= keepQueries)
        return;
    // Among the equally weak any may go but the query just picked.
    const auto weakness = [&](const auto& entry) {
        return std::pair(bestPick(entry.second), entry.first == normalized);
    };
    const auto weakest = std::ranges::min_element(choices, {}, weakness);
    choices.erase(weakest);
}

std::int64_t UsageLog::frecency(std::string_view id, double now) const {
    const auto found = items.find(id);
    if (found == items.end())
        return 0;
    double sum = 0;
    for (const double launch : found->second.launches)
        sum += weight(now - launch);
    return std::min(static_cast<std::int64_t>(sum), highestFrecency);
}

std::int64_t UsageLog::affinity(std::string_view query, std::string_view id, double) const {
    // Text as it is mostly typed is already in its stored form, and needs no copy.
    const auto normalized = isNormalized(query) ? std::string() : normalizedQuery(query);
    if (!normalized.empty())
        query = normalized;
    if (Graphemes::count(query) < shortestQuery)
        return 0;
    return affinityOf(query, id);
}

std::int64_t UsageLog::affinityOf(std::string_view normalized, std::string_view id) const {
    if (const auto exact = choices.find(normalized); exact != choices.end()) {
        const auto picks = exact->second.find(id);
        if (picks != exact->second.end() && picks->second != 0)
            return exactWorth(picks->second);
    }
    std::int64_t most = 0;
    for (const auto& [query, picks] : choices) {
        if (!isLonger(query, normalized))
            continue;
        if (const auto found = picks.find(id); found != picks.end())
            most = std::max(most, found->second);
    }
    return prefixWorth(most);
}

UsageLog::Picks UsageLog::affinityTable(std::string_view query, double) const {
    const auto normalized = normalizedQuery(query);
    Picks table;
    if (Graphemes::count(normalized) < shortestQuery)
        return table;
    // One walk over all queries: the highest count of each id among the longer ones.
    for (const auto& [stored, picks] : choices) {
        if (!isLonger(stored, normalized))
            continue;
        for (const auto& [id, count] : picks) {
            auto& most = table[id];
            most = std::max(most, count);
        }
    }
    for (auto& [id, value] : table)
        value = prefixWorth(value);
    if (const auto exact = choices.find(normalized); exact != choices.end()) {
        for (const auto& [id, count] : exact->second) {
            if (count != 0)
                table[id] = exactWorth(count);
        }
    }
    std::erase_if(table, [](const auto& entry) { return entry.second < 1; });
    return table;
}

std::vector<std::string> UsageLog::topIds(double now, std::size_t limit) const {
    std::vector<std::pair<std::int64_t, std::string_view>> scored;
    for (const auto& [id, record] : items) {
        if (const auto score = frecency(id, now); score > 0)
            scored.emplace_back(-score, id);
    }
    // UTF-8 bytes compare as code points do.
    std::ranges::sort(scored);
    std::vector<std::string> ids;
    for (const auto& [score, id] : scored) {
        if (ids.size() == limit)
            break;
        ids.emplace_back(id);
    }
    return ids;
}

bool UsageLog::renameID(std::string_view old, std::string_view to) {
    if (old == to)
        return false;
    bool moved = false;
    if (const auto found = items.find(old); found != items.end()) {
        const auto from = std::move(found->second);
        items.erase(found);
        auto& record = items[std::string(to)];
        record.launches = mergedLaunches(std::move(record.launches), from.launches);
        record.total += from.total;
        moved = true;
    }
    for (auto& [query, picks] : choices) {
        const auto found = picks.find(old);
        if (found == picks.end())
            continue;
        const auto count = found->second;
        picks.erase(found);
        picks[std::string(to)] += count;
        moved = true;
    }
    return moved;
}

std::vector<std::string> UsageLog::renamingFavorites(const std::vector<std::string>& list,
                                                     std::span<const Renaming> renamings) {
    std::vector<std::string> result;
    std::set<std::string> seen;
    for (const auto& id : list) {
        const auto renaming = std::ranges::find(renamings, id, &Renaming::retired);
        std::string name = renaming == renamings.end() ? id : std::string(renaming->successor);
        if (seen.insert(name).second)
            result.push_back(std::move(name));
    }
    return result;
}

UsageLog UsageLog::combined(std::span<const UsageLog* const> others) const {
    UsageLog result = *this;
    for (const auto* other : others) {
        for (const auto& [id, record] : other->items) {
            auto& merged = result.items[id];
            merged.launches = mergedLaunches(std::move(merged.launches), record.launches);
            merged.total += record.total;
        }
        for (const auto& [query, picks] : other->choices) {
            auto& merged = result.choices[query];
            for (const auto& [id, count] : picks)
                merged[id] += count;
        }
    }
    return result;
}

} // namespace tessarine
