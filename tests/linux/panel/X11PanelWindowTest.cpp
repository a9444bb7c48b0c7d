#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QVBoxLayout>

namespace tessarine {
namespace {

using testing::IsEmpty;

using Window = X11Neighbour::Window;

constexpr Rectangle place{.x = 300, .y = 200, .width = 400, .height = 200};

class X11PanelWindowTest : public testing::Test {
protected:
    X11PanelWindowTest() {
        auto* layout = new QVBoxLayout(&widget);
        layout->addWidget(new QLabel(QStringLiteral("background"), &widget));
        layout->addWidget(&field);
        widget.setStyleSheet(QStringLiteral("background: #ffeecc"));
        window.setEvents({.lostKeyboard = [this] { ++losses; },
                          .keyboardRefused = [this] { ++refusals; },
                          .keyboardCame = [this] { ++arrivals; },
                          .moved = [this](Rectangle to) { moves.push_back(to); },
                          .painted = [this] { ++paints; },
                          .screensChanged = [this] { ++screenChanges; }});
        window.setFrame(place);
        moves.clear();
    }

    void SetUp() override {
        neighbour.movePointer(5, 700);
        client = neighbour.open(50, 50, 600, 500);
        ASSERT_TRUE(spinUntil([&] { return neighbour.active() == client; }));
        ASSERT_TRUE(spinUntil([&] { return neighbour.focus() == client; }));
    }

    void TearDown() override {
        window.hide();
        neighbour.close(client);
        ASSERT_TRUE(spinUntil([&] { return neighbour.managed().empty(); }));
    }

    void showAndWait() {
        const int before = paints;
        window.show();
        ASSERT_TRUE(spinUntil([&] { return paints > before; }));
        ASSERT_TRUE(window.hasKeyboard());
    }

    Window native() { return static_cast<Window>(widget.internalWinId()); }

    bool isOnTop() { return neighbour.topmostAt(350, 250) == native(); }

    std::string typed() { return field.text().toStdString(); }

