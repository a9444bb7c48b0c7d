#include "LauncherCore/query/Companions.h"

#include <algorithm>
#include <span>

namespace tessarine {

namespace {

// No companion application exists for Linux so far; one that does is a line here.
constexpr std::span<const Companion> registry{};

} // namespace

std::optional<Companion> Companions::companion(std::string_view id) {
    const auto found = std::ranges::find(registry, id, &Companion::id);
    return found == registry.end() ? std::nullopt : std::optional(*found);
}

} // namespace tessarine
