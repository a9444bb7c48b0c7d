#include "launcherapp/platform/linux/desktop/ThemeIcons.h"

#include "launcherapp/platform/Environment.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QImage>
#include <sys/stat.h>

namespace tessarine {
namespace {

constexpr std::uint32_t opaqueRed = 0xffff0000;
constexpr auto redSquare = "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                           "<rect width='10' height='10' fill='#ff0000'/></svg>";

class ThemeIconsTest : public testing::Test {
protected:
    static std::uint32_t middle(const Image& image) {
        const auto at = static_cast<std::size_t>(image.widthPixels * (image.heightPixels / 2) +
                                                 image.widthPixels / 2);
        return image.pixels->at(at);
    }

    ScratchFolder folder;
    Environment environment{.home = folder.path(), .dataHome = folder.path("/data")};
};

TEST_F(ThemeIconsTest, drawsPicturesOfAnyShapeAsSquares) {
    QImage wide(400, 100, QImage::Format_RGB32);
    wide.fill(Qt::red);
    wide.save(QString::fromStdString(folder.path("/wide.png")));
    ThemeIcons icons(environment);
    for (const auto& path : {folder.path("/wide.png"), folder.write("/square.svg", redSquare)}) {
        const auto image = icons.icon(path, 32);
        ASSERT_TRUE(image) << path;
        EXPECT_EQ(image->widthPixels, 64);
        EXPECT_EQ(image->heightPixels, 64);
        EXPECT_EQ(image->scale, 2);
        EXPECT_EQ(middle(*image), opaqueRed);
    }
    // Above the wide one there is nothing.
    EXPECT_EQ(icons.icon(folder.path("/wide.png"), 32)->pixels->front(), 0u);
}

TEST_F(ThemeIconsTest, findsNamesInTheUsersOwnFolders) {
    folder.folder("/data/pixmaps");
    folder.write("/data/pixmaps/my-own-app.svg", redSquare);
    ThemeIcons icons(environment);
    for (const auto* name : {"my-own-app", "my-own-app.svg"}) {
        const auto image = icons.icon(name, 16);
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(middle(*image), opaqueRed);
    }
}

TEST_F(ThemeIconsTest, whatIsNoPictureIsNoIcon) {
    ThemeIcons icons(environment);
    // Opened without thought, a pipe would hold up the main thread for ever.
    ::mkfifo(folder.path("/pipe.png").c_str(), 0600);
    // Small on the disk and large in memory.
    QImage huge(24000, 24000, QImage::Format_Mono);
    huge.fill(0);
    huge.save(QString::fromStdString(folder.path("/huge.png")));
    for (const auto& name : {folder.path("/pipe.png"),
                             folder.path("/huge.png"),
                             std::string(),
                             std::string("no-such-icon-anywhere"),
                             std::string("/none.png"),
                             folder.path(),
                             folder.write("/broken.png", "\x89PNG\r\n\x1a\n garbage"),
                             folder.write("/text.svg", "no drawing")})
        EXPECT_FALSE(icons.icon(name, 32)) << name;
}

TEST_F(ThemeIconsTest, everySymbolIsDrawn) {
    ThemeIcons icons(environment);
    for (const auto* name : {"app", "app.dashed", "magnifyingglass", "no.such.symbol", ""}) {
        const auto image = icons.symbol(name, 16);
        ASSERT_FALSE(image.isEmpty()) << name;
        EXPECT_TRUE(std::ranges::any_of(*image.pixels, [](auto pixel) { return pixel != 0; }))
            << name;
    }
}

} // namespace
} // namespace tessarine
