#pragma once

#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <string_view>

namespace tessarine {

/// Whether a text is meant as a web address, with or without its scheme.
bool looksLikeURL(std::string_view text);

/// The row that opens the typed address.
ResultRow urlRow(std::string_view text, const RowVerbs& verbs);

/// The row that searches the web for the text.
ResultRow webRow(std::string_view text, const RowVerbs& verbs);

} // namespace tessarine
