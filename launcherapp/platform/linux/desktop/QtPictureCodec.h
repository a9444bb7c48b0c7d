#pragma once

#include "launcherapp/platform/PictureCodec.h"

namespace tessarine {

/// Pictures by Qt's readers and writers. A photograph comes upright, as its camera noted (EXIF); of
/// a file with several pictures the first counts. Needs no display.
class QtPictureCodec : public PictureCodec {
public:
    std::optional<Image> decoded(std::string_view bytes) const override;

    /// 4000×3000 pixels take 0.7 to 1.1 s.
    std::optional<std::string> png(const Image& image) const override;
    Image scaled(const Image& image, int longestPixels) const override;
};

} // namespace tessarine
