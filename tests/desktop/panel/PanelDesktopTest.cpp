#include "tests/desktop/Program.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace tessarine {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const std::string ready = "Super+Space brings it up";

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// The real program on a real display, driven by keys that come from outside of it.
class PanelDesktopTest : public testing::Test {
protected:
    PanelDesktopTest() {
        install("zebra", "Zebra Writer");
        install("zeal", "Zeal");
    }

    void install(const std::string& id, const std::string& name) {
        folder.write("/data/applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nIcon=x\nName=" + name +
                         "\nExec=/usr/bin/touch " + folder.path("/started-" + id) + "\n");
    }

    bool started(const std::string& id) {
        return waitUntil(15s, [&] { return fs::exists(folder.path("/started-" + id)); });
    }

    static void keys(const std::string& words) {
        ASSERT_EQ(std::system(("xdotool " + words).c_str()), 0) << words;
    }

    /// How often the log has a line with this text.
    int logged(const std::string& text) const {
        std::ifstream log(folder.path("/home/.local/share/tessarine/tessarine.log"));
        int count = 0;
        for (std::string line; std::getline(log, line);)
            count += line.find(text) != std::string::npos ? 1 : 0;
        return count;
    }

    bool becomes(int count, const std::string& text) {
        return waitUntil(15s, [&] { return logged(text) == count; });
    }

    const std::string shown = "panel show: visible=true key=true";
    const std::string hidden = "panel hide";
    TemporaryFolder folder;
    Program::Variables environment{
        {"HOME", folder.path("/home")},
        {"XDG_DATA_DIRS", folder.path("/data")},
        {"XDG_RUNTIME_DIR", folder.path("/runtime")},
        {"DISPLAY", variable("DISPLAY")},
        {"DBUS_SESSION_BUS_ADDRESS", variable("DBUS_SESSION_BUS_ADDRESS")}};
};

TEST_F(PanelDesktopTest, isSummonedTypedIntoAndGoneAgain) {
    Program program({}, environment);
    ASSERT_TRUE(program.waitForError(ready));
    keys("key super+space");
    ASSERT_TRUE(becomes(1, shown));
    keys("type --delay 10 zeb");
    keys("key Return");
    EXPECT_TRUE(started("zebra"));
    EXPECT_TRUE(becomes(1, hidden)) << "what was launched has the screen to itself";

    // Escape empties the field first, and only then takes the panel away.
    keys("key super+space");
    ASSERT_TRUE(becomes(2, shown));
    keys("type --delay 10 zeal");
    keys("key Escape");
    keys("key Escape");
    EXPECT_TRUE(becomes(2, hidden));
    keys("key super+space");
    EXPECT_TRUE(becomes(3, shown));
    keys("key super+space");
    EXPECT_TRUE(becomes(3, hidden)) << "the same key takes it away";
    EXPECT_FALSE(fs::exists(folder.path("/started-zeal")));
}

TEST_F(PanelDesktopTest, noKeyTypedBlindIsLost) {
    Program program({}, environment);
    ASSERT_TRUE(program.waitForError(ready));
    for (int round = 0; round < 5; ++round) {
        // Nothing waits for the panel between the hotkey and the Return.
        keys("key --delay 10 super+space z e a l Return");
        ASSERT_TRUE(started("zeal")) << "round " << round;
        ASSERT_TRUE(becomes(round + 1, hidden));
        fs::remove(folder.path("/started-zeal"));
    }
    EXPECT_FALSE(fs::exists(folder.path("/started-zebra")));
}

TEST_F(PanelDesktopTest, theDesktopsOwnKeyAndASecondLaunchReachIt) {
    Program first({}, environment);
    ASSERT_TRUE(first.waitForError(ready));
    const std::string toggle = "gdbus call --session --dest com.corvane.tessarine --object-path "
                               "/com/corvane/tessarine --method "
                               "org.freedesktop.Application.ActivateAction toggle [] {} >/dev/null";
    ASSERT_EQ(std::system(toggle.c_str()), 0);
    EXPECT_TRUE(becomes(1, shown));
    ASSERT_EQ(std::system(toggle.c_str()), 0);
    EXPECT_TRUE(becomes(1, hidden));

    Program second({}, environment);
    ASSERT_TRUE(second.waitForError(ready)) << "the first copy has given the chord up";
    EXPECT_TRUE(first.finish(5s));
    keys("key super+space");
    EXPECT_TRUE(becomes(1, shown)) << "in the log that the second copy began";
}

TEST_F(PanelDesktopTest, itProvesItsShowOnThisDisplay) {
    const auto output = run({"--selftest-show"}, environment);
    EXPECT_EQ(output.status, 0) << output.out;
    EXPECT_THAT(output.out, testing::HasSubstr("visible=true key=true"));
}

} // namespace
} // namespace tessarine
