#include "launcherapp/platform/linux/desktop/QtPictureCodec.h"

#include <gmock/gmock.h>

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::ElementsAre;

constexpr auto red = 0xffff0000U;
constexpr auto blue = 0xff0000ffU;

/// Red on the left, blue on the right.
QImage flag(int width, int height) {
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, x < width / 2 ? red : blue);
    }
    return picture;
}

std::string encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(picture.save(&buffer, format, 100)) << format;
    return bytes.toStdString();
}

/// As a camera that was held on its side writes it: to be turned clockwise by a quarter.
std::string turnedJpeg(const QImage& picture) {
    const auto jpeg = encoded(picture, "JPEG");
    const std::string tags("Exif\0\0MM\0*\0\0\0\x08"
                           "\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
                           32);
    auto turned = jpeg.substr(0, 2);
    turned.append("\xff\xe1\0\x22", 4); // its length counts itself
    return turned + tags + jpeg.substr(2);
}

/// The header's size at this place becomes 60000 by 60000, as two numbers of so many bytes.
std::string claimingMuch(std::string picture, std::size_t place, const std::string& side) {
    return picture.replace(place, 2 * side.size(), side + side);
}

Image image(int width, int height, std::vector<std::uint32_t> pixels) {
    return {.widthPixels = width,
            .heightPixels = height,
            .pixels = std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels))};
}

/// Whether the pixels are red or blue, by their stronger part: JPEG changes them a little.
std::string colors(const Image& picture) {
    std::string colors;
    for (const auto pixel : *picture.pixels)
        colors += (pixel >> 16 & 0xff) > (pixel & 0xff) ? 'r' : 'b';
    return colors;
}

const QtPictureCodec codec;

TEST(QtPictureCodec, readsWhatProgramsCopy) {
    for (const auto* format : {"PNG", "JPEG", "BMP", "TIFF"}) {
        SCOPED_TRACE(format);
        const auto picture = codec.decoded(encoded(flag(4, 2), format));
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->widthPixels, 4);
        EXPECT_EQ(colors(*picture), "rrbbrrbb");
    }
}

TEST(QtPictureCodec, turnsAPhotographUpright) {
    const auto picture = codec.decoded(turnedJpeg(flag(32, 16)));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->widthPixels, 16);
    EXPECT_EQ(picture->heightPixels, 32);
    EXPECT_EQ(colors(*picture).front(), 'r'); // the left side is on top now
    EXPECT_EQ(colors(*picture)[15], 'r');
    EXPECT_EQ(colors(*picture).back(), 'b');
}

TEST(QtPictureCodec, refusesWhatIsNoWholePicture) {
    const auto half = [](const std::string& bytes) { return bytes.substr(0, bytes.size() / 2); };
    const auto large = flag(200, 200);
    const auto bitmap = encoded(large, "BMP");
    const auto photograph = encoded(large, "JPEG");
    const auto frame = photograph.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    const std::string shortSide("\xea\x60", 2);

    const struct {
        const char* reason;
        std::string bytes;
    } cases[] = {
        {"nothing at all", ""},
        {"text", "Hello, world"},
        {"a format that isn't asked for", "GIF89a\x01\0\x01\0\x80\0\0\0\0\0\xff\xff\xff,"},
        {"a drawing, which could name files",
         "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>"},
        {"half a PNG", half(encoded(large, "PNG"))},
        {"half a JPEG, whose reader would paint the rest grey", half(photograph)},
        {"half a BMP", half(bitmap)},
        {"half a TIFF", half(encoded(large, "TIFF"))},
        {"the mark of a PNG alone", encoded(large, "PNG").substr(0, 8)},
        {"a BMP of 60000 by 60000", claimingMuch(bitmap, 18, std::string("\x60\xea\0\0", 4))},
        {"a JPEG of 60000 by 60000", claimingMuch(photograph, frame + 5, shortSide)},
    };

    for (const auto& [reason, bytes] : cases)
        EXPECT_FALSE(codec.decoded(bytes)) << reason;
}

TEST(QtPictureCodec, givesEveryPixelBackAsPng) {
    const auto picture = image(2, 2, {red, 0, 0x80800000, blue});
    const auto png = codec.png(picture);
    ASSERT_TRUE(png);
    const auto back = codec.decoded(*png);
    ASSERT_TRUE(back);
    EXPECT_THAT(*back->pixels, ElementsAre(red, 0, 0x80800000, blue));
    EXPECT_FALSE(codec.png({}));
}

TEST(QtPictureCodec, keepsTheProportions) {
    const struct {
        int width, height, longest;
        int scaledWidth, scaledHeight;
    } cases[] = {
        {1000, 500, 100, 100, 50},
        {500, 1000, 100, 50, 100},
        {1000, 1, 10, 10, 1}, // a side never vanishes
        {7, 5, 7, 7, 5},      // as large as allowed
        {7, 5, 100, 7, 5},    // never enlarged
    };

    for (const auto& [width, height, longest, scaledWidth, scaledHeight] : cases) {
        const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        const auto scaled =
            codec.scaled(image(width, height, std::vector<std::uint32_t>(size, red)), longest);
        EXPECT_EQ(scaled.widthPixels, scaledWidth) << width << "x" << height;
        EXPECT_EQ(scaled.heightPixels, scaledHeight) << width << "x" << height;
        EXPECT_EQ(scaled.pixels->front(), red);
    }
    EXPECT_TRUE(codec.scaled({}, 10).isEmpty());
}

TEST(QtPictureCodec, mixesColorsWhereItScalesDown) {
    const auto scaled = codec.scaled(image(4, 1, {red, blue, red, blue}), 2);
    for (const auto pixel : *scaled.pixels) {
        EXPECT_GT(pixel >> 16 & 0xff, 64U);
        EXPECT_GT(pixel & 0xff, 64U);
    }
}

} // namespace
} // namespace tessarine
