#include "launcherapp/platform/linux/desktop/LostDisplay.h"
#include "tests/desktop/ProgramOnDesktop.h"
#include "tests/wayland/CompositorOfItsOwn.h"
#include "tests/wayland/TestKeyboard.h"

#include <linux/input-event-codes.h>

#include <filesystem>
#include <optional>

namespace tessarine {
namespace {

/// The real program under compositors that die, each on the socket of the one before.
class LostCompositorTest : public ProgramOnDesktop {
protected:
    LostCompositorTest()
        : ProgramOnDesktop({{"XDG_SESSION_TYPE", "wayland"}, {"XDG_CURRENT_DESKTOP", "sway"}}) {
        environment["WAYLAND_DISPLAY"] = display;
    }

    void bringUp() {
        compositor.emplace();
        std::filesystem::remove(display);
        std::filesystem::create_symlink(variable("WAYLAND_DISPLAY"), display);
        keyboard.emplace();
    }

    void kill() {
        compositor->kill();
        keyboard.reset();
        compositor.reset();
    }

    void showAndLeave() {
        run("gapplication action com.corvane.tessarine toggle");
        ASSERT_TRUE(becomes(1, shown));
        keyboard->press({KEY_ESC});
        ASSERT_TRUE(becomes(1, hidden));
    }

    const std::string display = folder.path("/display");
    std::optional<CompositorOfItsOwn> compositor;
    std::optional<TestKeyboard> keyboard;
};

TEST_F(LostCompositorTest, theProgramComesBackWithItButNotForEver) {
    bringUp();
    start("exec gapplication action com.corvane.tessarine toggle");
    for (int deaths = 0; deaths < 3; ++deaths) {
        SCOPED_TRACE(deaths);
        ASSERT_NO_FATAL_FAILURE(showAndLeave());
        kill();
        ASSERT_TRUE(becomes(1, "starting anew, to wait for it"));
        bringUp();
        ASSERT_TRUE(becomes(0, "starting anew")) << "each start begins the log anew";
        ASSERT_TRUE(becomes(1, " launched "));
    }
    ASSERT_NO_FATAL_FAILURE(showAndLeave());
    kill();
    EXPECT_TRUE(becomes(1, "ending, as that happened too often within a minute"));
    const auto end = program->finish();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->status, 1);
}

TEST(LostDisplay, onlyDeathsOfTheLastMinuteCount) {
    using namespace std::chrono_literals;
    EXPECT_EQ(LostDisplay::deaths("", 100s), "100");
    EXPECT_EQ(LostDisplay::deaths("100 120", 159s), "100 120 159");
    EXPECT_EQ(LostDisplay::deaths("100 120 159", 159s), std::nullopt);
    EXPECT_EQ(LostDisplay::deaths("100 120 159", 160s), "120 159 160");
    EXPECT_EQ(LostDisplay::deaths("whatever", 5s), "5"); // somebody else's value
}

} // namespace
} // namespace tessarine
