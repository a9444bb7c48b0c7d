#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

/// What a save that was killed leaves behind: the file in which the new content was being written,
/// beside the one whose place it was to take. Its ending is unlike what a person adds to a name
/// (".backup" has six letters too), so that nobody's own copy passes for it. Pure; any thread.
namespace tessarine::SaveLeftover {

inline constexpr std::string_view mark = ".unsaved-";
inline constexpr std::string_view pattern = "XXXXXX"; ///< mkostemp(3) puts letters and digits here

/// The name of the file that was being saved; nothing when `name` isn't of this form.
inline std::optional<std::string_view> target(std::string_view name) {
    const auto length = mark.size() + pattern.size();
    if (name.size() <= length)
        return std::nullopt;
    const auto ending = name.substr(name.size() - length);
    const auto isFilledIn = std::ranges::all_of(ending.substr(mark.size()), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
    if (!ending.starts_with(mark) || !isFilledIn)
        return std::nullopt;
    return name.substr(0, name.size() - length);
}

} // namespace tessarine::SaveLeftover
