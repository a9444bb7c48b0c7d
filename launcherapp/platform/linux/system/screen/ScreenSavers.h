#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

#include <vector>

/// The screen savers of the session bus, which lock too. Pure.
namespace tessarine::ScreenSavers {

struct Request {
    const char* method;
    QVariantList values = {};
};

struct Saver {
    BusTarget target;
    std::optional<DesktopKind> startableOn = {}; ///< where the bus may start it
    Request lock = {"Lock"};
    Request activate = {"SetActive", {true}};
};

/// The request to each that is here, the desktop's own before the common name; empty without any.
std::vector<BusRequest>
calls(const EffectContext& context, Request Saver::*request, Seconds timeout);

} // namespace tessarine::ScreenSavers
