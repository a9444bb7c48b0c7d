#pragma once

#include "LauncherCore/answers/CalcHistoryStore.h"
#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowAction.h"
#include "launcherapp/query/RowVerbs.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What can be done with a calculation of the history, beyond what every row can. One that is
/// empty is not offered.
struct CalcHistoryVerbs {
    std::function<void(const std::string& text)> typeText; ///< puts the text into the field
    std::function<void(const std::string& id)> pin;
    std::function<void(const std::string& id)> unpin;
    std::function<void(const std::string& id)> remove;
};

/// What the rows of earlier calculations are made of.
struct CalcHistoryRowSources {
    const CalcHistoryStore& history;
    bool isEnabled = true; ///< the history is switched on
    const RowVerbs& verbs;
    const CalcHistoryVerbs& calculations;
};

/// The list of the history's keyword, newest first: what the argument finds, or a hint that says
/// why there is nothing. Return copies a result.
std::vector<ResultRow> calcHistoryRows(const CalcHistoryRowSources& sources,
                                       std::string_view argument);

/// At most `count` rows for below a calculation: the newest that are not the text typed now.
std::vector<ResultRow> earlierCalculationRows(const CalcHistoryRowSources& sources,
                                              std::string_view query,
                                              std::size_t count);

/// The actions of a row made here; none for any other.
std::vector<RowAction> calcHistoryActions(const ResultRow& row,
                                          const CalcHistoryRowSources& sources);

/// The result that a row made here stands for; nothing for any other.
std::optional<std::string> calcHistoryCopyText(const ResultRow& row,
                                               const CalcHistoryStore& history);

} // namespace tessarine
