#pragma once

#include "LauncherCore/answers/Answer.h"
#include "LauncherCore/answers/Calc.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// One calculation that the user kept.
struct CalcEntry {
    using Kind = AnswerKind;

    std::string id;                    ///< unique within the history
    std::string expression;            ///< what was typed
    std::string formatted;             ///< the result as it was shown
    double value = 0;                  ///< the result as a number; finite
    std::optional<std::string> detail; ///< the second line of the answer
    Kind kind = Kind::math;
    double at = 0;                   ///< seconds since 1970, UTC
    bool pinned = false;             ///< stays when others are dropped or cleared
    std::optional<std::string> name; ///< lower case, of "rent = 1200"

    bool operator==(const CalcEntry&) const = default;
};

/// The calculations that were kept, newest first, each text once for each kind. A value; any
/// thread.
class CalcHistoryStore {
public:
    static constexpr std::size_t keep = 500; ///< positions in which an unpinned entry stays

    enum class Pinned { kept, removed };

    CalcHistoryStore() = default;
    /// With entries that were kept before, newest first.
    explicit CalcHistoryStore(std::vector<CalcEntry> entries);

    const std::vector<CalcEntry>& entries() const { return entries_; }

    /// The entry of this id; null when there is none. Valid until the next change.
    const CalcEntry* entry(std::string_view id) const;

    /// Files the entry on top and gives what was filed. The same text of the same kind is filed
    /// once: the new entry takes over the old one's id, pin and name.
    const CalcEntry& record(CalcEntry entry);

    /// False when there is no such entry.
    bool remove(std::string_view id);
    bool pin(std::string_view id);
    bool unpin(std::string_view id);

    void clear(Pinned pinned);

    /// The first entries whose text, result, detail or name holds the query, whatever the case and
    /// marks of either; without a query the first of all.
    std::vector<CalcEntry> search(std::string_view query, std::size_t limit) const;

    /// What an expression may read: the newest value of each name, and the last result as "ans".
    Calc::Variables variables() const;

    bool operator==(const CalcHistoryStore&) const = default;

private:
    CalcEntry* find(std::string_view id);
    void trim();

    std::vector<CalcEntry> entries_;
};

} // namespace tessarine
