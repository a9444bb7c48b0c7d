#include "launcherapp/platform/linux/panel/PlainPanelSurface.h"

#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QVBoxLayout>

namespace tessarine {
namespace {

TEST(PlainPanelSurface, isAnOrdinaryWindowThatTakesTheKeys) {
    X11Neighbour neighbour;
    const auto client = neighbour.open(50, 50, 300, 200);
    ASSERT_TRUE(spinUntil([&] { return neighbour.focus() == client; }));
    QWidget widget;
    QLineEdit field;
    (new QVBoxLayout(&widget))->addWidget(&field);
    QtPanelWindow window(widget, field, std::make_unique<PlainPanelSurface>());
    int losses = 0;
    int paints = 0;
    window.setEvents({.lostKeyboard = [&] { ++losses; }, .painted = [&] { ++paints; }});
    window.setFrame({.x = 400, .y = 200, .width = 400, .height = 200});
    EXPECT_EQ(window.screens().size(), 1U);

    window.show();
    ASSERT_TRUE(spinUntil([&] { return window.hasKeyboard() && paints == 1; }));
    neighbour.type("fire");
    EXPECT_TRUE(spinUntil([&] { return field.text() == QLatin1String("fire"); }));
    EXPECT_EQ(losses, 0);
    neighbour.activate(client);
    EXPECT_TRUE(spinUntil([&] { return losses == 1; }));
    window.hide();
    EXPECT_TRUE(spinUntil([&] { return neighbour.focus() == client; }));
    EXPECT_EQ(losses, 1);
    neighbour.close(client);
}

} // namespace
} // namespace tessarine
