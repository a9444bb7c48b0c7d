#include "launcherapp/platform/linux/desktop/QtImages.h"

#include <QImage>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace tessarine {

Image imageOf(const QImage& picture, double scale) {
    const auto converted = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (converted.isNull())
        return {};
    const auto width = static_cast<std::size_t>(converted.width());
    const auto height = static_cast<std::size_t>(converted.height());
    std::vector<std::uint32_t> pixels(width * height);
    for (std::size_t row = 0; row < height; ++row)
        std::memcpy(pixels.data() + row * width,
                    converted.constScanLine(static_cast<int>(row)),
                    width * sizeof(std::uint32_t));
    return {.widthPixels = converted.width(),
            .heightPixels = converted.height(),
            .scale = scale,
            .pixels = std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels))};
}

} // namespace tessarine
