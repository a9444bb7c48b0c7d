#pragma once

#include "LauncherCore/clipboard/ClipGroups.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

/// The JSON form of taught groups: {"groups":[{"name":…,"symbol":…,"match":{…}}]}, with the set
/// fields of each rule. Pure; any thread.
namespace tessarine::ClipGroupsJson {

/// Pretty-printed with sorted keys.
std::string encoded(const ClipGroups& groups);

struct Decoded {
    ClipGroups groups;
    bool losesOld = false; ///< the text has what `encoded` wouldn't write again
};

/// Nothing when the text is no such document, whole.
std::optional<Decoded> decoded(std::string_view text);

/// The set fields of a rule under their names.
nlohmann::json object(const ClipMatcher& matcher);

/// Nothing when `value` is no rule: a field of another type or an unknown file state or kind.
std::optional<ClipMatcher> matcher(const nlohmann::json& value);

} // namespace tessarine::ClipGroupsJson
