#pragma once

#include "launcherapp/clipboard/ClipSource.h"
#include "launcherapp/clipboard/ClipboardPaster.h"

namespace tessarine {

class AppCatalog;
class RunningApps;
class WindowList;

/// What the clipboard asks about the application in front: by its desktop entry where it has one,
/// else by what its window says. Main thread only; a call asks the display.
namespace FrontApp {

ClipSource source(const WindowList& windows, const RunningApps& running, const AppCatalog& catalog);

/// Whether the application has ended since, with all that it ran: by its process where the desktop
/// tells that, else by its windows. False for one that isn't known.
bool hasEnded(const ClipSource& source, const WindowList& windows);

ClipboardPaster::Target
target(const AppWindow& window, const RunningApps& running, const AppCatalog& catalog);

} // namespace FrontApp
} // namespace tessarine
