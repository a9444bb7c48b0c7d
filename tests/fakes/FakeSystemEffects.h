#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/SystemEffects.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A machine that notes what it was told to do, and does nothing.
class FakeSystemEffects : public SystemEffects {
public:
    explicit FakeSystemEffects(MainQueue& queue) : queue_(queue) {}

    void start() override { ++starts; }

    Ability ability(SystemAction action) const override {
        const auto found = missing.find(action);
        return found == missing.end() ? Ability{} : Ability::missing(found->second);
    }

    EffectManner manner(SystemAction action) const override {
        const auto found = manners.find(action);
        return found == manners.end() ? EffectManner{} : found->second;
    }

    Subscription onChange(std::function<void()> changed) override {
        return changes_.add(std::move(changed));
    }

    void perform(SystemAction action,
                 std::function<void(std::optional<std::string> problem)> done) override {
        performed.push_back(action);
        queue_.post([done = std::move(done), told = problem] { done(told); });
    }

    /// Makes an action one that the machine can't do, and says so.
    void lose(SystemAction action, std::string reason) {
        missing[action] = std::move(reason);
        changes_.tell();
    }

    int starts = 0;
    std::map<SystemAction, std::string> missing; ///< with the reason
    std::map<SystemAction, EffectManner> manners;
    std::optional<std::string> problem; ///< of what is performed from now on
    std::vector<SystemAction> performed;

private:
    MainQueue& queue_;
    Observers<> changes_;
};

} // namespace tessarine
