#include "tests/desktop/mutter/MutterDesktop.h"

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr auto invitation = "gapplication action com.corvane.tessarine toggle";

using MutterDesktopTest = MutterDesktop;

TEST_F(MutterDesktopTest, thePanelTakesTheKeysAndGivesThemBack) {
    openTerminal();
    start(invitation);
    summon();
    keyboard.type("zeal");
    keyboard.press({KEY_ESC});
    ASSERT_TRUE(goesAway(1));
    EXPECT_TRUE(terminalGets("back")) << "and none of the panel's came before";
    summon();
    keyboard.type("zebra\n");
    EXPECT_TRUE(started("zebra"));
    EXPECT_TRUE(goesAway(2));
    EXPECT_FALSE(hasStarted("zeal"));
    EXPECT_TRUE(terminalGets("again"));
}

// The compositor shows the clipboard to programs without the focus on its display for X11 programs.
TEST_F(MutterDesktopTest, theHistorySeesTheCopiesOfWaylandProgramsAndCopiesBack) {
    openTerminal();
    start(invitation);
    ASSERT_TRUE(becomes(1, "recording is on"));
    copy("first");
    ASSERT_TRUE(keeps({"first"}));
    copy("hunter2", "--type x-kde-passwordManagerHint");
    EXPECT_TRUE(becomes(1, "clipboard: skipped a concealed item without reading it"));
    const std::string large(3'000'000, 'x');
    copy(large);
    ASSERT_TRUE(keeps({large, "first"})) << "piece by piece";
    EXPECT_THAT(textOf(support("clipboard.json")), Not(HasSubstr("hunter2")));

    summon("clipboard");
    keyboard.press({KEY_DOWN});
    keyboard.press({KEY_ENTER});
    ASSERT_TRUE(becomes(1, "paste: copied only"));
    EXPECT_EQ(pasted(), "first") << "for Wayland programs, by one that has no focus any more";
    program.reset();
    EXPECT_EQ(pasted(), "first") << "the compositor keeps it";
}

TEST_F(MutterDesktopTest, aCopyOutlivesTheProgramThatMadeIt) {
    start(invitation);
    ASSERT_TRUE(becomes(1, "recording is on"));
    copy("kept alive");
    ASSERT_TRUE(keeps({"kept alive"}));
    endOthers();
    EXPECT_TRUE(waitUntil(patience, [&] { return pasted() == "kept alive"; }));
    copy("newer");
    EXPECT_TRUE(keeps({"newer", "kept alive"}));
}

} // namespace
} // namespace tessarine
