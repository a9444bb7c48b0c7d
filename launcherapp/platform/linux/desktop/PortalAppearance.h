#pragma once

#include "launcherapp/platform/DesktopAppearance.h"
#include "launcherapp/platform/Observers.h"

#include <functional>
#include <memory>
#include <string>

namespace tessarine {

/// Asks the desktop's settings portal (org.freedesktop.portal.Settings) and listens to it. The
/// question is sent when this is made and answered whenever the portal gets to it: the bus may have
/// to start it first. Without a session bus or a portal nothing is ever known. Main thread only.
class PortalAppearance : public DesktopAppearance {
public:
    /// `problem` is told once, now or later, why nothing can be known; it may be empty.
    explicit PortalAppearance(std::function<void(const std::string&)> problem = {});
    ~PortalAppearance() override;

    ColorScheme colorScheme() const override { return colorScheme_; }

    Motion motion() const override { return motion_; }

    std::optional<std::uint32_t> accent() const override { return accent_; }

    Subscription onChange(std::function<void()> changed) override;

private:
    class Listener;

    ColorScheme colorScheme_ = ColorScheme::none;
    Motion motion_ = Motion::full;
    std::optional<std::uint32_t> accent_;
    Observers<> observers_;
    std::function<void(const std::string&)> problem_;
    std::unique_ptr<Listener> listener_;
};

} // namespace tessarine
