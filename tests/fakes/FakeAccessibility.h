#pragma once

#include "launcherapp/platform/Accessibility.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Programs whose buttons a test says are there.
class FakeAccessibility : public Accessibility {
public:
    struct Attempt {
        AccessibleProgram program;
        std::string name;
    };

    Ability ability() override { return trusted; }

    bool runs(const AccessibleProgram&) override { return running; }

    Before wake() override {
        ++wakings;
        return std::exchange(before, Before::speaking);
    }

    PressAttempt press(const AccessibleProgram& program, std::string_view name) override {
        attempts.push_back({.program = program, .name = std::string(name)});
        return answer(attempts.back().name);
    }

    Ability trusted;
    bool running = false;             ///< for whoever has no windows to go by
    Before before = Before::speaking; ///< until it is woken
    int wakings = 0;
    std::function<PressAttempt(const std::string& name)> answer = [](const std::string&) {
        return PressAttempt{.outcome = PressAttempt::Outcome::pressed};
    };
    std::vector<Attempt> attempts;
};

} // namespace tessarine
