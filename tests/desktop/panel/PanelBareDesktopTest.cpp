#include "tests/desktop/panel/BareDisplay.h"
#include "tests/desktop/panel/PanelDesktop.h"

#include <filesystem>

namespace tessarine {
namespace {

namespace fs = std::filesystem;

/// What a desktop may lack. The display has no compositor in any of the desktop tests.
class PanelBareDesktopTest : public PanelDesktop {
protected:
    void launchByKeys() {
        summon();
        keys("type --delay 10 zeal");
        EXPECT_EQ(fieldText(), "zeal");
        keys("key Return");
        EXPECT_TRUE(started("zeal"));
        EXPECT_TRUE(goesAway());
        hasStarted("zeal");
    }
};

TEST_F(PanelBareDesktopTest, itWorksWithoutWhatADesktopMayLack) {
    // Of all fonts of the machine the first plain one.
    folder.write("/fonts.conf",
                 "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig>"
                 "<dir>" +
                     folder.path("/fonts") + "</dir><cachedir>" + folder.path("/font-cache") +
                     "</cachedir></fontconfig>");
    fs::create_directories(folder.path("/fonts"));
    fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                  folder.path("/fonts/only.ttf"));
    folder.write("/no-fonts.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>");
    install("signs", "文字 مرحبا 🦓");
    folder.write("/home/.local/share/applications/zeal.desktop",
                 "[Desktop Entry]\nType=Application\nIcon=zeal\nName=Zeal\nExec=/usr/bin/touch " +
                     folder.path("/started-zeal") + "\n");

    const struct {
        Program::Variables variables;
        const char* reason;
    } cases[] = {
        {{{"XDG_DATA_DIRS", folder.path("/nothing")}}, "no icon theme and no files of the system"},
        {{{"FONTCONFIG_FILE", folder.path("/fonts.conf")}}, "one font"},
        {{{"FONTCONFIG_FILE", folder.path("/no-fonts.conf")}}, "no font"},
        {{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"}}, "no session bus"},
        {{{"XDG_RUNTIME_DIR", ""}}, "no folder for the session"},
    };

    for (const auto& [variables, reason] : cases) {
        SCOPED_TRACE(reason);
        const auto before = environment;
        for (const auto& [name, value] : variables)
            environment[name] = value;
        start();
        launchByKeys();
        program.reset();
        environment = before;
    }
}

TEST_F(PanelBareDesktopTest, aLongTextIsPastedWholeAndTypedOnAfterIt) {
    start();
    summon();
    std::string text;
    while (text.size() < 5000)
        text += "five thousand letters ";
    text.resize(5000);
    // Looked for in the panel's own answer, so that nothing is asked before it is there.
    ASSERT_TRUE(paste(text + "\nz\x1b",
                      [&, asked = false]() mutable { return std::exchange(asked, true); }));
    EXPECT_EQ(fieldText(), text + " z ") << "as one line, without what can't be seen";
    keys("key BackSpace"); // all of it is selected
    keys("type --delay 10 zeal");
    keys("key Return");
    EXPECT_TRUE(started("zeal"));
}

TEST_F(PanelBareDesktopTest, namesThatWouldCommandATerminalOrTurnTheLineAreRowsLikeOthers) {
    install("odd", "Odd \u202egnp.exe\u2069\u200f \x1b[31m\x07" + std::string(3000, 'w'));
    start();
    summon();
    keys("type --delay 10 odd");
    EXPECT_EQ(fieldText(), "odd");
    const auto frame = panelFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->width, 720) << "however long the name";
    keys("key Return");
    EXPECT_TRUE(started("odd"));
    EXPECT_TRUE(goesAway());
}

/// Nothing but the X server.
class PanelWithoutWindowManagerTest : private BareDisplay, public PanelBareDesktopTest {};

TEST_F(PanelWithoutWindowManagerTest, itIsSummonedTypedIntoAndGone) {
    start();
    launchByKeys();
    summon();
    keys("key Escape");
    EXPECT_TRUE(goesAway());
    summon();
    neighbour.click(10, 740);
    EXPECT_TRUE(goesAway()) << "a click outside";
    // Nobody gives the keys to a window here: they go where the pointer is.
    neighbour.open(0, 0, 200, 200);
    neighbour.movePointer(100, 100);
    keys("type abc");
    EXPECT_EQ(keysOfNeighbour(), "abc");
}

} // namespace
} // namespace tessarine
