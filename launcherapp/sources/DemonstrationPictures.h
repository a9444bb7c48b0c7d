#pragma once

#include "launcherapp/platform/Image.h"

/// Invented pictures, computed dot by dot, so that the demonstration needs no file and shows
/// nobody. Pure; any thread.
namespace tessarine::DemonstrationPictures {

/// A sun over water, wider than high.
Image harbour();

/// Somebody before a sky.
Image portrait();

} // namespace tessarine::DemonstrationPictures
