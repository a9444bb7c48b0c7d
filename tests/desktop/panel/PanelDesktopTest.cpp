#include "tests/desktop/panel/PanelDesktop.h"

#include <cstdlib>

namespace tessarine {
namespace {

using namespace std::chrono_literals;

using PanelDesktopTest = PanelDesktop;

TEST_F(PanelDesktopTest, theWholePathRunsByKeys) {
    prefer(R"({"tookHotkeyDeliberately": true, "emptyMode": "mostUsed"})");
    const auto front = neighbour.open(40, 40, 300, 200);
    ASSERT_TRUE(waitUntil(patience, [&] { return neighbour.active() == front; }));
    start();

    summon();
    EXPECT_EQ(neighbour.active(), front) << "the window in front stays it";
    keys("type --delay 10 ze");
    keys("key Down");
    EXPECT_EQ(neighbour.active(), front);
    keys("key Return");
    EXPECT_TRUE(started("zebra")) << "the second row, which Down went to";
    EXPECT_TRUE(becomes(1, hidden)) << "what was launched has the screen to itself";
    EXPECT_TRUE(goesAway());
    EXPECT_FALSE(hasStarted("zeal"));
    EXPECT_EQ(keysOfNeighbour(), "") << "of what was typed into the panel";
    EXPECT_EQ(neighbour.active(), front);
    keys("type abc");
    EXPECT_EQ(keysOfNeighbour(), "abc") << "the keys are back where they were";

    hasStarted("zebra");
    summon();
    keys("key Return");
    EXPECT_TRUE(started("zebra")) << "what was used stands first before anything is typed";
    EXPECT_TRUE(becomes(2, hidden));

    hasStarted("zebra");
    summon();
    keys("type --delay 10 ze");
    keys("key Return");
    EXPECT_TRUE(started("zebra")) << "and now goes before the row it was second to";
    EXPECT_TRUE(becomes(3, hidden));
    EXPECT_FALSE(hasStarted("zeal"));
}

TEST_F(PanelDesktopTest, itGoesAwayByTheKeysThatSaySo) {
    start();
    summon();
    keys("type --delay 10 zeal");
    keys("key Escape"); // the text is gone with the panel and needs no press of its own
    EXPECT_TRUE(becomes(1, hidden));
    summon();
    keys("key super+space");
    EXPECT_TRUE(becomes(2, hidden)) << "the same key takes it away";
    EXPECT_FALSE(hasStarted("zeal"));
}

TEST_F(PanelDesktopTest, noKeyTypedBlindIsLost) {
    std::string name;
    std::string pressed;
    for (int i = 0; i < 100; ++i) {
        name.push_back(static_cast<char>('a' + (i * 7) % 26));
        pressed += std::string(" ") + name.back();
    }
    install("whole", name);
    install("shorter", name.substr(0, 99)); // first until the last letter has counted
    start();
    for (int round = 0; round < 3; ++round) {
        // Nothing waits for the panel between the hotkey and the Return.
        keys("key --delay 10 super+space" + pressed + " Return");
        ASSERT_TRUE(started("whole")) << "round " << round;
        ASSERT_TRUE(becomes(round + 1, hidden));
        hasStarted("whole");
    }
    EXPECT_FALSE(hasStarted("shorter"));
}

TEST_F(PanelDesktopTest, theDesktopsOwnKeyAndASecondLaunchReachIt) {
    start();
    const std::string toggle = "gdbus call --session --dest com.corvane.tessarine --object-path "
                               "/com/corvane/tessarine --method "
                               "org.freedesktop.Application.ActivateAction toggle [] {} >/dev/null";
    run(toggle);
    EXPECT_TRUE(becomes(1, shown));
    run(toggle);
    EXPECT_TRUE(becomes(1, hidden));

    const auto first = std::move(program);
    start(); // the first copy has given the chord up
    EXPECT_TRUE(first->finish(5s));
    keys("key super+space");
    EXPECT_TRUE(becomes(1, shown)) << "in the log that the second copy began";
}

TEST_F(PanelDesktopTest, itProvesItsShowOnThisDisplay) {
    const auto output = tessarine::run({"--selftest-show"}, environment);
    EXPECT_EQ(output.status, 0) << output.out;
    EXPECT_THAT(output.out, testing::HasSubstr("visible=true key=true"));
}

} // namespace
} // namespace tessarine
