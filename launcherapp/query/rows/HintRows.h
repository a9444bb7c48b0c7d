#pragma once

#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <string>

namespace tessarine {

/// Says above everything else that the commands file can't be read, and why.
ResultRow brokenCommandsRow(const std::string& error, const RowVerbs& verbs);

/// A word's definition, found after the list was shown.
ResultRow definitionRow(const std::string& word, const std::string& text, const RowVerbs& verbs);

} // namespace tessarine
