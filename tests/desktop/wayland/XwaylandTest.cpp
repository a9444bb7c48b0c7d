#include "tests/desktop/wayland/WaylandDesktop.h"

namespace tessarine {
namespace {

/// A program of X11 under the compositor: a real terminal that pastes by the keys that terminals
/// do.
class XwaylandTest : public WaylandDesktop {
protected:
    XwaylandTest() {
        folder.write("/data/applications/debian-xterm.desktop",
                     "[Desktop Entry]\nType=Application\nName=XTerm\nExec=xterm\nIcon=x\n"
                     "Categories=System;TerminalEmulator;\nStartupWMClass=XTerm\n");
    }

    void openX11Terminal() {
        launch(
            "DISPLAY=" + variable("DISPLAY") +
            " xterm -T Xterm -xrm '*VT100.translations: #override "
            "Ctrl Shift <Key>V: insert-selection(CLIPBOARD)' -e sh -c 'stty -icanon; exec cat > " +
            folder.path("/lines") + "'");
        ASSERT_TRUE(waitUntil(patience, [&] { return focused() == "Xterm"; }));
        ASSERT_TRUE(terminalHas(""));
    }
};

TEST_F(XwaylandTest, whatItCopiesIsKeptAndReturnPastesIntoIt) {
    openX11Terminal();
    start("exec gapplication action com.corvane.tessarine toggle");
    ASSERT_TRUE(becomes(1, "recording is on"));
    folder.write("/copied", "copied there ");
    launch("DISPLAY=" + variable("DISPLAY") + " xclip -quiet -selection clipboard " +
           folder.path("/copied"));
    ASSERT_TRUE(keeps({"copied there "}));
    EXPECT_EQ(history().at("entries").at(0).value("sourceApp", ""), "XTerm");
    copy("copied here ");
    ASSERT_TRUE(keeps({"copied here ", "copied there "}));
    std::string typed;
    for (const std::string text : {"copied there ", "copied here "}) {
        summon({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_V});
        strike({KEY_DOWN, KEY_ENTER});
        typed += text;
        ASSERT_TRUE(terminalHas(typed)) << textOf(folder.path("/lines"));
    }
}

TEST_F(XwaylandTest, itsRowBringsItForwardAndItCanBeMovedAndQuit) {
    openX11Terminal();
    launch("foot --title=Front sh -c 'exec sleep 60'");
    ASSERT_TRUE(waitUntil(patience, [&] { return focused() == "Front"; }));
    start("exec gapplication action com.corvane.tessarine toggle");
    summon();
    keyboard.type("xterm\n");
    EXPECT_TRUE(waitUntil(patience, [&] { return focused() == "Xterm"; }));
    keyboard.type("x");
    EXPECT_TRUE(terminalHas("x")) << textOf(folder.path("/lines"));
    summon();
    keyboard.type("right\n");
    EXPECT_TRUE(becomes(1, "window: right -> XTerm at 640,0")) << "where it comes to stand";
    summon();
    keyboard.type("quit xterm\n");
    EXPECT_TRUE(waitUntil(patience, [&] { return focused() == "Front"; }));
}

} // namespace
} // namespace tessarine
