#include "launcherapp/query/RankByUse.h"

#include "LauncherCore/query/LearnedRank.h"
#include "LauncherCore/query/Matcher.h"

#include <utility>

namespace tessarine {

std::vector<ResultRow>
rankByUse(std::vector<ResultRow> rows, std::string_view query, const RankingContext& context) {
    const auto affinities = context.log.affinityTable(query, context.now);
    std::vector<LearnedRank::Entry> entries;
    entries.reserve(rows.size());
    for (const auto& row : rows) {
        std::int64_t learned = 0;
        if (row.kind != RowKind::hint) {
            const auto affinity = affinities.find(row.id);
            learned = context.log.frecency(row.id, context.now) +
                      (affinity == affinities.end() ? 0 : affinity->second);
        }
        entries.push_back({.id = row.id,
                           .group = row.group,
                           .match = row.scoreIncludesUsage ? row.score - learned : row.score,
                           .learned = learned});
    }
    const auto order =
        LearnedRank::order(entries, context.groupOrder, context.favorites, Matcher::exact);
    std::vector<ResultRow> ranked;
    ranked.reserve(rows.size());
    for (const auto position : order) {
        const auto score = entries[position].match + entries[position].learned;
        ranked.push_back(std::move(rows[position]));
        ranked.back().score = score;
    }
    return ranked;
}

} // namespace tessarine
