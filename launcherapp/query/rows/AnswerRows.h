#pragma once

#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/TimeZones.h"
#include "launcherapp/query/RowFamilies.h"
#include "launcherapp/query/rows/CalcHistoryRows.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace tessarine {

/// What the rows of computed answers are made of.
struct AnswerRowSources {
    const Answers::Given& given;
    const TimeZones::Context& clocks;
    std::span<const std::string> favoriteCurrencies; ///< codes, in the user's order
    CalcHistoryRowSources history;
    std::size_t earlierRows = 0; ///< how many earlier calculations stand below one
    /// Files a figure that was used, with the text that gave it.
    std::function<void(const std::string& expression, const Answer& answer)> keep;
};

/// The rows of everything that the answers give to a query.
AnswerRows answerRows(std::string_view query, const AnswerRowSources& sources);

} // namespace tessarine
