#pragma once

#include "launcherapp/platform/Pasteboard.h"

#include <string_view>

namespace tessarine {

/// Marks what no other program is to keep, with the content "secret".
inline constexpr std::string_view passwordManagerHintName = "x-kde-passwordManagerHint";

/// That mark, to be offered beside a secret. Any thread.
PasteboardContent::Item secretMark();

/// False for names that no type has: what isn't printable ASCII, or longer than 255 characters (the
/// bound of a media type with its subtype). Any thread.
bool isTypeName(std::string_view name);

} // namespace tessarine
