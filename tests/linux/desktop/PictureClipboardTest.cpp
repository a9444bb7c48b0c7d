#include "launcherapp/platform/linux/desktop/PictureClipboard.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

namespace tessarine {
namespace {

using testing::HasSubstr;

class PictureClipboardTest : public testing::Test {
protected:
    std::optional<std::string> copy(const std::string& path) {
        bool isOver = false;
        std::optional<std::string> result;
        copyPicture(work, path, [&](std::optional<std::string> problem) {
            result = std::move(problem);
            isOver = true;
        });
        EXPECT_TRUE(spinUntil([&] { return isOver; }));
        return result;
    }

    std::string picture(const std::string& name, const char* format) {
        const auto path = scratch.path(name);
        QImage image(3, 2, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(QString::fromStdString(path), format));
        return path;
    }

    static QByteArray clipboard() {
        return QGuiApplication::clipboard()->mimeData()->data(QStringLiteral("image/png"));
    }

    ScratchFolder scratch;
    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
};

TEST_F(PictureClipboardTest, handsOnThePictureAsItIs) {
    const auto path = picture("/a.png", "PNG");
    ASSERT_EQ(copy(path), std::nullopt);
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(clipboard(), file.readAll());
}

TEST_F(PictureClipboardTest, makesOthersPng) {
    ASSERT_EQ(copy(picture("/a.bmp", "BMP")), std::nullopt);
    EXPECT_EQ(QImage::fromData(clipboard(), "PNG").size(), QSize(3, 2));
}

TEST_F(PictureClipboardTest, aBrokenPictureLeavesTheLastOne) {
    ASSERT_EQ(copy(picture("/a.png", "PNG")), std::nullopt);
    const auto before = clipboard();
    const auto path = scratch.write("/cut.png", before.left(before.size() / 2).toStdString());
    EXPECT_THAT(copy(path).value_or(""), HasSubstr("could not be read as a picture"));
    EXPECT_THAT(copy(scratch.path("/none.png")).value_or(""), HasSubstr("No such file"));
    EXPECT_EQ(clipboard(), before);
}

} // namespace
} // namespace tessarine
