#pragma once

#include "LauncherCore/clipboard/ClipFilterKey.h"
#include "LauncherCore/clipboard/ClipRetention.h"
#include "LauncherCore/clipboard/ClipboardEntry.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarine {

class ClipGroupsRuntime;

/// All clippings that are kept. The order in which they are stored means nothing to readers. An
/// operation on an id that isn't there changes nothing. Whoever drops an entry deletes its picture
/// files, so what is dropped is handed back. A value; any thread.
struct ClipboardHistory {
    static constexpr std::size_t keep = 500; ///< unpinned entries beyond it go

    using Seconds = std::chrono::duration<double>;

    std::vector<ClipboardEntry> entries;

    /// Null when there is none. Valid until the next change.
    const ClipboardEntry* entry(std::string_view id) const;

    /// Files a copy at the front: a content that is there already is counted once more, and keeps
    /// its pin, files and marks. Gives what fell off the end.
    std::vector<ClipboardEntry> record(ClipboardEntry entry);

    void bump(std::string_view id, double at);  ///< copied again, where it stands
    void touch(std::string_view id, double at); ///< used
    std::vector<ClipboardEntry> remove(std::string_view id);
    void togglePin(std::string_view id);
    /// Remembers that it was pasted there, the most recent place last.
    void notePaste(std::string_view id, std::string_view into, ClipGroupsRuntime& groups);

    /// Drops what has outlived its kind's days and what exceeds the retention's count, never a
    /// pinned one: the aged first.
    std::vector<ClipboardEntry> prune(double now, const ClipRetention& retention);

    /// Whether a clearing takes the entry: an unpinned one that was copied or used in the last
    /// `newerThan` seconds, or at any time without one. A clock that was set back makes it new.
    static bool
    isCleared(const ClipboardEntry& entry, double now, std::optional<Seconds> newerThan);
    std::vector<ClipboardEntry> clear(double now, std::optional<Seconds> newerThan);

    /// The entries whose text holds the query, folded, and that the filter keeps; the newest first,
    /// at most `limit`.
    std::vector<ClipboardEntry> search(std::string_view query,
                                       std::size_t limit,
                                       const std::optional<ClipFilterKey>& filter,
                                       ClipGroupsRuntime& groups) const;

    /// How many entries each filter keeps; every entry counts once. None of zero.
    std::map<ClipFilterKey, std::int64_t> counts(ClipGroupsRuntime& groups) const;

    bool operator==(const ClipboardHistory&) const = default;
};

} // namespace tessarine
