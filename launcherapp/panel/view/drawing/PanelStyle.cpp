#include "launcherapp/panel/view/drawing/PanelStyle.h"

#include <cmath>

namespace tessarine {

namespace {

constexpr double largeText = 1.2;

QFont sized(QFont font, double pixels, QFont::Weight weight = QFont::Normal) {
    font.setPixelSize(static_cast<int>(std::lround(pixels)));
    font.setWeight(weight);
    return font;
}

} // namespace

PanelStyle::PanelStyle(const Palette& colors, TextScale scale, const QFont& desktopFont)
    : palette(colors) {
    const double factor = scale == TextScale::large ? largeText : 1;
    field = sized(desktopFont, 22 * factor);
    title = sized(desktopFont, 15 * factor);
    answer = sized(desktopFont, 17 * factor, QFont::DemiBold);
    heading = sized(desktopFont, 19 * factor, QFont::DemiBold);
    subtitle = sized(desktopFont, 12 * factor);
    small = sized(desktopFont, 11.5 * factor);
    rowHeight = static_cast<int>(std::lround(46 * factor));
    menuItemHeight = static_cast<int>(std::lround(32 * factor));
}

} // namespace tessarine
