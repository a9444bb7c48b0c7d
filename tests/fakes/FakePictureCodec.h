#pragma once

#include "launcherapp/platform/PictureCodec.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Pictures whose files are a format's true first bytes, the two sides and the bare pixels, so that
/// their size is known: 4 bytes a pixel and a few.
class FakePictureCodec : public PictureCodec {
public:
    static constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n";
    static constexpr std::string_view bmpMark = "BM";
    static constexpr std::string_view tiffMark = std::string_view("II*\0", 4);
    static constexpr std::string_view jpegMark = "\xff\xd8\xff";

    /// A picture of one colour.
    static Image picture(int width, int height, std::uint32_t colour) {
        const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        return {.widthPixels = width,
                .heightPixels = height,
                .pixels = std::make_shared<const std::vector<std::uint32_t>>(pixels, colour)};
    }

    static std::string file(std::string_view mark, const Image& image) {
        std::string bytes(mark);
        append(bytes, &image.widthPixels, 1);
        append(bytes, &image.heightPixels, 1);
        append(bytes, image.pixels->data(), image.pixels->size());
        return bytes;
    }

    std::optional<Image> decoded(std::string_view bytes) const override {
        for (const auto mark : {pngMark, bmpMark, tiffMark, jpegMark}) {
            if (bytes.starts_with(mark))
                return pixelsOf(bytes.substr(mark.size()));
        }
        return std::nullopt;
    }

    std::optional<std::string> png(const Image& image) const override {
        if (image.isEmpty())
            return std::nullopt;
        return file(pngMark, image);
    }

    Image scaled(const Image& image, int longestPixels) const override {
        const int longest = std::max(image.widthPixels, image.heightPixels);
        if (longest <= longestPixels)
            return image;
        return picture(std::max(1, image.widthPixels * longestPixels / longest),
                       std::max(1, image.heightPixels * longestPixels / longest),
                       image.pixels->front());
    }

private:
    template <typename T> static void append(std::string& bytes, const T* values, std::size_t n) {
        bytes.append(reinterpret_cast<const char*>(values), n * sizeof(T));
    }

    static std::optional<Image> pixelsOf(std::string_view bytes) {
        int sides[2];
        if (bytes.size() < sizeof sides)
            return std::nullopt;
        std::memcpy(sides, bytes.data(), sizeof sides);
        bytes.remove_prefix(sizeof sides);
        std::vector<std::uint32_t> pixels(bytes.size() / sizeof(std::uint32_t));
        if (pixels.size() !=
            static_cast<std::size_t>(sides[0]) * static_cast<std::size_t>(sides[1]))
            return std::nullopt; // cut off
        std::memcpy(pixels.data(), bytes.data(), pixels.size() * sizeof(std::uint32_t));
        return Image{.widthPixels = sides[0],
                     .heightPixels = sides[1],
                     .pixels =
                         std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels))};
    }
};

} // namespace tessarine
