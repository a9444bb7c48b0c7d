#pragma once

#include "LauncherCore/clipboard/ClipFilterKey.h"

#include <optional>
#include <string>
#include <string_view>

/// The JSON form of a filter, {"builtin":{"_0":"link"}} or {"group":{"_0":"Receipts"}}: what a
/// document holds that stores filters. None does yet. Pure; any thread.
namespace tessarine::ClipFilterKeyJson {

std::string encoded(const ClipFilterKey& key);

struct Decoded {
    std::optional<ClipFilterKey> key;
    std::string problem; ///< why there is none
};

Decoded decoded(std::string_view text);

} // namespace tessarine::ClipFilterKeyJson
