#include "tests/desktop/ProgramOnWayland.h"
#include "tests/desktop/kwin/KWinInput.h"

#include <chrono>
#include <stdexcept>

namespace tessarine {
namespace {

/// The real program under KWin, called over the session bus as a key of KDE's settings calls it.
class KWinDesktopTest : public ProgramOnWayland {
protected:
    KWinDesktopTest()
        : ProgramOnWayland({{"WAYLAND_DISPLAY", variable("WAYLAND_DISPLAY")},
                            {"XDG_SESSION_TYPE", "wayland"},
                            {"XDG_CURRENT_DESKTOP", "KDE"}}) {}

    void SetUp() override {
        openField();
        start("gapplication action com.corvane.tessarine toggle");
    }

    /// Returns when the field has the keyboard.
    void openField() {
        launchField();
        ASSERT_TRUE(waitUntil(patience, [&] {
            input.strike({KEY_Q});
            return written().ends_with("q");
        }));
    }

    bool fieldGets(std::uint32_t key, const std::string& letter) {
        const auto before = written();
        input.strike({key});
        return waitUntil(patience, [&] { return written() == before + letter; });
    }

    void summon(const std::string& action = "toggle") {
        const int before = logged(shown);
        run("gapplication action com.corvane.tessarine " + action);
        if (!becomes(before + 1, shown))
            throw std::runtime_error("the panel did not come up");
    }

    KWinInput input;
};

TEST_F(KWinDesktopTest, thePanelTakesTheKeysAndGivesThemBack) {
    summon();
    input.strike({KEY_Z, KEY_E, KEY_B, KEY_ENTER});
    EXPECT_TRUE(started("zebra"));
    EXPECT_TRUE(becomes(1, hidden));
    EXPECT_TRUE(fieldGets(KEY_X, "x")) << "not one of the others went there: " << written();
    summon();
    input.strike({KEY_Z, KEY_ESC, KEY_ESC});
    EXPECT_TRUE(becomes(2, hidden));
    EXPECT_TRUE(fieldGets(KEY_Y, "y"));
    summon();
    input.click(640, 200);
    input.strike({KEY_Z});
    EXPECT_EQ(logged(hidden), 2) << "a click on the panel";
    // What hears clicks there comes up after the panel, and no hand is as quick.
    EXPECT_TRUE(waitUntil(patience, [&] {
        input.click(10, 790);
        return waitUntil(std::chrono::milliseconds(500), [&] { return logged(hidden) == 3; });
    })) << "a click beside it";
    EXPECT_TRUE(fieldGets(KEY_Y, "y"));
    summon();
    input.tap(10, 790);
    EXPECT_TRUE(becomes(4, hidden)) << "a finger beside it";
}

TEST_F(KWinDesktopTest, aDragMovesThePanelAsFarAsThePointer) {
    summon();
    input.drag(290, 170, 6, 20, 10);
    run("gapplication action com.corvane.tessarine toggle");
    ASSERT_TRUE(becomes(1, hidden));
    summon();
    EXPECT_EQ(logged("frame=400,220 "), 1);
}

TEST_F(KWinDesktopTest, aVerbMovesTheWindowThatWasInFront) {
    summon();
    input.strike({KEY_L, KEY_E, KEY_F, KEY_T, KEY_ENTER});
    EXPECT_TRUE(becomes(1, "window: left -> ")) << "of the field's program";
    EXPECT_TRUE(becomes(1, "at 0,0 640x800 on "));
    EXPECT_TRUE(fieldGets(KEY_X, "x"));
}

TEST_F(KWinDesktopTest, theHistoryHoldsWhatIsCopiedAndGivesItBack) {
    ASSERT_TRUE(becomes(1, "recording is on"));
    copy("hunter2", "--type x-kde-passwordManagerHint");
    EXPECT_TRUE(becomes(1, "clipboard: skipped a concealed item without reading it"));
    copy("first");
    ASSERT_TRUE(keeps({"first"}));
    copy("second");
    ASSERT_TRUE(keeps({"second", "first"}));
    summon("clipboard");
    input.strike({KEY_DOWN, KEY_ENTER});
    EXPECT_TRUE(becomes(1, hidden));
    EXPECT_TRUE(waitUntil(patience, [] { return pasted() == "first"; }));
}

} // namespace
} // namespace tessarine
