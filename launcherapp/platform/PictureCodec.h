#pragma once

#include "launcherapp/platform/Image.h"

#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// Reads and writes pictures. Any thread; a large picture takes a second.
class PictureCodec {
public:
    virtual ~PictureCodec() = default;

    /// PNG, JPEG, BMP or TIFF, by its content. Nothing for what is no picture, is damaged, or
    /// would take more than 256 MB as pixels.
    virtual std::optional<Image> decoded(std::string_view bytes) const = 0;

    /// As PNG; nothing for an empty image.
    virtual std::optional<std::string> png(const Image& image) const = 0;

    /// With its sides in proportion, the longer one `longestPixels`; the image itself when it is no
    /// larger.
    virtual Image scaled(const Image& image, int longestPixels) const = 0;
};

} // namespace tessarine
