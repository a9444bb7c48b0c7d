#include "launcherapp/platform/linux/panel/wayland/WaylandActivationTokens.h"

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/TestKeyboard.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <csignal>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using testing::Optional;
using testing::SizeIs;

class WaylandActivationTokensTest : public testing::Test {
protected:
    WaylandActivationTokensTest() {
        window.setFrame({.x = 300, .y = 200, .width = 400, .height = 200});
        window.goesAway = [this] { tokens.prepare(); };
    }

    /// A show, a key that asks for something, and the hiding before it is done.
    void useThePanel() {
        window.show();
        keyboard.type("x");
        ASSERT_TRUE(spinUntil([&] { return !field.text().isEmpty(); }));
        window.hide();
        field.clear();
    }

    /// What a launch gets that the compositor has no time for: a token that was there before.
    static std::optional<std::string> takenFromStock(WaylandActivationTokens& from) {
        const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
        ::kill(process, SIGSTOP);
        auto token = from.take(Activation::foreground);
        ::kill(process, SIGCONT);
        return token;
    }

    TestKeyboard keyboard;
    QLineEdit field;
    WaylandActivationTokens tokens;
    QtPanelWindow window{field, field, makePanelSurface()};
};

TEST_F(WaylandActivationTokensTest, eachLaunchFromThePanelHasOneOfItsOwn) {
    useThePanel();
    const auto first = tokens.take(Activation::foreground);
    useThePanel();
    const auto second = tokens.take(Activation::foreground);
    EXPECT_THAT(first, Optional(SizeIs(testing::Gt(0U))));
    EXPECT_THAT(second, Optional(SizeIs(testing::Gt(0U))));
    EXPECT_NE(first, second);
    EXPECT_EQ(tokens.take(Activation::background), std::nullopt);
}

TEST_F(WaylandActivationTokensTest, aTokenThatNobodyTookInTimeIsNoLaterLaunchs) {
    WaylandActivationTokens brief(0ms);
    window.goesAway = [&] {
        tokens.prepare();
        brief.prepare();
    };
    useThePanel();
    spinFor(100); // the answers to both are here
    EXPECT_THAT(takenFromStock(tokens), Optional(SizeIs(testing::Gt(0U))));
    EXPECT_EQ(takenFromStock(brief), std::nullopt);
}

TEST_F(WaylandActivationTokensTest, aCompositorThatWasBusyAtTheStartGivesThemLater) {
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    WaylandActivationTokens early;
    ::kill(process, SIGCONT);
    window.goesAway = [&] { early.prepare(); };
    useThePanel();
    spinFor(100); // the answer is here
    EXPECT_THAT(takenFromStock(early), Optional(SizeIs(testing::Gt(0U))));
}

TEST_F(WaylandActivationTokensTest, aCompositorThatStandsStillCostsALaunchItsTokenAlone) {
    useThePanel();
    tokens.take(Activation::foreground);
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(tokens.take(Activation::foreground), std::nullopt);
    const auto took = std::chrono::steady_clock::now() - begun;
    ::kill(process, SIGCONT);
    EXPECT_GE(took, WaylandActivationTokens::patience);
    EXPECT_LT(took, 5 * WaylandActivationTokens::patience);
}

} // namespace
} // namespace tessarine
