#pragma once

#include "LauncherCore/commands/SystemAction.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// Who is asked where the desktop has its own way to do an action that asks first.
enum class Farewell {
    none,        ///< nobody: it does the same as the immediate action
    apps,        ///< its apps are asked to quit, and waited for
    userAndApps, ///< the user too, in the desktop's own words
};

/// How this desktop does an action, as far as the action's own line doesn't tell it.
struct EffectManner {
    std::optional<std::string> line; ///< to be shown in place of the action's own
    Farewell farewell = Farewell::none;

    bool operator==(const EffectManner&) const = default;
};

/// The machine's and the desktop's own actions, as far as this desktop has them: power, session,
/// screens, trash, drives, appearance, pictures of the screen. The four that the launcher does by
/// itself (quitting all, force quitting, the home of times) are never asked of it. Main thread
/// only.
class SystemEffects {
public:
    virtual ~SystemEffects() = default;

    /// Looks for what this desktop has, in the background. Once.
    virtual void start() = 0;

    /// Whether an action can be had, and why not. Never waits; what is not known yet is taken to
    /// be there, and `perform` tells.
    virtual Ability ability(SystemAction action) const = 0;

    /// Never waits; nothing special while it isn't known.
    virtual EffectManner manner(SystemAction action) const = 0;

    /// Calls `changed` when an ability or a manner is another than was said.
    virtual Subscription onChange(std::function<void()> changed) = 0;

    /// Does it, without a question to the user but the desktop's own where `manner` says so. `done`
    /// is called once, later, with nothing on success, else with the problem in words.
    virtual void perform(SystemAction action,
                         std::function<void(std::optional<std::string> problem)> done) = 0;
};

} // namespace tessarine
