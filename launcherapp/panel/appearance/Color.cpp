#include "launcherapp/panel/appearance/Color.h"

#include <algorithm>
#include <cmath>

namespace tessarine {

namespace {

std::uint8_t mixed(std::uint8_t from, std::uint8_t to, double part) {
    return static_cast<std::uint8_t>(std::lround(from + (to - from) * part));
}

/// A channel made linear (WCAG 2.1, "relative luminance"; 0.04045 is the value of the sRGB
/// standard, where the text has 0.03928: no 8-bit channel lies between them).
double linear(std::uint8_t channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

} // namespace

Color Contrast::over(Color top, Color bottom) {
    return between(bottom, top.withAlpha(255), top.alpha / 255.0);
}

Color Contrast::between(Color from, Color to, double part) {
    return {mixed(from.red, to.red, part),
            mixed(from.green, to.green, part),
            mixed(from.blue, to.blue, part)};
}

double Contrast::luminance(Color color) {
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double Contrast::ratio(Color one, Color other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace tessarine
