#pragma once

#include "LauncherCore/clipboard/ClipKinds.h"

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace tessarine {

struct ClipGroups;

/// What a list of clippings is narrowed to: a built-in category or a taught group. A value; any
/// thread.
struct ClipFilterKey {
    struct Group {
        std::string name;

        auto operator<=>(const Group&) const = default;
    };

    std::variant<ClipCategory, Group> value;

    static ClipFilterKey builtin(ClipCategory category) { return {category}; }

    static ClipFilterKey group(std::string name) { return {Group{std::move(name)}}; }

    /// What a typed word means: a group of that name, then a category's name or label, then the one
    /// group whose name holds the word. Nothing for an empty, unknown or ambiguous word.
    static std::optional<ClipFilterKey> resolve(std::string_view word, const ClipGroups& groups);

    std::string label(const ClipGroups& groups) const;
    std::string symbol(const ClipGroups& groups) const; ///< "tag" for a group that is gone

    auto operator<=>(const ClipFilterKey&) const = default;
};

} // namespace tessarine
