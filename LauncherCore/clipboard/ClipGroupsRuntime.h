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

/// What is known of the beginning of a file.
struct ClipFileBeginning {
    /// At most `ClipGroupsRuntime::needleBytes`; empty for what is there and has no text that can
    /// be read. Nothing: there is no file of this path.
    std::optional<std::string> bytes;
    bool isOld = false; ///< is being read anew: good until then, and not to be remembered
};

/// The taught groups in force and which of them claims a clipping, remembered: a search asks it of
/// every clipping for each keystroke. Any thread; nothing here calls out while it holds its lock.
///
/// It waits for nothing but its reader of files, and that must not wait either where somebody
/// types: a path out of a copied text may lie on a drive that hangs. A reader that hasn't looked
/// yet says so. Then no rule that asks about the file matches, nothing that rests on it is
/// remembered, and whoever shows the answer asks again once the reader has looked.
class ClipGroupsRuntime {
public:
    /// How long a fact of a file, and an answer that rests on files, may be believed.
    static constexpr double fileFactTTL = 30; // seconds

    /// How much of a file is looked at: a claim stands at its top, and a look must stay cheap.
    static constexpr std::size_t needleBytes = 4096;

    /// Nothing when it isn't known yet. Is called on the thread that asks.
    using FileReader = std::function<std::optional<ClipFileBeginning>(const std::string& path)>;

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
    void setPasteTrackingSince(double since); ///< and forgets which groups claim what

    /// The group that claims the entry; null when none does.
    std::shared_ptr<const ClipGroup> group(const ClipboardEntry& entry);
    ClipFilterKey filterKey(const ClipboardEntry& entry); ///< of its group, else its category
    std::string symbol(const ClipboardEntry& entry);      ///< of its group, else of what it is

    /// Nothing when it isn't known yet.
    std::optional<ClipFileFact> fileFact(const std::string& path,
                                         const std::optional<std::string>& needle);

    void forget(std::string_view id); ///< which group claims that entry
    void forgetAll();                 ///< and the facts of files

private:
    struct State;
    struct FoundFact;
    std::optional<FoundFact> findFact(const std::string& path,
                                      const std::optional<std::string>& needle);

    const std::function<double()> now_;
    const FileReader fileReader_;
    std::unique_ptr<State> state_;
};

} // namespace tessarine
