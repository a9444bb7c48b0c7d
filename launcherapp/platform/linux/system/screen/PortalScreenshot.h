#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

namespace tessarine::PortalScreenshot {

/// Has the desktop portal (org.freedesktop.portal.Screenshot) ask the user what to take a picture
/// of, and copies the picture. Where it is kept stays the desktop's choice. Main thread only.
EffectWay way(const EffectWays::Doors& doors, const QDBusConnection& bus);

} // namespace tessarine::PortalScreenshot
