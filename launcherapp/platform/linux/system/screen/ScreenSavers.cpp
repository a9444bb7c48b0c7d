#include "launcherapp/platform/linux/system/screen/ScreenSavers.h"

#include <array>

namespace tessarine {

namespace {

/// The desktops' own before the common name: of that one, GNOME has a stand-in that does less.
constexpr auto known = std::to_array<BusTarget>({
    {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver"},
    {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver", "org.cinnamon.ScreenSaver"},
    {"org.mate.ScreenSaver", "/org/mate/ScreenSaver", "org.mate.ScreenSaver"},
    {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver", "org.xfce.ScreenSaver"},
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver"},
});

/// GNOME's is started by the first call to it; elsewhere that name would be a left-over.
bool isThere(const DesktopFacts& facts, const BusTarget& saver) {
    const bool isGnomesOwn = &saver == &known.front() && facts.kind() == DesktopKind::gnome;
    return isGnomesOwn ? facts.answers(saver.service) : facts.owns(saver.service);
}

} // namespace

std::vector<BusTarget> ScreenSavers::present(const DesktopFacts& facts) {
    std::vector<BusTarget> found;
    for (const auto& saver : known) {
        if (isThere(facts, saver))
            found.push_back(saver);
    }
    return found;
}

} // namespace tessarine
