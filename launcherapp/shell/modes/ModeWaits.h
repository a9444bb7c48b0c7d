#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <functional>

namespace tessarine {

struct ModeContext;

/// What a mode waits for before it answers. Main thread only.
namespace ModeWaits {

/// How long at the most: as long as a start waits for contacts.
inline constexpr Seconds patience{15};

/// Calls `then` within the call if `isDone`, else once it is, or after `patience` when it never is.
void until(ModeContext& context, std::function<bool()> isDone, std::function<void()> then);

/// Calls `then` once the catalog's first scan is there, by which links and applications are opened,
/// and the user's commands were read. A disk that is too slow for `patience` is not waited for.
void whenReady(ModeContext& context, std::function<void()> then);

} // namespace ModeWaits
} // namespace tessarine
