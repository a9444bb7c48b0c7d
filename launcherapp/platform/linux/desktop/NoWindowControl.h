#pragma once

#include "launcherapp/platform/WindowControl.h"

#include <string>
#include <utility>

namespace tessarine {

/// The window control of a desktop that lets no program move another's windows, with the reason
/// why.
class NoWindowControl : public WindowControl {
public:
    explicit NoWindowControl(std::string reason) : ability_(Ability::missing(std::move(reason))) {}

    Ability ability() const override { return ability_; }

    std::vector<Screen> screens() const override { return {}; }

    std::optional<Rectangle> frame(std::uint64_t) const override { return std::nullopt; }

    void restore(std::uint64_t) override {}

    void resize(std::uint64_t, double, double) override {}

    void move(std::uint64_t, const Point&) override {}

    void close(std::uint64_t) override {}

    Ability killing() const override { return ability_; }

    bool kill(std::uint64_t) override { return false; }

private:
    Ability ability_;
};

} // namespace tessarine
