#pragma once

#include "LauncherCore/text/TextTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The launches of one row.
struct UsageRecord {
    std::vector<double> launches; ///< seconds since 1970, UTC; oldest first, at most UsageLog::keep
    std::int64_t total = 0;       ///< every launch ever counted; not capped

    bool operator==(const UsageRecord&) const = default;
};

/// What the launcher remembers about use: the last launches of each row, and for each query how
/// often each row was picked for it. Ranking adds two integers made of it to a row's match score.
/// Row ids are opaque here. Queries are kept in lower case without blanks and tabs at their ends;
/// their lengths count characters (grapheme clusters). A value; any thread.
class UsageLog {
public:
    static constexpr std::size_t keep = 24;         ///< launches kept per row
    static constexpr std::size_t keepQueries = 400; ///< queries kept in `choices`
    static constexpr std::size_t shortestQuery = 2; ///< characters; shorter ones teach nothing
    static constexpr std::size_t longestQuery = 32; ///< characters; longer ones are not kept

    using Picks = TextTable<std::int64_t>; ///< row id to pick count

    TextTable<UsageRecord> items; ///< by row id
    TextTable<Picks> choices;     ///< by normalized query

    bool operator==(const UsageLog&) const = default;

    /// Row ids that were retired, with their successors.
    struct Renaming {
        std::string_view retired;
        std::string_view successor;
    };

    static std::span<const Renaming> renamedIDs();

    /// The form in which queries are kept.
    static std::string normalizedQuery(std::string_view query);

    /// Counts a launch at `at`, in seconds since 1970.
    void record(std::string_view id, double at);

    /// Counts a pick of the row for the query. A query too short or too long is not kept. Of more
    /// than `keepQueries` queries the one whose best pick is the weakest goes; among the equally
    /// weak not the one just picked. `at` is not used.
    void recordChoice(std::string_view query, std::string_view id, double at);

    /// Recent use of a row anywhere, 0 to 900. Allocates nothing.
    std::int64_t frecency(std::string_view id, double now) const;

    /// Use of a row for this query, or a part of that for longer queries that begin with it;
    /// 0 to 2600.
    std::int64_t affinity(std::string_view query, std::string_view id, double now) const;

    /// The affinity of every row that has any for this query.
    Picks affinityTable(std::string_view query, double now) const;

    /// Rows by frecency, best first, then by id; those never used left out.
    std::vector<std::string> topIds(double now, std::size_t limit) const;

    /// Moves what is remembered of one id to another. Whether anything moved.
    bool renameID(std::string_view old, std::string_view to);

    /// The ids with the retired ones replaced, each once, at its first place.
    static std::vector<std::string> renamingFavorites(const std::vector<std::string>& list,
                                                      std::span<const Renaming> renamings);

    /// This log and the others taken together. May hold more than `keepQueries` queries.
    UsageLog combined(std::span<const UsageLog* const> others) const;

private:
    /// The affinity of a row for an already normalized query.
    std::int64_t affinityOf(std::string_view normalized, std::string_view id) const;
};

} // namespace tessarine
