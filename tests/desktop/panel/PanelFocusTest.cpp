#include "tests/desktop/panel/PanelDesktop.h"

namespace tessarine {
namespace {

class PanelFocusTest : public PanelDesktop {
protected:
    bool comesToFront(X11Neighbour::Window window) const {
        return waitUntil(patience, [&] { return neighbour.active() == window; });
    }

    X11Neighbour::Window openInFront(int x, int y, int width, int height) {
        const auto window = neighbour.open(x, y, width, height);
        EXPECT_TRUE(comesToFront(window));
        return window;
    }
};

TEST_F(PanelFocusTest, whateverTheUserTurnsToTakesItAway) {
    const auto first = openInFront(40, 40, 300, 200);
    const auto second = openInFront(60, 500, 300, 200);
    start();

    const struct {
        std::function<void()> turn;
        std::optional<X11Neighbour::Window> front; ///< nothing where window managers differ
        const char* reason;
    } cases[] = {
        {[&] { neighbour.click(100, 780); }, {}, "a click on the bare desktop"},
        {[&] { neighbour.click(100, 600); }, second, "a click into the window in front"},
        {[&] { neighbour.click(100, 100); }, first, "a click into another window"},
        {[&] { neighbour.activate(second); }, second, "a taskbar or a switcher"},
    };

    int gone = 0;
    for (const auto& [turn, front, reason] : cases) {
        SCOPED_TRACE(reason);
        summon();
        turn();
        EXPECT_TRUE(becomes(++gone, hidden));
        EXPECT_TRUE(goesAway());
        EXPECT_TRUE(!front || comesToFront(*front));
    }

    summon();
    const auto third = neighbour.open(500, 500, 200, 200);
    EXPECT_TRUE(becomes(gone + 1, hidden)) << "a window that comes up and is brought to the front";
    EXPECT_TRUE(comesToFront(third));
    keysOfNeighbour();
    keys("type now");
    EXPECT_EQ(keysOfNeighbour(), "now");
}

TEST_F(PanelFocusTest, aClickInsideKeepsIt) {
    start();
    summon();
    const auto frame = panelFrame();
    ASSERT_TRUE(frame);
    neighbour.click(frame->x + frame->width / 2, frame->y + 30);
    keys("type zeal");
    EXPECT_EQ(fieldText(), "zeal");
    EXPECT_EQ(logged(hidden), 0);
}

TEST_F(PanelFocusTest, itStandsAboveAFullScreenWindow) {
    const auto movie = openInFront(0, 0, 400, 300);
    constexpr std::uint32_t add = 1;
    neighbour.ask(
        movie, "_NET_WM_STATE", {add, neighbour.display.atom("_NET_WM_STATE_FULLSCREEN"), 0, 1});
    ASSERT_TRUE(waitUntil(patience, [&] {
        const XcbOwned<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(
            neighbour.xcb(), xcb_get_geometry(neighbour.xcb(), movie), nullptr));
        return reply->width == 1280 && reply->height == 800;
    }));
    start();
    summon();
    const auto frame = panelFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(neighbour.topmostAt(frame->x + frame->width / 2, frame->y + 30), panelWindow());
    EXPECT_EQ(neighbour.active(), movie);
    keys("type zeal");
    keys("key Return");
    EXPECT_TRUE(started("zeal"));
    EXPECT_TRUE(goesAway());
    EXPECT_EQ(neighbour.active(), movie);
}

TEST_F(PanelFocusTest, aKeyboardThatAnotherHoldsForAMomentIsWaitedFor) {
    const auto window = openInFront(40, 40, 300, 200);
    start();
    ASSERT_TRUE(neighbour.grabKeyboard(window));
    run("gdbus call --session --dest com.corvane.tessarine --object-path /com/corvane/tessarine "
        "--method org.freedesktop.Application.Activate {} >/dev/null");
    EXPECT_TRUE(becomes(1, "panel show: visible=true key=false"));
    neighbour.ungrabKeyboard();
    EXPECT_TRUE(waitUntil(patience, [&] {
        const bool isFree = neighbour.grabKeyboard(window);
        if (isFree)
            neighbour.ungrabKeyboard();
        return !isFree;
    })) << "the panel has taken it";
    keys("type zeal");
    keys("key Return");
    EXPECT_TRUE(started("zeal"));
}

} // namespace
} // namespace tessarine
