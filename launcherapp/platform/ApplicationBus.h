#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// One request to an application on the session bus (org.freedesktop.Application).
struct BusActivation {
    std::string busName;           ///< the application's desktop-file id
    std::vector<std::string> uris; ///< what to open; empty: come forward
    std::string activationToken;   ///< startup id or activation token; may be empty

    bool operator==(const BusActivation&) const = default;
};

/// Applications that start and are told what to do over the session bus. Main thread only.
class ApplicationBus {
public:
    virtual ~ApplicationBus() = default;

    /// Asks the application to activate itself or to open, starting it if need be. `done` is
    /// called once, later, on the main thread, at the latest after `timeout`: with nothing on
    /// success, else with the problem in words. Without a session bus it is a problem like others.
    virtual void activate(const BusActivation& request,
                          Seconds timeout,
                          std::function<void(std::optional<std::string> problem)> done) = 0;
};

} // namespace tessarine
