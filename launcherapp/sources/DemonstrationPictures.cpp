#include "launcherapp/sources/DemonstrationPictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Dot = std::array<double, 3>; ///< red, green, blue, each from 0 to 1

Dot between(const Dot& from, const Dot& to, double part) {
    Dot dot;
    for (std::size_t i = 0; i < dot.size(); ++i)
        dot[i] = from[i] + (to[i] - from[i]) * std::clamp(part, 0.0, 1.0);
    return dot;
}

template <typename Draw> Image drawn(int width, int height, Draw dotAt) {
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint32_t pixel = 0xFF;
            for (const double part : dotAt((x + 0.5) / width, (y + 0.5) / height))
                pixel = pixel << 8 | static_cast<std::uint32_t>(std::lround(part * 255));
            pixels.push_back(pixel);
        }
    }
    return {.widthPixels = width,
            .heightPixels = height,
            .pixels = std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels))};
}

/// 1 inside a shape whose edge is at 0, 0 outside, with a soft edge of two hundredths.
double inside(double distance) {
    return std::clamp(0.5 - distance / 0.02, 0.0, 1.0);
}

} // namespace

Image DemonstrationPictures::harbour() {
    return drawn(480, 300, [](double x, double y) {
        constexpr double shore = 0.62;
        const Dot glow{0.99, 0.72, 0.44};
        const auto sky = between({0.24, 0.22, 0.45}, glow, y / shore);
        const double sun = std::hypot((x - 0.68) * 1.6, y - 0.5) - 0.1;
        if (y < shore) {
            const double hill = shore - 0.1 * std::sin(3 * x + 0.4) - 0.03 * std::sin(11 * x);
            const auto withSun = between(sky, {1.0, 0.9, 0.68}, inside(sun));
            return between(withSun, {0.2, 0.17, 0.3}, inside((hill - y) * 0.8));
        }
        const auto water = between({0.72, 0.48, 0.46}, {0.11, 0.14, 0.29}, (y - shore) * 3.2);
        const double wave = std::sin(y * 210) * std::sin(x * 37 + y * 90);
        const double path = std::max(0.0, 1 - std::abs(x - 0.68) * (9 - 8 * (y - shore)));
        return between(water, glow, path * (0.35 + 0.3 * wave));
    });
}

Image DemonstrationPictures::portrait() {
    return drawn(192, 192, [](double x, double y) {
        auto dot = between({0.42, 0.66, 0.76}, {0.87, 0.86, 0.74}, y);
        const double body = std::hypot((x - 0.5) / 0.40, (y - 1.05) / 0.38) - 1;
        dot = between(dot, {0.16, 0.30, 0.42}, inside(body * 0.4));
        const double hair = std::hypot((x - 0.5) / 0.23, (y - 0.38) / 0.26) - 1;
        dot = between(dot, {0.25, 0.16, 0.13}, inside(hair * 0.25));
        const double face = std::hypot((x - 0.5) / 0.165, (y - 0.44) / 0.21) - 1;
        return between(dot, {0.86, 0.64, 0.51}, inside(face * 0.2));
    });
}

} // namespace tessarine
