#pragma once

#include "launcherapp/platform/Observers.h"

#include <QObject>
#include <functional>

namespace tessarine {

/// Tells observers of one kind of change, as another window's becoming active: from the event loop,
/// as it may be found while somebody asks for the windows. Main thread only.
class WindowChange {
public:
    Subscription add(std::function<void()> changed) { return observers_.add(std::move(changed)); }

    /// Several changes before the loop runs are told once.
    void tellSoon();

private:
    Observers<> observers_;
    bool isTelling_ = false;
    QObject loop_; ///< what waits for the loop goes with this
};

} // namespace tessarine
