#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace tessarine {

/// One entry of the actions menu, or a line to read among them. A value with identity: two actions
/// are the same when their ids are. Main thread only.
struct RowAction {
    std::string id;                    ///< a UUID, unique per action
    std::string title;                 ///< empty for a separator
    std::string shortcut;              ///< the chord drawn at the right; empty for none
    std::optional<std::string> symbol; ///< a symbol's name
    bool destructive = false;          ///< drawn as a warning
    std::function<void()> run;         ///< empty for a line that is only to be read

    /// A new action with an id of its own.
    static RowAction make(std::string title, std::function<void()> run);

    /// A line that is only to be read.
    static RowAction note(std::string text) { return make(std::move(text), nullptr); }

    /// The divider line of every menu; selection skips it and running it does nothing.
    static const RowAction& separator();

    bool isSeparator() const { return id == separator().id; }

    bool isNote() const { return !run; }

    /// What selection and the pointer pass over can't be run either.
    bool canBeChosen() const { return !isSeparator() && !isNote(); }

    bool operator==(const RowAction& other) const { return id == other.id; }
};

} // namespace tessarine