    int losses = 0;
    int refusals = 0;
    int arrivals = 0;
    int paints = 0;
    int screenChanges = 0;
    std::vector<Rectangle> moves;
    X11Neighbour neighbour;
    Window client = 0;
    QWidget widget;
    QLineEdit field;
    QtPanelWindow window{widget, field, makePanelSurface()};
};

TEST_F(X11PanelWindowTest, takesTheKeysWhileTheWindowInFrontStaysActive) {
    neighbour.keysPressed();
    showAndWait();
    EXPECT_EQ(paints, 1);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(neighbour.active(), client);
    EXPECT_EQ(neighbour.focus(), client);
    neighbour.type("fire");
    EXPECT_TRUE(spinUntil([&] { return typed() == "fire"; }));
    EXPECT_EQ(neighbour.keysPressed(), 0);

    window.hide();
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(window.hasKeyboard());
    neighbour.type("fox");
    EXPECT_TRUE(spinUntil([&] { return neighbour.keysPressed() == 3; }));
    EXPECT_EQ(typed(), "fire");
    EXPECT_EQ(neighbour.active(), client);
    EXPECT_EQ(neighbour.focus(), client);
    EXPECT_EQ(losses, 0);
}

TEST_F(X11PanelWindowTest, catchesKeysThatComeBeforeItIsDrawn) {
    window.show();
    neighbour.type("abc"); // the event loop hasn't run yet
    EXPECT_TRUE(spinUntil([&] { return typed() == "abc"; }));
}

TEST_F(X11PanelWindowTest, hidesForWhatTheUserTurnsTo) {
    const auto other = neighbour.open(700, 450, 300, 200);
    ASSERT_TRUE(spinUntil([&] { return neighbour.active() == other; }));
    neighbour.activate(client);
    ASSERT_TRUE(spinUntil([&] { return neighbour.active() == client; }));
    Window lock = 0;

    const struct {
        const char* reason;
        std::function<void()> act;
    } cases[] = {
        {"a click on the desktop", [&] { neighbour.click(1200, 20); }},
        {"a click into the very window in front", [&] { neighbour.click(100, 500); }},
        {"a click into another window, which makes it the active one too",
         [&] { neighbour.click(900, 550); }},
        {"another window that is activated", [&] { neighbour.activate(other); }},
        {"the window taken off the screen by somebody else, and the keyboard with it",
         [&] {
             xcb_unmap_window(neighbour.xcb(), native());
             neighbour.finish();
         }},
        {"a screen lock, which needs the keyboard",
         [&] { lock = neighbour.open(0, 0, 1280, 800, X11Neighbour::Kind::unmanaged); }},
    };

    for (const auto& [reason, act] : cases) {
        SCOPED_TRACE(reason);
        losses = 0;
        showAndWait();
        act();
        EXPECT_TRUE(spinUntil([&] { return losses > 0; }));
        spinFor(50);
        EXPECT_EQ(losses, 1);
        window.hide();
        neighbour.activate(client);
        ASSERT_TRUE(spinUntil([&] { return neighbour.active() == client; }));
    }
    neighbour.close(lock);
    neighbour.close(other);
}

TEST_F(X11PanelWindowTest, staysForWhatTheUserDoesInIt) {
    showAndWait();
    neighbour.click(450, 250);
    neighbour.click(100, 500, 4); // the wheel, elsewhere
    neighbour.type("x");
    EXPECT_TRUE(spinUntil([&] { return typed() == "x"; }));
    // What lost clicks would have sent arrives after these events of the same display.
    spinFor(50);
    EXPECT_EQ(losses, 0);
    EXPECT_TRUE(window.hasKeyboard());
    EXPECT_EQ(neighbour.active(), client);
}

TEST_F(X11PanelWindowTest, waitsAMomentForAKeyboardThatAnotherHolds) {
    ASSERT_TRUE(neighbour.grabKeyboard(client));
    window.show();
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(window.hasKeyboard());
    neighbour.ungrabKeyboard();
    EXPECT_TRUE(spinUntil([&] { return window.hasKeyboard(); }));
    neighbour.type("late");
    EXPECT_TRUE(spinUntil([&] { return typed() == "late"; }));
    EXPECT_EQ(losses, 0);
    EXPECT_EQ(arrivals, 1);
    window.hide();

    ASSERT_TRUE(neighbour.grabKeyboard(client));
    window.show();
    EXPECT_TRUE(spinUntil([&] { return losses > 0; }));
    EXPECT_EQ(losses, 1);
    EXPECT_EQ(refusals, 1);
    EXPECT_EQ(arrivals, 1);
    window.hide();
    neighbour.ungrabKeyboard();
    // The tries ended with the window.
    spinFor(50);
    EXPECT_TRUE(neighbour.grabKeyboard(client));
    neighbour.ungrabKeyboard();
}

TEST_F(X11PanelWindowTest, standsAboveFullScreenWindowsAndThoseThatRise) {
    constexpr std::uint32_t add = 1;
    neighbour.ask(
        client, "_NET_WM_STATE", {add, neighbour.display.atom("_NET_WM_STATE_FULLSCREEN"), 0});
    ASSERT_TRUE(spinUntil([&] { return neighbour.topmostAt(1270, 790) != neighbour.root(); }));
    showAndWait();
    EXPECT_TRUE(isOnTop());
    const auto note = neighbour.open(340, 230, 100, 50, X11Neighbour::Kind::unmanaged);
    EXPECT_TRUE(spinUntil([&] { return isOnTop(); }));
    neighbour.raise(note);
    EXPECT_TRUE(spinUntil([&] { return isOnTop(); }));
    EXPECT_EQ(losses, 0);
    EXPECT_EQ(neighbour.active(), client);
    neighbour.close(note);
}

TEST_F(X11PanelWindowTest, isDraggedByItsBackgroundAndMovedByTheProgram) {
    showAndWait();
    const auto field1 = field.mapTo(&widget, QPoint(20, 5));
    neighbour.movePointer(330, 220);
    neighbour.press();
    neighbour.movePointer(331, 221); // a hand that trembles
    spinFor(20);
    neighbour.movePointer(380, 250);
    EXPECT_TRUE(spinUntil([&] { return window.frame().x == 350; }));
    neighbour.movePointer(430, 290);
    neighbour.release();
    EXPECT_TRUE(spinUntil([&] { return !moves.empty(); }));
    const Rectangle dragged{.x = 400, .y = 270, .width = 400, .height = 200};
    EXPECT_THAT(moves, testing::ElementsAre(dragged));
    EXPECT_EQ(window.frame(), dragged);
    EXPECT_TRUE(spinUntil([&] { return neighbour.topmostAt(795, 465) == native(); }));
    EXPECT_EQ(losses, 0);

    // Text is selected by the same movement, and the window stays.
    moves.clear();
    neighbour.movePointer(400 + field1.x(), 270 + field1.y());
    neighbour.press();
    neighbour.movePointer(500 + field1.x(), 270 + field1.y());
    neighbour.release();
    spinFor(20);
    EXPECT_THAT(moves, IsEmpty());

    // Told before setFrame returns, so that the program knows its own moves; a new height is none.
    window.setFrame(place);
    EXPECT_THAT(moves, testing::ElementsAre(place));
    window.setFrame({.x = place.x, .y = place.y, .width = 400, .height = 300});
    spinFor(50);
    EXPECT_EQ(moves.size(), 1U);
}

TEST_F(X11PanelWindowTest, drawsHiddenWithNothingToBeSeenAndNoKeyTaken) {
    showAndWait(); // once, so that only the second drawing is looked at
    window.hide();
    spinFor(50);
    const auto before = neighbour.pixels(0, 0, 1280, 800);
    neighbour.keysPressed();

    class PaintCount : public QObject {
    public:
        bool eventFilter(QObject*, QEvent* event) override {
            count += event->type() == QEvent::Paint;
            return false;
        }

        int count = 0;
    } drawn;

    field.installEventFilter(&drawn);
    window.drawHidden();
    EXPECT_EQ(drawn.count, 1);
    neighbour.type("k");
    spinFor(50);
    EXPECT_EQ(neighbour.keysPressed(), 1);
    EXPECT_EQ(typed(), "");
    EXPECT_EQ(neighbour.pixels(0, 0, 1280, 800), before);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(paints, 1);
    field.removeEventFilter(&drawn);
}

TEST_F(X11PanelWindowTest, knowsMonitorsTheirBarsAndThePointer) {
    const auto arrange = [](const QStringList& arguments) {
        return QProcess::execute(QStringLiteral("xrandr"), arguments) == 0;
    };
    const auto one = window.screens();
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(one.front().frame, (Rectangle{.x = 0, .y = 0, .width = 1280, .height = 800}));
    EXPECT_EQ(one.front().workArea, one.front().frame);
    EXPECT_TRUE(one.front().isMain);

    ASSERT_TRUE(arrange({QStringLiteral("--setmonitor"),
                         QStringLiteral("L"),
                         QStringLiteral("600/160x700/185+0+0"),
                         QStringLiteral("screen")}));
    ASSERT_TRUE(arrange({QStringLiteral("--setmonitor"),
                         QStringLiteral("R"),
                         QStringLiteral("680/180x800/211+600+0"),
                         QStringLiteral("none")}));
    ASSERT_TRUE(spinUntil([&] { return window.screens().size() == 2; }));
    EXPECT_TRUE(spinUntil([&] { return screenChanges > 0; }));
    // A bar of 30 pixels below the shorter left monitor, which ends 100 above the desktop.
    neighbour.set(client, "_NET_WM_STRUT_PARTIAL", {0, 0, 0, 130, 0, 0, 0, 0, 0, 0, 0, 599});
    const auto two = window.screens();
    EXPECT_EQ(two[0].frame, (Rectangle{.x = 0, .y = 0, .width = 600, .height = 700}));
    EXPECT_EQ(two[0].workArea, (Rectangle{.x = 0, .y = 0, .width = 600, .height = 670}));
    EXPECT_EQ(two[1].frame, (Rectangle{.x = 600, .y = 0, .width = 680, .height = 800}));
    EXPECT_EQ(two[1].workArea, two[1].frame);
    neighbour.movePointer(700, 300);
    EXPECT_EQ(window.pointer(), (Point{.x = 700, .y = 300}));

    // The monitor under the panel goes away while it is up.
    window.setFrame({.x = 800, .y = 200, .width = 400, .height = 200});
    showAndWait();
    screenChanges = 0;
    ASSERT_TRUE(arrange({QStringLiteral("--delmonitor"), QStringLiteral("R")}));
    EXPECT_TRUE(spinUntil([&] { return screenChanges > 0; }));
    window.setFrame({.x = 100, .y = 200, .width = 400, .height = 200});
    neighbour.type("on");
    EXPECT_TRUE(spinUntil([&] { return typed() == "on"; }));
    EXPECT_TRUE(spinUntil([&] { return neighbour.topmostAt(110, 210) == native(); }));
    ASSERT_TRUE(arrange({QStringLiteral("--delmonitor"), QStringLiteral("L")}));
    ASSERT_TRUE(spinUntil([&] { return window.screens().front().frame.width == 1280; }));
}

TEST_F(X11PanelWindowTest, tellsTheHeightThatTheDisplayHasItAt) {
    EXPECT_EQ(window.displayedHeight(), std::nullopt);
    showAndWait();
    EXPECT_EQ(window.displayedHeight(), 200);
    window.setFrame({.x = 300, .y = 200, .width = 400, .height = 250});
    EXPECT_EQ(window.displayedHeight(), 250);
    xcb_unmap_window(neighbour.xcb(), native()); // while the toolkit takes it to be up
    neighbour.finish();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.displayedHeight(), std::nullopt);
}

TEST_F(X11PanelWindowTest, aPressInTheShadowIsTheWindowsBelow) {
    widget.setContentsMargins(30, 30, 30, 30);
    window.setFrame({.x = 300, .y = 200, .width = 300, .height = 200});
    showAndWait();
    EXPECT_TRUE(isOnTop());
    EXPECT_NE(neighbour.topmostAt(285, 300), native());
    neighbour.click(285, 300);
    EXPECT_TRUE(spinUntil([&] { return losses > 0; }));
    widget.setContentsMargins({});
}

TEST_F(X11PanelWindowTest, tellsOfKeysThatTheToolkitKeeps) {
    std::vector<std::uint32_t> sent;
    window.keyArrives = [&](std::uint32_t scanCode) { sent.push_back(scanCode); };
    ASSERT_EQ(QProcess::execute(QStringLiteral("setxkbmap"),
                                {QStringLiteral("us"), QStringLiteral("intl")}),
              0);
    showAndWait();
    neighbour.type("'"); // a dead acute on this keyboard
    EXPECT_TRUE(spinUntil([&] { return sent.size() == 1; }));
    EXPECT_EQ(typed(), "");
    neighbour.type("e");
    EXPECT_TRUE(spinUntil([&] { return typed() == "é"; }));
    EXPECT_EQ(sent.size(), 2u);
    ASSERT_EQ(QProcess::execute(QStringLiteral("setxkbmap"), {QStringLiteral("us")}), 0);
}

TEST_F(X11PanelWindowTest, tellsWhetherTheDisplayMixesWindows) {
    int changes = 0;
    window.mixesChanged = [&] { ++changes; };
    EXPECT_FALSE(window.mixes());
    neighbour.mixWindows(client);
    EXPECT_TRUE(spinUntil([&] { return window.mixes(); }));
    EXPECT_EQ(changes, 1);
    neighbour.mixWindows(XCB_WINDOW_NONE);
    EXPECT_TRUE(spinUntil([&] { return !window.mixes(); }));
    EXPECT_EQ(changes, 2);
}

TEST_F(X11PanelWindowTest, tellsWhatItIs) {
    const auto& display = neighbour.display;
    EXPECT_EQ(display.numbers({{native(), display.atom("_NET_WM_WINDOW_TYPE")}}).front(),
              std::vector{display.atom("_NET_WM_WINDOW_TYPE_UTILITY")});
    const XcbOwned<xcb_get_property_reply_t> name(xcb_get_property_reply(
        neighbour.xcb(),
        xcb_get_property(neighbour.xcb(), 0, native(), XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 100),
        nullptr));
    EXPECT_EQ(std::string(static_cast<const char*>(xcb_get_property_value(name.get())),
                          static_cast<std::size_t>(xcb_get_property_value_length(name.get()))),
              std::string("tessarine\0Tessarine\0", 20));
}

TEST_F(X11PanelWindowTest, comesAndGoesSteadily) {
    neighbour.keysPressed();
    int keysOfClient = 0;
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        window.show();
        ASSERT_TRUE(window.hasKeyboard());
        // Now and then without a turn of the event loop between showing and hiding.
        if (i % 3 != 0) {
            field.clear();
            neighbour.type("a");
            ASSERT_TRUE(spinUntil([&] { return typed() == "a"; }));
        }
        window.hide();
        neighbour.type("b"); // at once, as a paste into the window in front does
        keysOfClient += neighbour.keysPressed();
    }
    spinFor(50);
    EXPECT_EQ(keysOfClient + neighbour.keysPressed(), 200);
    EXPECT_EQ(losses, 0);
    EXPECT_EQ(neighbour.active(), client);
}

} // namespace
} // namespace tessarine
