#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// One entry of the actions menu. A value with identity: two actions are the same when their ids
/// are. Main thread only.
struct RowAction {
    std::string id;                    ///< a UUID, unique per action
    std::string title;                 ///< empty for a separator
    std::string shortcut;              ///< the chord drawn at the right; empty for none
    std::optional<std::string> symbol; ///< a symbol's name
    bool destructive = false;          ///< drawn as a warning
    std::function<void()> run;

    /// A new action with an id of its own.
    static RowAction make(std::string title, std::function<void()> run);

    /// The divider line of every menu; selection skips it and running it does nothing.
    static const RowAction& separator();

    bool isSeparator() const { return id == separator().id; }

    bool operator==(const RowAction& other) const { return id == other.id; }
};

} // namespace tessarine
