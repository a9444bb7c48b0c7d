#include "launcherapp/platform/linux/system/screen/ScreenSavers.h"

#include <QString>

namespace tessarine {

namespace {

using ScreenSavers::Saver;

/// The desktops' own before the common name: of that one, GNOME has a stand-in that does less.
/// A name that the bus would start is a left-over on any desktop but its own.
std::vector<Saver> savers() {
    return {
        {.target = {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver"},
         .startableOn = DesktopKind::gnome},
        // The text is a message for others to read.
        {.target = {"org.cinnamon.ScreenSaver",
                    "/org/cinnamon/ScreenSaver",
                    "org.cinnamon.ScreenSaver"},
         .lock = {"Lock", {QString()}}},
        {.target = {"org.mate.ScreenSaver", "/org/mate/ScreenSaver", "org.mate.ScreenSaver"}},
        {.target = {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver", "org.xfce.ScreenSaver"}},
        {.target = {"org.freedesktop.ScreenSaver",
                    "/org/freedesktop/ScreenSaver",
                    "org.freedesktop.ScreenSaver"}},
    };
}

bool isHere(const DesktopFacts& facts, const Saver& saver) {
    return facts.owns(saver.target.service) ||
           (saver.startableOn == facts.kind() && facts.answers(saver.target.service));
}

} // namespace

std::vector<BusRequest>
ScreenSavers::calls(const EffectContext& context, Request Saver::*request, Seconds timeout) {
    std::vector<BusRequest> calls;
    for (const auto& saver : savers()) {
        const auto& [method, values] = saver.*request;
        if (context.session && isHere(context.facts, saver))
            calls.push_back({*context.session, saver.target.call(method, values), timeout});
    }
    return calls;
}

} // namespace tessarine
