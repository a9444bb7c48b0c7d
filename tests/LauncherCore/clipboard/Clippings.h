#pragma once

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/clipboard/ClipboardHistory.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

inline ClipboardEntry
clipping(std::string id, double at = 0, std::string text = {}, ClipKind kind = ClipKind::text) {
    return ClipboardEntry::make(
        {.id = std::move(id), .kind = kind, .text = ClipText(std::move(text)), .at = at});
}

inline ClipboardEntry pinned(ClipboardEntry entry) {
    entry.pinned = true;
    return entry;
}

inline std::vector<std::string> idsOf(const std::vector<ClipboardEntry>& entries) {
    std::vector<std::string> ids;
    for (const auto& entry : entries)
        ids.push_back(entry.id);
    return ids;
}

/// Taught groups over a clock and files that the test sets.
struct TaughtGroups {
    double now = 1000;
    std::map<std::string, std::string> files;
    std::vector<std::string> filesRead;
    bool isHanging = false; ///< no file is known yet
    bool isOld = false;     ///< what is known of files is being read anew
    ClipGroupsRuntime runtime{[this] { return now; },
                              [this](const std::string& path) -> std::optional<ClipFileBeginning> {
                                  filesRead.push_back(path);
                                  if (isHanging)
                                      return std::nullopt;
                                  const auto found = files.find(path);
                                  return ClipFileBeginning{
                                      .bytes = found == files.end() ? std::nullopt
                                                                    : std::optional(found->second),
                                      .isOld = isOld};
                              }};

    /// Empty when no group claims it.
    std::string claims(const ClipboardEntry& entry) {
        const auto group = runtime.group(entry);
        return group ? group->name : std::string();
    }
};

} // namespace tessarine
