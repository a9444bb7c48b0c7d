#pragma once

#include "LauncherCore/answers/CalcHistoryStore.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class MainQueue;

/// The live history of calculations, saved in the background after each change, and what the
/// calculator reads its names from. Empty until it is loaded, but for what is filed meanwhile. Main
/// thread only.
class CalcStore {
public:
    /// A calculation as the panel has it. The history adds when it was made, and an id.
    struct Calculation {
        std::string expression; ///< as it was typed
        std::string formatted;
        double value = 0;
        std::optional<std::string> detail;
        CalcEntry::Kind kind = CalcEntry::Kind::math;
        std::optional<std::string> assignedName;
    };

    /// `file` is "calc-history.json"; `isEnabled` is the preference `calcHistoryEnabled`.
    CalcStore(MainQueue& queue, StateFile file, std::function<bool()> isEnabled);
    CalcStore(const CalcStore&) = delete;
    CalcStore& operator=(const CalcStore&) = delete;

    /// Loads the history, at once, for a run that answers and ends. A file that is no whole history
    /// counts as empty, and a copy of it is kept. Nothing is saved before one of the two was
    /// called.
    void load();

    /// The same without waiting for the disk. What was done by then is done to what is found.
    void loadLater();

    const CalcHistoryStore& history() const { return history_; }

    bool isEnabled() const { return isEnabled_(); }

    /// What an expression may read; valid until the next change.
    const Calc::Variables& variables() const { return variables_; }

    /// Files a calculation made now, on top. Nothing is filed while the history is switched off,
    /// or when the value is no finite number.
    void record(Calculation calculation);

    /// An id that the history doesn't have changes nothing.
    void remove(std::string_view id);
    void pin(std::string_view id);
    void unpin(std::string_view id);

    void clear(CalcHistoryStore::Pinned pinned);

    /// Calls `changed` after each change of the history, its loading among them.
    Subscription onChange(std::function<void()> changed);

private:
    /// Whether it changed anything.
    using Edit = std::function<bool(CalcHistoryStore&)>;

    void change(Edit edit);
    void take(CalcHistoryStore history);
    void save();
    void changed();

    MainQueue& queue_;
    StateFile file_;
    std::function<bool()> isEnabled_;
    CalcHistoryStore history_;
    Calc::Variables variables_;
    Observers<> observers_;
    bool isLoaded_ = false;
    std::vector<Edit> meanwhile_;                          ///< made before the history was there
    std::shared_ptr<int> alive_ = std::make_shared<int>(); ///< for what comes back later
};

} // namespace tessarine
