#pragma once

#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/clipboard/ClipSkips.h"
#include "launcherapp/clipboard/ClipSource.h"
#include "launcherapp/clipboard/ClipTakeOver.h"
#include "launcherapp/platform/Pasteboard.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tessarine {

class WorkQueues;

/// One look at what was copied: what it is by its types, whether it may be kept, and only then its
/// content, one read after the other. Main thread only; ends with its result, or silently when it
/// is destroyed before.
class ClipExamination {
public:
    struct Services {
        WorkQueues& work;
        Pasteboard& board;
    };

    /// A change of the pasteboard as it was noticed.
    struct Change {
        std::uint64_t count = 0;
        double at = 0; ///< seconds since 1970, UTC
        ClipSource front;
        ClipSkips::Circumstances circumstances;
        std::vector<std::string> unusable = {}; ///< types that turned out not to be what they say
        std::optional<JudgedCopy> before = {};  ///< the last that was judged
        bool isTakeOver = false; ///< may be an earlier copy once more; known once it is judged
    };

    struct Picture {
        std::string bytes; ///< as offered
        std::string type;
        bool isRemote = false;
    };

    /// Nothing of a kind that is kept, with the reason in words where something went wrong.
    struct Nothing {
        std::string problem;
    };

    using Result = std::variant<Nothing, ClipSkip, ClipboardEntry, Picture>;

    ClipExamination(Services services, Change change, std::function<void(Result&& result)> ended);
    ClipExamination(const ClipExamination&) = delete;
    ClipExamination& operator=(const ClipExamination&) = delete;

    const Change& change() const { return change_; }

    /// What it is by its types; nothing before they are known, and where none are offered.
    const std::optional<JudgedCopy>& judged() const { return judged_; }

    /// The entry of a copy of this change.
    ClipboardEntry::Copy copy(bool isRemote) const;

private:
    void judge(const std::optional<PasteboardOffer>& offer);
    void readFiles();
    void takeFiles(std::string bytes, const std::string& type);
    void readText();
    void takeText(std::string bytes, const std::string& type);
    void readPicture();
    void read(const std::string& type,
              std::size_t limitBytes,
              std::function<void(PasteboardReading reading)> done);
    void end(Result&& result);
    bool isDroppedRemote(ClipKind kind) const;
    void skipRemote();

    Services services_;
    Change change_;
    std::function<void(Result&&)> ended_;
    std::vector<std::string> types_;
    std::optional<JudgedCopy> judged_;
    bool isRemote_ = false;
    std::string problem_;                                    ///< of the last read that failed
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
