#include "launcherapp/platform/linux/desktop/QtPictureCodec.h"

#include "launcherapp/platform/linux/desktop/QtImages.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tessarine {

namespace {

/// Qt's own bound for one picture as well, which counts deep colours twice.
constexpr std::int64_t mostPixelBytes = std::int64_t{256} << 20;
constexpr std::int64_t bytesPerPixel = 4;

/// Of Qt's hundred, which is zlib's level 1: a photograph takes a quarter of the time of the usual
/// level 6 and a sixth more bytes, a screenshot about the same of both.
constexpr int pngCompression = 12;

bool isReadFormat(const QByteArray& format) {
    return format == "png" || format == "jpeg" || format == "bmp" || format == "tiff";
}

/// Neither marker occurs within the coded picture (ITU T.81, B.1.1.5).
bool isCutOffJpeg(std::string_view bytes) {
    const auto end = bytes.rfind("\xff\xd9");
    const auto start = bytes.rfind("\xff\xda");
    return end == std::string_view::npos || (start != std::string_view::npos && end < start);
}

/// The header's own length of the file is wrong in too many of them; the pixels have to be there.
bool isCutOffBitmap(std::string_view bytes, QSize size) {
    const auto number = [&](std::size_t place, std::size_t width) {
        std::int64_t value = 0;
        for (std::size_t i = 0; i < width; ++i)
            value |= std::int64_t{static_cast<unsigned char>(bytes[place + i])} << (8 * i);
        return value;
    };
    constexpr std::size_t headerBytes = 54;
    if (bytes.size() < headerBytes)
        return true;
    const auto bitsPerPixel = number(28, 2);
    const auto compression = number(30, 4);
    constexpr std::int64_t runLength8 = 1;
    constexpr std::int64_t runLength4 = 2;
    // Before version 3 the header is shorter, and what is compressed may have any length.
    if (number(14, 4) < 40 || compression == runLength8 || compression == runLength4)
        return false;
    const auto rowBytes = (size.width() * bitsPerPixel + 31) / 32 * 4;
    return number(10, 4) + rowBytes * size.height() > static_cast<std::int64_t>(bytes.size());
}

/// Whether it ends before the picture does; these readers make up the rest and are content.
bool isCutOff(std::string_view bytes, const QByteArray& format, QSize size) {
    return (format == "jpeg" && isCutOffJpeg(bytes)) ||
           (format == "bmp" && isCutOffBitmap(bytes, size));
}

bool fits(QSize size) {
    return !size.isEmpty() &&
           std::int64_t{size.width()} * size.height() * bytesPerPixel <= mostPixelBytes;
}

/// Shares the pixels of an image that isn't empty, and must not outlive it.
QImage pictureOf(const Image& image) {
    return QImage(reinterpret_cast<const uchar*>(image.pixels->data()),
                  image.widthPixels,
                  image.heightPixels,
                  image.widthPixels * bytesPerPixel,
                  QImage::Format_ARGB32_Premultiplied);
}

bool isOpaque(const Image& image) {
    return std::ranges::all_of(*image.pixels,
                               [](std::uint32_t pixel) { return pixel >> 24 == 0xff; });
}

} // namespace

std::optional<Image> QtPictureCodec::decoded(std::string_view bytes) const {
    auto shared = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&shared);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const auto format = reader.format();
    // The header tells the size, before any memory is taken for it.
    if (!isReadFormat(format) || !fits(reader.size()) || isCutOff(bytes, format, reader.size()))
        return std::nullopt;
    const auto picture = reader.read();
    if (picture.isNull())
        return std::nullopt;
    return imageOf(picture, 1);
}

std::optional<std::string> QtPictureCodec::png(const Image& image) const {
    if (image.isEmpty())
        return std::nullopt;
    // Without opacity there is a quarter less to compress.
    const auto picture = isOpaque(image) ? pictureOf(image).convertToFormat(QImage::Format_RGB888)
                                         : pictureOf(image);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "png");
    writer.setCompression(pngCompression);
    if (!writer.write(picture))
        return std::nullopt;
    return bytes.toStdString();
}

Image QtPictureCodec::scaled(const Image& image, int longestPixels) const {
    const auto longer = std::max(image.widthPixels, image.heightPixels);
    if (image.isEmpty() || longer <= longestPixels)
        return image;
    const auto side = [&](int pixels) {
        const auto exact = double(pixels) * longestPixels / longer;
        return std::max(1, static_cast<int>(std::lround(exact)));
    };
    auto smaller = imageOf(pictureOf(image).scaled(side(image.widthPixels),
                                                   side(image.heightPixels),
                                                   Qt::IgnoreAspectRatio,
                                                   Qt::SmoothTransformation),
                           image.scale);
    smaller.isMask = image.isMask;
    return smaller;
}

} // namespace tessarine
