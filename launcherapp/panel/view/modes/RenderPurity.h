#pragma once

#include "launcherapp/operations/Selftest.h"
#include "launcherapp/shell/Prefs.h"

#include <QImage>
#include <functional>

namespace tessarine {

class Appearance;
struct ModeContext;

/// Whether pictures in every appearance leave the user's stored settings as they are. `picture`
/// draws the panel in one.
SelftestResult renderPurity(ModeContext& context,
                            const Appearance& appearance,
                            const std::function<QImage(AppearancePreset skin)>& picture);

} // namespace tessarine
