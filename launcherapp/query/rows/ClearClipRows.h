#pragma once

#include "launcherapp/query/RowFamilies.h"

#include <string_view>

namespace tessarine {

struct ClipRowSources;

/// How the ids of these rows begin, which count what is there: they are made anew when the history
/// changes.
inline constexpr std::string_view clearingRowPrefix = "clipclear:";

/// The rows that clear the history: all of it, or what came in the last minutes. An argument as
/// "10", "10 min" or "2 h" says how many. Pinned clippings always stay. A hint where nothing would
/// go. Main thread only.
Rows clearClipboardRows(const ClipRowSources& sources, std::string_view argument);

} // namespace tessarine
