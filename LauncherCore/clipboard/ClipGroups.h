#pragma once

#include "LauncherCore/clipboard/ClipMatcher.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A group that the user taught: clippings of its shape get their own filter and symbol.
struct ClipGroup {
    std::string name;
    std::string symbol; ///< a symbol's name
    ClipMatcher match;

    bool operator==(const ClipGroup&) const = default;
};

/// The taught groups; the first that matches a clipping claims it. A value; any thread. Pointers
/// are null for nothing, and valid until the next change.
///
/// The templates are about handoffs: texts that start a session of an assistant by naming a file
/// that says what is to be done. A session that has begun stamps that file at its top, so a handoff
/// whose file has no stamp was not launched yet.
struct ClipGroups {
    struct Migrated;

    std::vector<ClipGroup> groups;

    static const ClipGroups& suggested(); ///< of a fresh install: none
    /// The expression whose first group is the file that a handoff names.
    static constexpr std::string_view handoffPath = R"re(Read and execute "([^"]+\.md)")re";
    /// What every stamp holds.
    static constexpr std::string_view claimMarker = "EXECUT";

    /// Offered and never installed by the program; in an order in which the more particular win.
    static const std::vector<ClipGroup>& templates();

    const ClipGroup* match(const ClipText& text) const;
    const ClipGroup* match(const ClipboardEntry& entry, const ClipFacts& facts) const;

    /// By its name without regard to case.
    const ClipGroup* named(std::string_view name) const;

    /// The groups whose folded name holds `word`, which is folded already; none for an empty word.
    std::vector<const ClipGroup*> partialMatches(std::string_view word) const;

    /// Replaces the group of that name, whatever its case, in its place, or appends.
    void upsert(ClipGroup group);
    bool remove(std::string_view name); ///< whether there was one

    /// Rules that tell what was not pasted yet by the paste marks alone read the named file
    /// instead. A rule that was edited by hand stays.
    static Migrated migratingLedger(ClipGroups groups);

    bool operator==(const ClipGroups&) const = default;
};

struct ClipGroups::Migrated {
    ClipGroups groups;
    bool isChanged = false;
};

} // namespace tessarine
