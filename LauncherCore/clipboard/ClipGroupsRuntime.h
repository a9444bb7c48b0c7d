#pragma once

#include "LauncherCore/clipboard/ClipFilterKey.h"
#include "LauncherCore/clipboard/ClipGroups.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// The taught groups in force and which of them claims a clipping, remembered: a search asks it of
/// every clipping for each keystroke. Any thread; nothing here calls out while it holds its lock.
class ClipGroupsRuntime {
public:
    /// How long a fact of a file, and an answer that rests on files, may be believed.
    static constexpr double fileFactTTL = 30; // seconds

    /// How much of a file is looked at: a claim stands at its top, and a look must stay cheap.
    static constexpr std::size_t needleBytes = 4096;

    /// At most the first `needleBytes` of the file; empty for one that can't be opened, nothing for
    /// one that doesn't exist.
    using FileReader = std::function<std::optional<std::string>(const std::string& path)>;

    /// `now` gives seconds since 1970.
    ClipGroupsRuntime(std::function<double()> now, FileReader fileReader);
    ~ClipGroupsRuntime();
    ClipGroupsRuntime(const ClipGroupsRuntime&) = delete;
    ClipGroupsRuntime& operator=(const ClipGroupsRuntime&) = delete;

    /// Never null; what is given out is never changed.
    std::shared_ptr<const ClipGroups> current() const;
    void setCurrent(ClipGroups groups);

    /// Seconds since 1970 from which on each paste is marked; 0: not known.
    double pasteTrackingSince() const;
    void setPasteTrackingSince(double since);

    /// The group that claims the entry; null when none does.
    std::shared_ptr<const ClipGroup> group(const ClipboardEntry& entry);
    ClipFilterKey filterKey(const ClipboardEntry& entry); ///< of its group, else its category
    std::string symbol(const ClipboardEntry& entry);      ///< of its group, else of what it is

    ClipFileFact fileFact(const std::string& path, const std::optional<std::string>& needle);

    void forget(std::string_view id); ///< which group claims that entry
    void forgetAll();                 ///< and the facts of files

private:
    struct State;
    const std::function<double()> now_;
    const FileReader fileReader_;
    std::unique_ptr<State> state_;
};

} // namespace tessarine
