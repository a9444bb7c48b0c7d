#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace tessarine {

/// The signals by which a session, a terminal or a newer copy of the program asks it to end
/// (SIGTERM, SIGINT, SIGHUP). The first one is told by the event loop, so that what waits is saved
/// and what was changed for a while is put back; a second ends the process at once. One object at
/// a time, on the main thread.
class EndSignals {
public:
    explicit EndSignals(std::function<void()> asked);
    /// The signals end the process again.
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> arrived_;
};

} // namespace tessarine
