#pragma once

#include "launcherapp/platform/MainQueue.h"

namespace tessarine {

/// Looks for a newer version of the program. This one never does: it stands where the program is
/// kept up to date by the system's packages. Main thread only.
class Updater {
public:
    Updater() = default;
    virtual ~Updater() = default;
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;

    /// Starts a look, and returns at once, if updates are automatic and so much time or more has
    /// passed since the last one.
    virtual void checkIfDue(Seconds) {}
};

} // namespace tessarine
