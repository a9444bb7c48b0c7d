#include "launcherapp/platform/linux/panel/wayland/LayerPanelSurface.h"

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "tests/fakes/RectanglePrinting.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/TestKeyboard.h"
#include "tests/wayland/TestPointer.h"
#include "tests/wayland/panel/SwayDesktop.h"
#include "tests/wayland/panel/Terminal.h"

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

#include <QLineEdit>
#include <QVBoxLayout>
#include <csignal>

namespace tessarine {
namespace {

using namespace std::chrono_literals;

constexpr Rectangle place{.x = 300, .y = 200, .width = 400, .height = 200};

class LayerPanelSurfaceTest : public testing::Test {
protected:
    LayerPanelSurfaceTest() {
        auto* layout = new QVBoxLayout(&widget);
        layout->addWidget(&field);
        widget.setStyleSheet(QStringLiteral("background: #ffeecc"));
        window.setEvents({.lostKeyboard = [this] { ++losses; },
                          .moved = [this](Rectangle to) { moves.push_back(to); },
                          .painted = [this] { ++paints; },
                          .screensChanged = [this] { ++screenChanges; }});
        window.keyArrives = [this](std::uint32_t code) { arrived.push_back(code); };
        window.setFrame(place);
        moves.clear();
    }

    void TearDown() override { window.hide(); }

    void showAndWait() {
        const int before = paints;
        window.show();
        ASSERT_TRUE(spinUntil([&] { return paints > before; }));
        ASSERT_TRUE(window.hasKeyboard());
    }

    std::string typed() { return field.text().toStdString(); }

    /// Where the panel's background is to be seen.
    static std::optional<Rectangle> seen() {
        return extent(screenshot(), QColor(QStringLiteral("#ffeecc")));
    }

    TestKeyboard keyboard;
    TestPointer pointer;
    int losses = 0;
    int paints = 0;
    int screenChanges = 0;
    std::vector<Rectangle> moves;
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
        window.hide();
        EXPECT_FALSE(window.isVisible());
        EXPECT_FALSE(window.hasKeyboard());
        field.clear();
        arrived.clear();
    }
    EXPECT_EQ(losses, 0);
}

TEST_F(LayerPanelSurfaceTest, givesTheKeysBackToTheWindowThatHadThem) {
    const Terminal terminal;
    ASSERT_TRUE(terminal.waitUntilUp());
    ASSERT_TRUE(waitForFocus("foot"));
    std::string lines;
    for (const std::string text : {"one", "two"}) {
        SCOPED_TRACE(text);
        showAndWait();
        keyboard.type("panel");
        EXPECT_TRUE(spinUntil([&] { return typed() == "panel"; }));
        window.hide();
        keyboard.type(text + "\n"); // at once: who pastes does not wait either
        lines += text + "\n";
        EXPECT_TRUE(spinUntil([&] { return terminal.lines() == lines; })) << terminal.lines();
        field.clear();
    }
    EXPECT_EQ(losses, 0);
}

TEST_F(LayerPanelSurfaceTest, standsWhereItIsPutAndGrowsWithoutAJump) {
    widget.setContentsMargins(20, 20, 20, 20);
    window.setFrame(place);
    showAndWait();
    EXPECT_EQ(window.displayedHeight(), place.height);
    auto taller = place;
    taller.height = 350;
    window.setFrame(taller);
    const Rectangle withShadow{.x = 280, .y = 180, .width = 440, .height = 390};
    EXPECT_TRUE(spinUntil([&] { return seen() == withShadow; })) << testing::PrintToString(seen());
    taller.x = 100;
    window.setFrame(taller);
    EXPECT_TRUE(spinUntil([&] { return seen() && seen()->x == 80; }));
    EXPECT_TRUE(window.hasKeyboard());
    EXPECT_EQ(losses, 0);
}

TEST_F(LayerPanelSurfaceTest, isDraggedByItsBackground) {
    showAndWait();
    spinFor(100); // what catches the clicks outside has come up
    pointer.move(320, 220);
    pointer.press();
    for (const int step : {20, 40, 60, 80}) {
        pointer.move(320 + step, 220 + step / 2);
        spinFor(20);
    }
    pointer.release();
    ASSERT_TRUE(spinUntil([&] { return !moves.empty(); }));
    EXPECT_EQ(moves.back(), (Rectangle{.x = 380, .y = 240, .width = 400, .height = 200}));
    EXPECT_TRUE(spinUntil([&] { return seen() == moves.back(); }));
    EXPECT_EQ(losses, 0);
}

TEST_F(LayerPanelSurfaceTest, aClickOutsideTakesItAwayAndOneInsideDoesNot) {
    showAndWait();
    spinFor(100); // what catches the clicks outside has come up
    pointer.click(500, 250);
    spinFor(100);
    EXPECT_EQ(losses, 0);
    pointer.click(100, 700);
    EXPECT_TRUE(spinUntil([&] { return losses == 1; }));
}

TEST_F(LayerPanelSurfaceTest, aCompositorThatStandsStillCostsAMomentAndNoMore) {
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    const auto begun = std::chrono::steady_clock::now();
    window.show();
    window.hide();
    const auto took = std::chrono::steady_clock::now() - begun;
    ::kill(process, SIGCONT);
    EXPECT_LT(took, 1s);
    EXPECT_FALSE(window.isVisible());
    showAndWait();
}

TEST_F(LayerPanelSurfaceTest, aCompositorThatWasBusyAtTheStartIsAskedAgainAtTheShow) {
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    QLineEdit lateField;
    QtPanelWindow late(lateField, lateField, makePanelSurface());
    late.setFrame(place);
    lateField.setStyleSheet(QStringLiteral("background: #ffeecc; border: none"));
    ::kill(process, SIGCONT);
    late.show();
    EXPECT_TRUE(late.hasKeyboard());
    EXPECT_TRUE(spinUntil([&] { return seen() == place; })) << testing::PrintToString(seen());
    late.hide();
}

/// As with a seat of a pointer alone, until a keyboard is plugged in.
TEST(LayerPanelWithoutKeyboard, staysUpAndTellsOfTheOneThatComes) {
    QLineEdit field;
    QtPanelWindow window(field, field, makePanelSurface());
    int losses = 0;
    int comings = 0;
    window.setEvents({.lostKeyboard = [&] { ++losses; }, .keyboardCame = [&] { ++comings; }});
    window.setFrame(place);
    window.show();
    EXPECT_FALSE(window.hasKeyboard());
    TestKeyboard keyboard;
    EXPECT_TRUE(spinUntil([&] { return comings == 1; }));
    window.hide();
    EXPECT_EQ(losses, 0);
}

/// Sharpness is for the eye; this is the size.
TEST_F(LayerPanelSurfaceTest, hasItsSizeAtAFractionalScale) {
    ASSERT_TRUE(sway("output HEADLESS-1 scale 1.5"));
    ASSERT_TRUE(spinUntil([&] { return window.screens().front().frame.width < 1000; }));
    window.setFrame({.x = 100, .y = 100, .width = 400, .height = 200});
    showAndWait();
    EXPECT_EQ(window.displayedHeight(), 200);
    const auto pixels = seen();
    ASSERT_TRUE(pixels);
    // The picture of the screen is cut to whole logical pixels, and may lose a row by that.
    EXPECT_NEAR(pixels->x, 150, 1);
    EXPECT_NEAR(pixels->y, 150, 1);
    EXPECT_NEAR(pixels->width, 600, 1);
    EXPECT_NEAR(pixels->height, 300, 1);
    window.hide();
    sway("output HEADLESS-1 scale 1");
    EXPECT_TRUE(spinUntil([&] { return window.screens().front().frame.width == 1280; }));
}

/// On the two outputs of with-nested-sway.
class LayerPanelOutputsTest : public LayerPanelSurfaceTest {
protected:
    void SetUp() override {
        if (!qEnvironmentVariableIsSet("OUTER_SWAYSOCK"))
            GTEST_SKIP()
                << "NOT MEASURED: no output can leave; run by tests/desktop/with-nested-sway";
        ASSERT_EQ(window.screens().size(), 2U);
    }

