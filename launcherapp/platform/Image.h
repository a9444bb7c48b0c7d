#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace tessarine {

/// A picture as pixels, shared and never changed: copying one costs a reference count.
struct Image {
    int widthPixels = 0;
    int heightPixels = 0;
    double scale = 1;    ///< pixels per point
    bool isMask = false; ///< only its opacity counts: it takes the colour of the text beside it
    /// 0xAARRGGBB, premultiplied, row after row; null for an empty image.
    std::shared_ptr<const std::vector<std::uint32_t>> pixels;

    bool isEmpty() const { return !pixels || pixels->empty(); }
};

} // namespace tessarine
