#pragma once

#include <string>
#include <sys/types.h>

namespace tessarine {

/// An X server with nothing on it: no window manager, no compositor, no program. As long as it
/// lives it is the display of this process.
class BareDisplay {
public:
    BareDisplay();
    ~BareDisplay();
    BareDisplay(const BareDisplay&) = delete;
    BareDisplay& operator=(const BareDisplay&) = delete;

private:
    pid_t server_ = -1;
    std::string before_;
};

} // namespace tessarine