    Screen named(const std::string& name) const {
        const auto screens = window.screens();
        const auto found = std::ranges::find(screens, name, &Screen::name);
        return found == screens.end() ? Screen{} : *found;
    }

    static bool unplug(const std::string& name) {
        const auto command = "[title=.*" + name + "] kill";
        return QProcess::execute(QStringLiteral("swaymsg"),
                                 {QStringLiteral("-s"),
                                  qEnvironmentVariable("OUTER_SWAYSOCK"),
                                  QString::fromStdString(command)}) == 0;
    }
};

TEST_F(LayerPanelOutputsTest, itChangesOutputsWhileItIsUpAndKeepsTheKeys) {
    showAndWait();
    keyboard.type("a");
    ASSERT_TRUE(spinUntil([&] { return typed() == "a"; }));
    for (const auto& [name, text] : {std::pair{"WL-2", "ab"}, std::pair{"WL-1", "abc"}}) {
        SCOPED_TRACE(name);
        const auto there = [&, output = name] {
            auto frame = place;
            frame.x = named(output).frame.x + 100; // all of it fits, and the output may move yet
            return frame;
        };
        window.setFrame(there());
        EXPECT_TRUE(window.hasKeyboard());
        keyboard.type({std::string(text).back()});
        EXPECT_TRUE(spinUntil([&] { return typed() == text; }));
        EXPECT_TRUE(spinUntil([&] { return seen() == there(); }))
            << testing::PrintToString(seen()) << testing::PrintToString(there());
    }
    EXPECT_EQ(losses, 0);
}

TEST_F(LayerPanelOutputsTest, theActiveOutputIsToldAndItsLeavingSurvived) {
    for (const std::string name : {"WL-1", "WL-2"}) {
        ASSERT_TRUE(sway("focus output " + name));
        const auto active = window.pointer();
        ASSERT_TRUE(active);
        EXPECT_TRUE(named(name).frame.contains(*active)) << name;
    }
    auto there = place;
    there.x += named("WL-2").frame.x;
    window.setFrame(there);
    showAndWait();
    const int before = screenChanges;
    ASSERT_TRUE(unplug("WL-2"));
    EXPECT_TRUE(spinUntil([&] { return losses == 1 && screenChanges > before; }));
    EXPECT_EQ(window.displayedHeight(), std::nullopt);
    window.hide();
    EXPECT_TRUE(spinUntil([&] { return window.screens().size() == 1; }));
    EXPECT_EQ(window.pointer(), std::nullopt);
    showAndWait(); // the frame is still that of the output that left
    keyboard.type("x");
    EXPECT_TRUE(spinUntil([&] { return typed() == "x"; }));
    window.setFrame(place);
    EXPECT_EQ(losses, 1);
}

} // namespace
} // namespace tessarine
