#pragma once

#include "launcherapp/platform/DesktopAppearance.h"
#include "launcherapp/platform/Observers.h"

#include <utility>

namespace tessarine {

/// A desktop whose look a test sets.
class FakeDesktopAppearance : public DesktopAppearance {
public:
    ColorScheme colorScheme() const override { return scheme_; }

    Motion motion() const override { return motion_; }

    std::optional<std::uint32_t> accent() const override { return accent_; }

    Subscription onChange(std::function<void()> changed) override {
        return observers_.add(std::move(changed));
    }

    void set(ColorScheme scheme, Motion motion = Motion::full) {
        scheme_ = scheme;
        motion_ = motion;
        observers_.tell();
    }

    void setAccent(std::optional<std::uint32_t> accent) {
        accent_ = accent;
        observers_.tell();
    }

private:
    std::optional<std::uint32_t> accent_;
    ColorScheme scheme_ = ColorScheme::none;
    Motion motion_ = Motion::full;
    Observers<> observers_;
};

} // namespace tessarine
