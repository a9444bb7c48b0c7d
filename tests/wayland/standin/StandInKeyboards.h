#pragma once

#include "tests/wayland/standin/StandInCompositor.h"

namespace tessarine {

/// Where programs plug virtual keyboards into a stand-in, which hears "plug in", "press CODE" and
/// "unplug". Main thread only.
class StandInKeyboards {
public:
    explicit StandInKeyboards(StandInCompositor& compositor);
    /// Lets all programs go.
    ~StandInKeyboards();
    StandInKeyboards(const StandInKeyboards&) = delete;
    StandInKeyboards& operator=(const StandInKeyboards&) = delete;

private:
    struct Requests;

    StandInCompositor& compositor_;
    StandInCompositor::Service service_;
};

} // namespace tessarine
