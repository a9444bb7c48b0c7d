#include "LauncherCore/query/LearnedRank.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <tuple>

namespace tessarine {

namespace {

/// What two entries are compared by, smaller first. The incoming position makes it total.
using Key = std::tuple<std::size_t, int, std::size_t, std::int64_t, std::size_t>;

std::size_t indexOf(std::span<const std::string> list, std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(list, name) - list.begin());
}

} // namespace

int LearnedRank::usageStep(std::int64_t learned) {
    if (learned >= strong)
        return 3;
    if (learned >= recent)
        return 2;
    return learned > 0 ? 1 : 0;
}

int LearnedRank::tier(const Entry& entry, std::int64_t exact) {
    if (entry.group == "web")
        return -1;
    if (entry.group == "answers")
        return 5;
    if (entry.match >= exact)
        return 4;
    return usageStep(entry.learned);
}

std::vector<std::size_t> LearnedRank::order(std::span<const Entry> entries,
                                            std::span<const std::string> groupOrder,
                                            std::span<const std::string> favorites,
                                            std::int64_t exact) {
    std::vector<Key> keys;
    keys.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& entry = entries[i];
        const auto favorite = indexOf(favorites, entry.id);
        // Among favourites their own order decides, whatever else they are.
        if (favorite < favorites.size())
            keys.emplace_back(favorite, 0, 0, 0, i);
        else
            keys.emplace_back(favorite,
                              -tier(entry, exact),
                              indexOf(groupOrder, entry.group),
                              -(entry.match + entry.learned),
                              i);
    }
    std::ranges::sort(keys);
    std::vector<std::size_t> positions(keys.size());
    std::ranges::transform(
        keys, positions.begin(), [](const Key& key) { return std::get<4>(key); });
    return positions;
}

std::vector<std::string> LearnedRank::mergeOrder(const std::vector<std::string>& saved,
                                                 const std::vector<std::string>& defaults) {
    std::vector<std::string> kept;
    std::ranges::copy_if(saved, std::back_inserter(kept), [&](const std::string& name) {
        return std::ranges::count(defaults, name) > 0;
    });
    if (kept.empty())
        return defaults;
    for (std::size_t i = 0; i < defaults.size(); ++i) {
        if (std::ranges::count(kept, defaults[i]) > 0)
            continue;
        auto place = kept.begin();
        for (std::size_t earlier = i; earlier-- > 0;) {
            const auto neighbour = std::ranges::find(kept, defaults[earlier]);
            if (neighbour == kept.end())
                continue;
            place = neighbour + 1;
            break;
        }
        kept.insert(place, defaults[i]);
    }
    return kept;
}

} // namespace tessarine
