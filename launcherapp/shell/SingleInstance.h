#pragma once

#include <optional>
#include <string_view>

namespace tessarine {

class Diagnostics;
class MainQueue;
class ResidentCopies;

/// At most one resident copy holds the hotkeys: the newest.
namespace SingleInstance {

/// Makes older resident copies quit: asks them, waits up to 2 s, then forces those that stayed and
/// waits up to 1 s more. Returns in either case. A copy without an identity of its own (a one-shot
/// mode) competes with nobody. Main thread, before the run loop; nothing else may wait like this.
void enforce(ResidentCopies& copies,
             const MainQueue& clock,
             Diagnostics& diagnostics,
             std::optional<std::string_view> bundleID);

} // namespace SingleInstance
} // namespace tessarine
