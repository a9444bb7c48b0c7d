#include "LauncherCore/clipboard/ClipFilterKey.h"

#include "LauncherCore/clipboard/ClipGroups.h"
#include "LauncherCore/text/Folding.h"

namespace tessarine {

namespace {

std::optional<ClipCategory> categoryCalled(std::string_view word) {
    for (const auto category : ClipKinds::allCategories) {
        if (Folding::fold(ClipKinds::rawValue(category)) == word ||
            Folding::fold(ClipKinds::label(category)) == word)
            return category;
    }
    return std::nullopt;
}

} // namespace

std::optional<ClipFilterKey> ClipFilterKey::resolve(std::string_view word,
                                                    const ClipGroups& groups) {
    const auto folded = Folding::fold(word);
    if (folded.empty())
        return std::nullopt;
    for (const auto& each : groups.groups) {
        if (Folding::fold(each.name) == folded)
            return group(each.name);
    }
    if (const auto category = categoryCalled(folded))
        return builtin(*category);
    const auto candidates = groups.partialMatches(folded);
    if (candidates.size() != 1)
        return std::nullopt;
    return group(candidates.front()->name);
}

std::string ClipFilterKey::label(const ClipGroups& groups) const {
    if (const auto* category = std::get_if<ClipCategory>(&value))
        return std::string(ClipKinds::label(*category));
    const auto& name = std::get<Group>(value).name;
    const auto* known = groups.named(name);
    return known ? known->name : name;
}

std::string ClipFilterKey::symbol(const ClipGroups& groups) const {
    if (const auto* category = std::get_if<ClipCategory>(&value))
        return std::string(ClipKinds::symbol(*category));
    const auto* known = groups.named(std::get<Group>(value).name);
    return known ? known->symbol : "tag";
}

} // namespace tessarine
