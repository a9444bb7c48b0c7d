#pragma once

#include "LauncherCore/commands/SystemAction.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// The machine's and the desktop's own actions, as far as this desktop has them: power, session,
/// screens, trash, drives, appearance, pictures of the screen. Main thread only.
class SystemEffects {
public:
    virtual ~SystemEffects() = default;

    /// Looks for what this desktop has, in the background. Once.
    virtual void start() = 0;

    /// Whether an action can be had, and why not. Never waits; what is not known yet is taken to
    /// be there, and `perform` tells.
    virtual Ability ability(SystemAction action) const = 0;

    /// Calls `changed` when an ability is another than was said.
    virtual Subscription onChange(std::function<void()> changed) = 0;

    /// Does it, without a question to the user. `done` is called once, later, with nothing on
    /// success, else with the problem in words.
    virtual void perform(SystemAction action,
                         std::function<void(std::optional<std::string> problem)> done) = 0;
};

} // namespace tessarine
