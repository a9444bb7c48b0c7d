#include "launcherapp/platform/linux/panel/wayland/LayerPanelSurface.h"

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/TestKeyboard.h"

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

#include <QLineEdit>
#include <QProcess>
#include <QVBoxLayout>

namespace tessarine {
namespace {

class LayerPanelSurfaceTest : public testing::Test {
protected:
    LayerPanelSurfaceTest() {
        auto* layout = new QVBoxLayout(&widget);
        layout->addWidget(&field);
        widget.setStyleSheet(QStringLiteral("background: #ffeecc"));
        window.setEvents({.lostKeyboard = [this] { ++losses; },
                          .painted = [this] { ++paints; },
                          .screensChanged = [this] { ++screenChanges; }});
        window.keyArrives = [this](std::uint32_t code) { arrived.push_back(code); };
        window.setFrame({.x = 300, .y = 200, .width = 400, .height = 200});
    }

    void TearDown() override { window.hide(); }

    std::string typed() { return field.text().toStdString(); }

    TestKeyboard keyboard;
    int losses = 0;
    int paints = 0;
    int screenChanges = 0;
    std::vector<std::uint32_t> arrived;
    QWidget widget;
    QLineEdit field;
    QtPanelWindow window{widget, field, makePanelSurface()};
};

TEST_F(LayerPanelSurfaceTest, takesKeysThatAreTypedBlindRightAfterTheShow) {
    for (const std::string text : {"fire", "fox"}) {
        SCOPED_TRACE(text);
        const int before = paints;
        window.show();
        EXPECT_TRUE(window.hasKeyboard());
        keyboard.type(text); // the event loop hasn't run yet
        EXPECT_TRUE(spinUntil([&] { return typed() == text; }));
        EXPECT_EQ(paints, before + 1);
        EXPECT_EQ(arrived.size(), text.size());
        EXPECT_EQ(arrived.front(), KEY_F + 8U);
        QProcess::execute(QStringLiteral("grim"), {QStringLiteral("/tmp/hP.png")});
        window.hide();
        EXPECT_FALSE(window.isVisible());
        EXPECT_FALSE(window.hasKeyboard());
        field.clear();
        arrived.clear();
    }
    EXPECT_EQ(losses, 0);
}

} // namespace
} // namespace tessarine
