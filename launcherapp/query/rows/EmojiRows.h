#pragma once

#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <string_view>
#include <vector>

namespace tessarine {

/// How the ids of these rows begin; the emoji follows.
inline constexpr std::string_view emojiRowPrefix = "emoji:";

/// At most 12 rows of the emoji that a query with a leading colon names, the best first; each
/// copies its emoji, and by the second chord types it.
std::vector<ResultRow> emojiRows(std::string_view query, const RowVerbs& verbs);

} // namespace tessarine
