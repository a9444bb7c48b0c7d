#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/commands/ListRows.h"
#include "launcherapp/query/ResultRow.h"

#include <functional>
#include <string_view>
#include <vector>

namespace tessarine {

/// What the script of a list command printed, in its order. Return on a row gives it to `choose`.
/// A hint while the script runs (`result` is null), and one that says why there are no rows.
std::vector<ResultRow> listCommandRows(const CommandSpec& command,
                                       const ListResult* result,
                                       const std::function<void(const ListRow& row)>& choose);

/// What the list of a command that searches files shows without files.
ResultRow emptyFileSearchRow(const CommandSpec& command, std::string_view query);

} // namespace tessarine
