#pragma once

#include "launcherapp/platform/ApplicationBus.h"

namespace tessarine {

/// Applications on the D-Bus session bus (the desktop entry standard, "D-Bus Activation").
/// Main thread only, with Qt's event loop.
class DBusApplicationBus : public ApplicationBus {
public:
    explicit DBusApplicationBus(MainQueue& queue);

    void activate(const BusActivation& request,
                  Seconds timeout,
                  std::function<void(std::optional<std::string> problem)> done) override;

private:
    MainQueue& queue_;
};

} // namespace tessarine
