#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The final order of a list of rows: favourites, then how strongly a row deserves its place, then
/// the user's order of groups, then match and use together. Pure; any thread.
namespace tessarine::LearnedRank {

inline constexpr std::int64_t strong = 600; ///< a learned score from here is strong
inline constexpr std::int64_t recent = 100; ///< a learned score from here is recent

/// One row to order.
struct Entry {
    std::string_view id;
    std::string_view group;
    std::int64_t match = 0;   ///< earned by matching the query alone
    std::int64_t learned = 0; ///< earned by use
};

/// 0 for a row never used, 1 for little use, 2 for recent, 3 for strong.
int usageStep(std::int64_t learned);

/// From -1, the web, over 0 to 3 by use and 4 for an exact name, to 5, the answers. A match of at
/// least `exact` is an exact name.
int tier(const Entry& entry, std::int64_t exact);

/// The positions of `entries` in their final order. Equal entries keep the order they came in.
std::vector<std::size_t> order(std::span<const Entry> entries,
                               std::span<const std::string> groupOrder,
                               std::span<const std::string> favorites,
                               std::int64_t exact);

/// A stored order of groups brought up to the program's own: groups that exist no more vanish, new
/// ones stand after their nearest earlier neighbour in `defaults`. `defaults` when nothing of
/// `saved` is left.
std::vector<std::string> mergeOrder(const std::vector<std::string>& saved,
                                    const std::vector<std::string>& defaults);

} // namespace tessarine::LearnedRank
