#include "launcherapp/shell/SingleInstance.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ResidentCopies.h"

#include <fmt/format.h>

#include <cstdint>
#include <vector>

namespace tessarine {

namespace {

constexpr Seconds patience{2};     ///< after asking
constexpr Seconds lastPatience{1}; ///< after forcing
constexpr std::chrono::milliseconds round{20};

/// Those of `processes` that are still there when `atMost` has passed, or none as soon as all are
/// gone.
std::vector<std::int64_t> waitFor(ResidentCopies& copies,
                                  const MainQueue& clock,
                                  std::vector<std::int64_t> processes,
                                  Seconds atMost) {
    const auto end = clock.uptime() + atMost;
    for (;;) {
        std::erase_if(processes, [&](std::int64_t process) { return copies.isGone(process); });
        if (processes.empty() || clock.uptime() >= end)
            return processes;
        copies.pause(round);
    }
}

} // namespace

void SingleInstance::enforce(ResidentCopies& copies,
                             const MainQueue& clock,
                             Diagnostics& diagnostics,
                             std::optional<std::string_view> bundleID) {
    if (!bundleID)
        return;
    const auto older = copies.others();
    if (older.empty())
        return;
    for (const auto process : older)
        copies.terminate(process);
    auto staying = waitFor(copies, clock, older, patience);
    if (staying.empty()) {
        diagnostics.log(fmt::format("single instance: {} older {} quit",
                                    older.size(),
                                    older.size() > 1 ? "copies" : "copy"));
        return;
    }
    diagnostics.log(
        fmt::format("single instance: {} copy did not quit in 2 s; forcing", staying.size()));
    for (const auto process : staying)
        copies.forceTerminate(process);
    staying = waitFor(copies, clock, std::move(staying), lastPatience);
    if (staying.empty())
        diagnostics.log("single instance: forced quit succeeded; the chord is free");
    else
        diagnostics.log(
            fmt::format("single instance: {} copy STILL running; expect the hotkey to be taken",
                        staying.size()));
}

} // namespace tessarine
