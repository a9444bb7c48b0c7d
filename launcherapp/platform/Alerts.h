#pragma once

#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <string>

namespace tessarine {

/// What the user is asked before something is done that can't be undone.
struct AlertQuestion {
    std::string title;
    std::string text;
    std::string confirm; ///< the button that does it

    bool operator==(const AlertQuestion&) const = default;
};

/// Windows that tell or ask something after the panel has gone. Main thread only.
class Alerts {
public:
    virtual ~Alerts() = default;

    /// `answered` is called once, later; false when the window is closed or can't be shown.
    virtual void ask(const AlertQuestion& question,
                     std::function<void(bool confirmed)> answered) = 0;

    /// Tells something that went wrong, or why.
    virtual void tell(const std::string& title, const std::string& text) = 0;

    /// Shows what is waited for, with a button that takes it back, and leaves the keyboard where it
    /// is. The window stays until the subscription ends, or it is closed: then `takenBack` is
    /// called, once, later. Without a display nothing is shown.
    virtual Subscription
    wait(const std::string& title, const std::string& text, std::function<void()> takenBack) = 0;
};

} // namespace tessarine
