#pragma once

#include "LauncherCore/query/UsageLog.h"
#include "launcherapp/query/ResultRow.h"

#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What decides the order of rows besides themselves.
struct RankingContext {
    const UsageLog& log;
    const std::vector<std::string>& groupOrder;
    const std::vector<std::string>& favorites; ///< row ids
    double now = 0;                            ///< seconds since 1970, UTC
};

/// The rows in their final order, each score made the sum of what matching and use earned. A hint
/// earns nothing by use. Pure but for the rows' own actions, which are only moved.
std::vector<ResultRow>
rankByUse(std::vector<ResultRow> rows, std::string_view query, const RankingContext& context);

} // namespace tessarine
