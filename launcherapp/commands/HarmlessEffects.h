#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/SystemEffects.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace tessarine {

/// The machine's actions for a run that must not touch the machine, as a demonstration or a test of
/// the whole program: all are offered, and doing one tells that it was not done. Main thread only.
class HarmlessEffects : public SystemEffects {
public:
    /// `reason` is what a user reads who chose one.
    HarmlessEffects(MainQueue& queue, std::string reason)
        : queue_(queue), reason_(std::move(reason)) {}

    void start() override {}

    Ability ability(SystemAction) const override { return {}; }

    EffectManner manner(SystemAction) const override { return {}; }

    Subscription onChange(std::function<void()>) override { return {}; }

    void perform(SystemAction,
                 std::function<void(std::optional<std::string> problem)> done) override {
        queue_.post([done = std::move(done), reason = reason_] { done(reason); });
    }

private:
    MainQueue& queue_;
    std::string reason_;
};

} // namespace tessarine
