#pragma once

#include "LauncherCore/answers/CalcHistoryStore.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class MainQueue;

/// The live history of calculations: loaded at start, saved in the background after each change,
/// and what the calculator reads its names from. Main thread only.
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

    /// `file` is "calc-history.json"; one that is no whole history counts as empty, and a copy of
    /// it is kept. `isEnabled` is the preference `calcHistoryEnabled`.
    CalcStore(MainQueue& queue, StateFile file, std::function<bool()> isEnabled);

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

    /// Calls `changed` after each change of the history.
    Subscription onChange(std::function<void()> changed);

private:
    void changed();

    MainQueue& queue_;
    StateFile file_;
    std::function<bool()> isEnabled_;
    CalcHistoryStore history_;
    Calc::Variables variables_;
    Observers<> observers_;
};

} // namespace tessarine
