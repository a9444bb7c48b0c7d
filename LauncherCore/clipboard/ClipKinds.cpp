#include "LauncherCore/clipboard/ClipKinds.h"

#include <algorithm>
#include <cstddef>

namespace tessarine {

namespace {

struct CategoryFacts {
    ClipCategory category;
    std::string_view rawValue;
    std::string_view label;
    std::string_view symbol;
};

/// In the order of the enumeration.
constexpr auto categories =
    std::to_array<CategoryFacts>({{ClipCategory::link, "link", "Links", "link"},
                                  {ClipCategory::image, "image", "Images", "photo"},
                                  {ClipCategory::file, "file", "Files", "doc"},
                                  {ClipCategory::text, "text", "Text", "textformat"}});

const CategoryFacts& facts(ClipCategory category) {
    return categories[static_cast<std::size_t>(category)];
}

constexpr auto kinds = std::to_array<std::string_view>({"text", "file", "image"});

} // namespace

std::string_view ClipKinds::rawValue(ClipKind kind) {
    return kinds[static_cast<std::size_t>(kind)];
}

std::optional<ClipKind> ClipKinds::kind(std::string_view rawValue) {
    const auto found = std::ranges::find(kinds, rawValue);
    if (found == kinds.end())
        return std::nullopt;
    return static_cast<ClipKind>(found - kinds.begin());
}

std::string_view ClipKinds::rawValue(ClipCategory category) {
    return facts(category).rawValue;
}

std::optional<ClipCategory> ClipKinds::category(std::string_view rawValue) {
    const auto found = std::ranges::find(categories, rawValue, &CategoryFacts::rawValue);
    if (found == categories.end())
        return std::nullopt;
    return found->category;
}

std::string_view ClipKinds::label(ClipCategory category) {
    return facts(category).label;
}

std::string_view ClipKinds::symbol(ClipCategory category) {
    return facts(category).symbol;
}

} // namespace tessarine
