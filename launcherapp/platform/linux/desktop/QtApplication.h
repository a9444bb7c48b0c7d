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

/// The application object that Qt needs one of, made before anything else of Qt. Falls back to
/// `QtSurface::none` when no display can be reached. `argc` and `argv` must outlive it.
std::unique_ptr<QCoreApplication>
makeQtApplication(int& argc, char** argv, QtSurface surface, const Environment& environment);

} // namespace tessarine
