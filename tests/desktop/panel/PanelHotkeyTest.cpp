#include "tests/desktop/panel/BareDisplay.h"
#include "tests/desktop/panel/PanelDesktop.h"

#include <csignal>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>

namespace tessarine {
namespace {

constexpr xcb_keycode_t spaceKey = 65; ///< on every PC keyboard under X11

/// Without a window manager, which has keys of its own: Alt+Space is mostly one of them.
class PanelHotkeyTest : private BareDisplay, public PanelDesktop {
protected:
    void hold(std::uint16_t modifiers) {
        xcb_grab_key(neighbour.xcb(),
                     0,
                     neighbour.root(),
                     modifiers,
                     spaceKey,
                     XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_ASYNC);
        neighbour.finish();
    }
};

TEST_F(PanelHotkeyTest, aChordThatAnotherHoldsGivesWayToTheOther) {
    hold(XCB_MOD_MASK_4);
    start("Alt+Space brings it up");
    EXPECT_TRUE(becomes(1, "⌘Space is held by another app ("));
    EXPECT_TRUE(becomes(1, "fell back to ⌥Space until ⌘Space is free"));
    EXPECT_TRUE(becomes(1, "hotkey: registered ⌥Space;"));
    summon("alt+space");
}

TEST_F(PanelHotkeyTest, withoutAnyChordItSaysHowElseItIsReached) {
    hold(XCB_MOD_MASK_4);
    hold(XCB_MOD_MASK_1); // and all that stands in for it
    hold(XCB_MOD_MASK_4 | XCB_MOD_MASK_CONTROL);
    hold(XCB_MOD_MASK_4 | XCB_MOD_MASK_1);
    start("no key brings it up");
    EXPECT_TRUE(program->waitForError("gapplication action com.corvane.tessarine toggle"));
    EXPECT_EQ(logged("fell back"), 0);
    run("gdbus call --session --dest com.corvane.tessarine --object-path /com/corvane/tessarine "
        "--method org.freedesktop.Application.ActivateAction toggle [] {} >/dev/null");
    EXPECT_TRUE(becomes(1, shown));
}

/// In a ctest of its own: every program of this user sees the impostor, other tests among them.
class PanelRivalTest : private BareDisplay, public PanelDesktop {
protected:
    /// A program under the name of another launcher, which only waits.
    void startImpostor() {
        const auto path = folder.path("/krunner");
        std::filesystem::copy_file("/bin/sleep", path);
        std::string name = path;
        std::string seconds = "120";
        char* arguments[] = {name.data(), seconds.data(), nullptr};
        ASSERT_EQ(::posix_spawn(&impostor, path.c_str(), nullptr, nullptr, arguments, nullptr), 0);
    }

    void endImpostor() {
        if (impostor <= 0)
            return;
        ::kill(impostor, SIGKILL);
        ::waitpid(impostor, nullptr, 0);
        impostor = 0;
    }

    ~PanelRivalTest() override { endImpostor(); }

    pid_t impostor = 0;
};

TEST_F(PanelRivalTest, anotherLaunchersChordIsLeftToItUntilItQuits) {
    prefer("{}");
    startImpostor();
    start("Alt+Space brings it up");
    EXPECT_TRUE(becomes(1,
                        "KRunner is running; leaving ⌘Space to it and using ⌥Space until you take "
                        "it over in Settings"));
    EXPECT_TRUE(becomes(1, "rival launchers; 1 running now)"));
    summon("alt+space");
    keys("key alt+space");
    EXPECT_TRUE(becomes(1, hidden));

    endImpostor();
    EXPECT_TRUE(becomes(1, "hotkey re-assert (KRunner quit): "));
    summon();
}

TEST_F(PanelRivalTest, aChordTakenOverOnPurposeIsAskedForBesideARival) {
    startImpostor();
    start();
    EXPECT_EQ(logged("leaving"), 0);
    summon();
}

} // namespace
} // namespace tessarine
