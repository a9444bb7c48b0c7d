#include "tests/desktop/wayland/WaylandDesktop.h"

#include <csignal>
#include <thread>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr auto invitation = "exec gapplication action com.corvane.tessarine toggle";
constexpr std::initializer_list<std::uint32_t> clipboardChord = {
    KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_V};

class WaylandDesktopTest : public WaylandDesktop {
protected:
    /// "second " above "first ".
    void startWithTwoClippings() {
        start(invitation);
        EXPECT_TRUE(becomes(1, "recording is on"));
        copy("first ");
        EXPECT_TRUE(keeps({"first "}));
        copy("second ");
        EXPECT_TRUE(keeps({"second ", "first "}));
    }
};

TEST_F(WaylandDesktopTest, theWholePathRunsByKeys) {
    prefer(R"({"tookHotkeyDeliberately": true, "emptyMode": "mostUsed"})");
    openTerminal();
    start(invitation);

    summon();
    keyboard.type("ze");
    strike({KEY_DOWN, KEY_ENTER});
    EXPECT_TRUE(started("zebra")) << "the second row, which Down went to";
    EXPECT_TRUE(goesAway(1)) << "what was launched has the screen to itself";
    EXPECT_FALSE(hasStarted("zeal"));
    keyboard.type("abc\n");
    EXPECT_TRUE(terminalHas("abc\n")) << "the keys are back where they were, and none came before";

    hasStarted("zebra");
    summon();
    strike({KEY_ENTER});
    EXPECT_TRUE(started("zebra")) << "what was used stands first before anything is typed";
    EXPECT_TRUE(goesAway(2));
}

TEST_F(WaylandDesktopTest, itGoesAwayByTheKeysThatSaySo) {
    openTerminal();
    start(invitation);
    summon();
    keyboard.type("zeal");
    strike({KEY_ESC});
    EXPECT_TRUE(goesAway(1));
    summon();
    keyboard.press({KEY_LEFTMETA, KEY_SPACE});
    EXPECT_TRUE(goesAway(2)) << "the same key takes it away";
    EXPECT_FALSE(hasStarted("zeal"));
    keyboard.type("x\n");
    EXPECT_TRUE(terminalHas("x\n"));
}

TEST_F(WaylandDesktopTest, keysTypedAsSoonAsItIsUpAreAllThere) {
    std::string name;
    for (int i = 0; i < 60; ++i)
        name.push_back(static_cast<char>('a' + (i * 7) % 26));
    install("whole", name);
    install("shorter", name.substr(0, 59)); // first until the last letter has counted
    openTerminal();
    start(invitation);
    for (int round = 1; round <= 3; ++round) {
        summon();
        keyboard.type(name + "\n");
        ASSERT_TRUE(started("whole")) << "round " << round;
        ASSERT_TRUE(goesAway(round));
        hasStarted("whole");
    }
    EXPECT_FALSE(hasStarted("shorter"));
    EXPECT_TRUE(terminalHas("")) << "not one of them went to the window below";
}

TEST_F(WaylandDesktopTest, theHistoryHoldsWhatIsCopiedAndNoSecret) {
    start(invitation);
    ASSERT_TRUE(becomes(1, "recording is on"));
    copy("plain text");
    ASSERT_TRUE(keeps({"plain text"}));
    copy("file:///etc/hostname\r\nfile:///tmp/a%20b\r\n", "--type text/uri-list");
    ASSERT_TRUE(keeps({"/etc/hostname\n/tmp/a b", "plain text"}));
    copy("hunter2", "--type x-kde-passwordManagerHint");
    EXPECT_TRUE(becomes(1, "clipboard: skipped a concealed item without reading it"));
    copy("grüße 🦓 文字");
    EXPECT_TRUE(keeps({"grüße 🦓 文字", "/etc/hostname\n/tmp/a b", "plain text"}))
        << testing::PrintToString(keptTexts());
    EXPECT_THAT(textOf(support("clipboard.json")), Not(HasSubstr("hunter2")));
    copy(std::string(3'000'000, 'x'));
    EXPECT_TRUE(waitUntil(patience, [&] { return keptTexts().size() == 4; })) << "through a pipe";
}

TEST_F(WaylandDesktopTest, returnPastesIntoARealFieldTwiceInARow) {
    startWithTwoClippings();
    openField();
    for (const auto* expected : {"first x", "first xsecond x", "first xsecond xfirst x"}) {
        summon(clipboardChord);
        strike({KEY_DOWN, KEY_ENTER}); // the one below goes to the top by being used
        const std::string all = expected;
        ASSERT_TRUE(fieldHas(all.substr(0, all.size() - 1))) << textOf(folder.path("/written"));
        keyboard.type("x");
        ASSERT_TRUE(fieldHas(all)) << textOf(folder.path("/written"));
    }
}

TEST_F(WaylandDesktopTest, returnPastesIntoARealTerminalTwiceInARow) {
    folder.write("/data/applications/foot.desktop",
                 "[Desktop Entry]\nType=Application\nName=Foot\nExec=foot\n"
                 "Categories=System;TerminalEmulator;\n");
    startWithTwoClippings();
    openTerminal();
    std::string lines;
    for (const auto* text : {"first ", "second "}) {
        summon(clipboardChord);
        strike({KEY_DOWN, KEY_ENTER});
        ASSERT_TRUE(becomes(static_cast<int>(lines.empty() ? 1 : 2), "paste: posted ⌘V"));
        keyboard.type("x\n");
        lines += std::string(text) + "x\n";
        ASSERT_TRUE(terminalHas(lines)) << textOf(folder.path("/lines"));
    }
}

TEST_F(WaylandDesktopTest, aCopyOutlivesTheProgramThatMadeIt) {
    openField();
    start(invitation);
    ASSERT_TRUE(becomes(1, "recording is on"));
    keyboard.type("kept alive");
    keyboard.press({KEY_LEFTCTRL, KEY_A});
    keyboard.press({KEY_LEFTCTRL, KEY_C});
    ASSERT_TRUE(keeps({"kept alive"}));
    endOthers();
    EXPECT_TRUE(waitUntil(patience, [&] { return pasted() == "kept alive"; }));
    copy("newer");
    EXPECT_TRUE(keeps({"newer", "kept alive"})) << "putting it back hides no copy that follows";
}

TEST_F(WaylandDesktopTest, whatIsClearedOnPurposeStaysSo) {
    openTerminal();
    start(invitation);
    ASSERT_TRUE(becomes(1, "recording is on"));
    copy("hunter2");
    ASSERT_TRUE(keeps({"hunter2"}));
    run("wl-copy --clear");
    EXPECT_TRUE(becomes(1, "it stays empty"));
    EXPECT_EQ(pasted(), "");
}

TEST_F(WaylandDesktopTest, aCompositorThatStandsStillIsWaitedFor) {
    openTerminal();
    start(invitation);
    const auto compositor = std::stoi(variable("COMPOSITOR_PROCESS"));
    ASSERT_EQ(::kill(compositor, SIGSTOP), 0);
    const std::string toggle = "timeout 5 gapplication action com.corvane.tessarine toggle";
    run(toggle);
    std::this_thread::sleep_for(300ms);
    run(toggle);
    ::kill(compositor, SIGCONT);
    EXPECT_TRUE(becomes(1, shown)) << "as was asked";
    strike({KEY_ESC});
    EXPECT_TRUE(goesAway(1));
    summon();
    strike({KEY_ESC});
    EXPECT_TRUE(goesAway(2));
    keyboard.type("x\n");
    EXPECT_TRUE(terminalHas("x\n"));
}

} // namespace
} // namespace tessarine
