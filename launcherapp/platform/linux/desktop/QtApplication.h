#pragma once

#include "launcherapp/platform/Environment.h"

#include <memory>

class QCoreApplication;

namespace tessarine {

enum class QtSurface {
    none,     ///< an event loop alone: works without any display
    pictures, ///< widgets drawn into pictures: on a display where one answers, else without any
    windows,  ///< windows and icons too, where a display answers
};

/// Whether the language of the user's desktop is written from right to left.
bool readsRightToLeft(const Environment& environment);

/// The application object that Qt needs one of, made before anything else of Qt. Falls back to
/// `QtSurface::none` when no display can be reached. Wayland is taken before X11, unless the user's
/// QT_QPA_PLATFORM says otherwise; where Qt lacks its part for it, a line on standard error says
/// what is missing. It goes on when its last window closes, since
/// a panel is mostly hidden. `argc` and `argv` must outlive it.
std::unique_ptr<QCoreApplication>
makeQtApplication(int& argc, char** argv, QtSurface surface, const Environment& environment);

/// Gives the program's windows its icon, which is looked for on the disk. Nothing happens where
/// there are no windows.
void setApplicationIcon();

} // namespace tessarine
