#pragma once

#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace tessarine {

/// Rows of the emoji that a query with a leading colon names, the best first; each copies its
/// emoji.
std::vector<ResultRow> emojiRows(std::string_view query, std::size_t limit, const RowVerbs& verbs);

} // namespace tessarine
