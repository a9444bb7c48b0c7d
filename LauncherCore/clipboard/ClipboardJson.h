#pragma once

#include "LauncherCore/clipboard/ClipboardHistory.h"

#include <optional>
#include <string>
#include <string_view>

/// The stored form of the clipboard history: an object with the one key "entries". Pure; any
/// thread.
namespace tessarine::ClipboardJson {

std::string encoded(const ClipboardHistory& history);

struct Decoded {
    ClipboardHistory history;
    bool losesOld = false; ///< the text has what `encoded` wouldn't write again: of a newer build
};

/// Nothing when the text is no such document, whole.
std::optional<Decoded> decoded(std::string_view text);

} // namespace tessarine::ClipboardJson
