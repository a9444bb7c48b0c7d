#pragma once

#include "tests/wayland/standin/StandInCompositor.h"

#include <string>
#include <vector>

namespace tessarine {

/// A stand-in's windows, as it tells them to task bars, of which it hears "unhide", "activate" and
/// "close". Main thread only.
class StandInWindows {
public:
    explicit StandInWindows(StandInCompositor& compositor);
    /// Lets all programs go.
    ~StandInWindows();
    StandInWindows(const StandInWindows&) = delete;
    StandInWindows& operator=(const StandInWindows&) = delete;

    /// An active window, to the programs that watch now.
    void show(const std::string& applicationID);

    /// Tells them that there will be no more.
    void finish();

private:
    struct Requests;

    StandInCompositor& compositor_;
    StandInCompositor::Service service_;
    // Of the compositor's thread:
    std::vector<wl_resource*> managers_;
};

} // namespace tessarine
