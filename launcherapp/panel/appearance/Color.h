#pragma once

#include <cstdint>

namespace tessarine {

/// A colour of the sRGB space, not premultiplied. A value.
struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 255; ///< 255: opaque

    /// 0xRRGGBB, opaque.
    static constexpr Color fromRgb(std::uint32_t rgb) {
        return {static_cast<std::uint8_t>(rgb >> 16),
                static_cast<std::uint8_t>(rgb >> 8),
                static_cast<std::uint8_t>(rgb)};
    }

    constexpr Color withAlpha(std::uint8_t value) const { return {red, green, blue, value}; }

    bool operator==(const Color&) const = default;
};

/// Mixing and the contrast of WCAG 2.1. Pure; any thread.
namespace Contrast {

/// What shows where `top` lies over the opaque `bottom`.
Color over(Color top, Color bottom);

/// The opaque colour `part` of the way from one to the other; 0 is `from`, 1 is `to`.
Color between(Color from, Color to, double part);

/// Relative luminance of an opaque colour, 0 for black to 1 for white.
double luminance(Color color);

/// 1 for equal colours to 21 for black on white; both opaque.
double ratio(Color one, Color other);

} // namespace Contrast
} // namespace tessarine
