#include "LauncherCore/clipboard/ClipGroups.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// A line that ends with a bracketed tag of three fields parted by middle dots, or one that begins
/// with the launch line.
constexpr const char* handoffRegex = R"re((\[[^\]]*·[^\]]*·[^\]]*\]\s*$)|(^Read and execute "))re";
constexpr std::int64_t longestHandoff = 1500; // characters

ClipMatcher handoff() {
    ClipMatcher rule;
    rule.regex = handoffRegex;
    rule.maxLength = longestHandoff;
    return rule;
}

ClipMatcher handoffWithFile(ClipMatcher::FileState state) {
    auto rule = handoff();
    rule.filePattern = ClipGroups::handoffPath;
    rule.fileState = state;
    return rule;
}

ClipMatcher handoffNotLaunched() {
    auto rule = handoffWithFile(ClipMatcher::FileState::lacks);
    rule.fileNeedle = ClipGroups::claimMarker;
    return rule;
}

/// Tells what was not launched by what was not pasted.
ClipMatcher retiredLedger() {
    auto rule = handoff();
    rule.pasted = false;
    return rule;
}

auto isNamed(std::string_view name) {
    return [name](const ClipGroup& group) { return Folding::equalIgnoringCase(group.name, name); };
}

template <typename Matches>
const ClipGroup* first(const std::vector<ClipGroup>& groups, Matches matches) {
    const auto found = std::ranges::find_if(groups, matches);
    return found == groups.end() ? nullptr : &*found;
}

} // namespace

const ClipGroups& ClipGroups::suggested() {
    static const ClipGroups none;
    return none;
}

const std::vector<ClipGroup>& ClipGroups::templates() {
    static const std::vector<ClipGroup> offered{
        {.name = "Handoffs not launched",
         .symbol = "bolt.horizontal.circle",
         .match = handoffNotLaunched()},
        {.name = "Handoffs whose file is gone",
         .symbol = "questionmark.folder",
         .match = handoffWithFile(ClipMatcher::FileState::missing)},
        {.name = "Claude handoffs",
         .symbol = "arrow.triangle.turn.up.right.diamond",
         .match = handoff()}};
    return offered;
}

const ClipGroup* ClipGroups::match(const ClipText& text) const {
    return first(groups, [&](const ClipGroup& group) { return group.match.matches(text); });
}

const ClipGroup* ClipGroups::match(const ClipboardEntry& entry, const ClipFacts& facts) const {
    return first(groups, [&](const ClipGroup& group) { return group.match.matches(entry, facts); });
}

const ClipGroup* ClipGroups::named(std::string_view name) const {
    return first(groups, isNamed(name));
}

std::vector<const ClipGroup*> ClipGroups::partialMatches(std::string_view word) const {
    std::vector<const ClipGroup*> found;
    if (word.empty())
        return found;
    for (const auto& group : groups) {
        if (Folding::fold(group.name).find(word) != std::string::npos)
            found.push_back(&group);
    }
    return found;
}

void ClipGroups::upsert(ClipGroup group) {
    const auto old = std::ranges::find_if(groups, isNamed(group.name));
    if (old == groups.end())
        groups.push_back(std::move(group));
    else
        *old = std::move(group);
}

bool ClipGroups::remove(std::string_view name) {
    // The name may be that of a group itself, which moves.
    const std::string wanted(name);
    return std::erase_if(groups, isNamed(wanted)) > 0;
}

ClipGroups::Migrated ClipGroups::migratingLedger(ClipGroups groups) {
    bool changed = false;
    for (auto& group : groups.groups) {
        if (group.match != retiredLedger())
            continue;
        group.match = handoffNotLaunched();
        changed = true;
    }
    return {.groups = std::move(groups), .isChanged = changed};
}

} // namespace tessarine
