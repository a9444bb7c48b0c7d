#pragma once

#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// Something to read: there is nothing that Return could do about it.
ResultRow
readHint(std::string id, std::string title, std::string subtitle, std::string_view symbol);

/// Says above everything else that the commands file can't be read, and why. Return opens the file,
/// where the mistake is to be mended.
ResultRow brokenCommandsRow(const std::string& error, const RowVerbs& verbs);

// Why a list of its own is empty. The query is what was looked for in it; empty for nothing.

/// There is no history of the clipboard to list.
ResultRow missingClipboardRow();
/// `filter` is the title of what the list is narrowed to.
ResultRow emptyClipboardRow(std::string_view query, const std::optional<std::string>& filter);
ResultRow emptyFolderRow(const std::string& folder, std::string_view query);
ResultRow emptyCardRow(const std::string& name, std::string_view query);

/// A word's definition, found after the list was shown.
ResultRow definitionRow(const std::string& word, const std::string& text, const RowVerbs& verbs);

} // namespace tessarine
