#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tessarine {

/// What was copied.
enum class ClipKind { text, file, image };

/// The built-in classification of clippings, in the order of the filter menu.
enum class ClipCategory { link, image, file, text };

/// The stored names of the two, and how a category is shown. Pure; any thread.
namespace ClipKinds {

inline constexpr std::array allCategories = {
    ClipCategory::link, ClipCategory::image, ClipCategory::file, ClipCategory::text};

std::string_view rawValue(ClipKind kind);
std::optional<ClipKind> kind(std::string_view rawValue); ///< nothing for an unknown name

std::string_view rawValue(ClipCategory category);
std::optional<ClipCategory> category(std::string_view rawValue); ///< nothing for an unknown name
std::string_view label(ClipCategory category);                   ///< "Links"
std::string_view symbol(ClipCategory category);                  ///< a symbol's name

} // namespace ClipKinds
} // namespace tessarine
