#pragma once

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/SystemEffects.h"
#include "launcherapp/platform/linux/system/SystemDoors.h"

#include <memory>
#include <utility>
#include <vector>

namespace tessarine {

class DesktopProbe;
struct Effect;
struct EffectContext;

/// What each action does on this desktop, by what is found on its buses and its disk. What is done
/// before that is known waits for it, for `SystemPatience::probe` at most.
class LinuxSystemEffects : public SystemEffects {
public:
    explicit LinuxSystemEffects(SystemDoors doors);
    ~LinuxSystemEffects() override;
    LinuxSystemEffects(const LinuxSystemEffects&) = delete;
    LinuxSystemEffects& operator=(const LinuxSystemEffects&) = delete;

    void start() override;
    Ability ability(SystemAction action) const override;
    EffectManner manner(SystemAction action) const override;
    Subscription onChange(std::function<void()> changed) override;
    void perform(SystemAction action, EffectDone done) override;

private:
    void found();

    std::shared_ptr<const SystemDoors> doors_;
    std::shared_ptr<DesktopProbe> probe_;
    std::vector<Effect> effects_; ///< by the action's value; empty until the desktop is known
    std::vector<std::pair<SystemAction, EffectDone>> waiting_;
    Observers<> observers_;
};

/// What an action does on a desktop of which this is known; the action is none of those that the
/// launcher does by itself. Making it asks and starts nothing.
Effect effectOf(SystemAction action, const EffectContext& context);

} // namespace tessarine
