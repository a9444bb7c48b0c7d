#include "launcherapp/platform/linux/panel/PlainPanelSurface.h"

#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/TestKeyboard.h"
#include "tests/wayland/panel/SwayDesktop.h"
#include "tests/wayland/panel/Terminal.h"

#include <gmock/gmock.h>

#include <QLineEdit>

namespace tessarine {
namespace {

/// As on a compositor without a layer shell.
TEST(WaylandPlainPanel, takesTheKeysAndGivesThemBack) {
    TestKeyboard keyboard;
    const Terminal terminal;
    ASSERT_TRUE(terminal.waitUntilUp());
    ASSERT_TRUE(waitForFocus("foot"));
    QLineEdit field;
    QtPanelWindow window(field, field, std::make_unique<PlainPanelSurface>());
    window.setFrame({.x = 300, .y = 200, .width = 400, .height = 200});
    std::string lines;
    for (const std::string text : {"one", "two"}) {
        SCOPED_TRACE(text);
        window.show();
        EXPECT_TRUE(window.hasKeyboard()) << "at once, as whoever shows it tells";
        EXPECT_EQ(window.displayedHeight(), 200);
        keyboard.type("panel");
        EXPECT_TRUE(spinUntil([&] { return field.text() == QLatin1String("panel"); }));
        window.hide();
        ASSERT_TRUE(waitForFocus("foot"));
        keyboard.type(text + "\n");
        lines += text + "\n";
        EXPECT_TRUE(spinUntil([&] { return terminal.lines() == lines; })) << terminal.lines();
        field.clear();
    }
}

} // namespace
} // namespace tessarine
