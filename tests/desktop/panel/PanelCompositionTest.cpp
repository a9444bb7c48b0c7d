#include "tests/desktop/panel/PanelDesktop.h"

namespace tessarine {
namespace {

// Keys by their place, as a layout changes what they mean (evdev's numbers and eight).
const std::string apostropheKey = "48"; ///< the dead acute of "us(intl)"
const std::string rightAlt = "108";     ///< Compose by "compose:ralt"

/// What keys compose, with a layout for it while the test lasts.
class PanelCompositionTest : public PanelDesktop {
protected:
    PanelCompositionTest() {
        // A grab of the hotkey is taken anew when the keyboard changes: the layout comes first.
        run("setxkbmap us -variant intl -option '' -option compose:ralt");
        start();
        summon();
    }

    ~PanelCompositionTest() override { run("setxkbmap us -option ''"); }
};

TEST_F(PanelCompositionTest, deadKeysAndComposeTypeWhatTheyTypeElsewhere) {
    const struct {
        std::string pressed;
        std::string text;
        const char* reason;
    } cases[] = {
        {"c a f " + apostropheKey + " e", "café", "a dead key and a letter"},
        {apostropheKey + " shift+e", "É", "with Shift between them"},
        {apostropheKey + " space", "'", "a dead key alone"},
        {apostropheKey + " " + apostropheKey, "´", "twice"},
        {rightAlt + " slash o", "ø", "Compose"},
        {"x " + rightAlt + " o o y", "x°y", "Compose amid other text"},
    };

    for (const auto& [pressed, text, reason] : cases) {
        SCOPED_TRACE(reason);
        keys("key " + pressed);
        EXPECT_EQ(fieldText(), text);
        keys("key BackSpace"); // all of it is selected
    }
    EXPECT_EQ(logged(hidden), 0);
}

TEST_F(PanelCompositionTest, returnInTheMiddleOfACompositionLaunchesNothing) {
    const struct {
        std::string pressed;
        const char* reason;
    } cases[] = {
        {"key " + apostropheKey + " Return", "after a dead key"},
        {"keydown " + apostropheKey + " key Return keyup " + apostropheKey, "while it is down"},
        {"key " + rightAlt + " Return", "after Compose"},
        {"key " + rightAlt + " o Return", "amid a sequence"},
    };

    for (const auto& [pressed, reason] : cases) {
        SCOPED_TRACE(reason);
        keys("type --delay 10 zea");
        keys(pressed);
        // The next key is handled after the Return.
        fieldText();
        EXPECT_EQ(logged(hidden), 0);
        EXPECT_FALSE(hasStarted("zeal"));
        if (logged(hidden) > 0)
            return;
        keys("key BackSpace");
    }

    keys("type --delay 10 zeal");
    keys("key Return");
    EXPECT_TRUE(started("zeal")) << "and the next one does";
}

} // namespace
} // namespace tessarine
