#include "launcherapp/platform/linux/desktop/PictureClipboard.h"

#include "launcherapp/platform/linux/pasteboard/NoPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/x11/X11Pasteboard.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QImage>

namespace tessarine {
namespace {

using testing::HasSubstr;

class PictureClipboardTest : public testing::Test {
protected:
    std::optional<std::string> copy(const std::string& path) {
        bool isOver = false;
        std::optional<std::string> result;
        copyPicture(work, *board, path, [&](std::optional<std::string> problem) {
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

    /// As another program gets it.
    QByteArray clipboard() {
        std::optional<PasteboardReading> reading;
        X11Pasteboard other(queue);
        other.offer([&](const std::optional<PasteboardOffer>& offer) {
            other.read(offer ? offer->count : 0, "image/png", 100000, [&](PasteboardReading read) {
                reading = std::move(read);
            });
        });
        EXPECT_TRUE(spinUntil([&] { return reading.has_value(); }));
        return QByteArray::fromStdString(reading->bytes);
    }

    ScratchFolder scratch;
    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
    std::unique_ptr<Pasteboard> board = std::make_unique<X11Pasteboard>(queue);
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

TEST_F(PictureClipboardTest, saysWhyItCantBeCopied) {
    board = std::make_unique<NoPasteboard>(queue, "nobody sees the clipboard");
    EXPECT_THAT(copy(picture("/a.png", "PNG")).value_or(""),
                HasSubstr("nobody sees the clipboard"));
}

} // namespace
} // namespace tessarine
