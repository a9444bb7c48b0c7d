#include "tests/desktop/panel/PanelDesktop.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

/// A user's commands file, and what its commands leave behind.
class PanelCommandsTest : public PanelDesktop {
protected:
    void writeCommands(const nlohmann::json& commands) const {
        folder.write("/home/.local/share/tessarine/commands.json",
                     nlohmann::json{{"version", 1}, {"commands", commands}}.dump(2));
    }

    /// An application that opens what is of this type, and notes what it was given.
    void installOpener(const std::string& id, const std::string& type) const {
        folder.write("/bin/" + id, "#!/bin/sh\nprintf '%s\\n' \"$@\" >> " + trace(id) + "\n");
        run("chmod +x " + folder.path("/bin/" + id));
        folder.write("/data/applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nIcon=x\nName=" + id +
                         "\nExec=" + folder.path("/bin/" + id) + " %U\nMimeType=" + type + ";\n");
    }

    std::string trace(const std::string& name) const { return folder.path("/trace-" + name); }

    std::string traced(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(trace(name)).rdbuf();
        return text.str();
    }

    bool traces(const std::string& name, const std::string& text) const {
        return waitUntil(patience, [&] { return traced(name) == text; });
    }

    /// Types into the panel and presses Return, as one does.
    void enter(const std::string& text) {
        summon();
        keys("type --delay 8 '" + text + "'");
        keys("key Return");
        ASSERT_TRUE(goesAway());
    }
};

TEST_F(PanelCommandsTest, everyKindWorksByItsWord) {
    installOpener("notes", "x-scheme-handler/notes");
    folder.write("/home/Documents/minutes.pdf", "x");
    folder.write("/home/Documents/minutes.txt", "x");
    installOpener("reader", "application/pdf");
    run("ln -s /usr/share/mime " + folder.path("/data/mime")); // what is a PDF
    const auto keeping = [&](const char* name) { return " > " + trace(name); };
    writeCommands(
        {{{"id", "say"},
          {"name", "Say it"},
          {"keyword", "say"},
          {"kind", "script"},
          {"script", "printf '%s|%s|%s' \"$0\" \"$1\" \"$LAUNCHER_QUERY\"" + keeping("say")}},
         {{"id", "two"},
          {"name", "Both notes"},
          {"keyword", "both"},
          {"kind", "open"},
          {"urls", {"notes:one", "notes:two", "example.org"}}},
         {{"id", "find"},
          {"name", "Find a note"},
          {"keyword", "fn"},
          {"kind", "search"},
          {"url", "notes:find?q={query}"}},
         {{"id", "zebra"},
          {"name", "Striped"},
          {"keyword", "stripe"},
          {"kind", "app"},
          {"path", folder.path("/data/applications/zebra.desktop")}},
         {{"id", "home"},
          {"name", "Travelling"},
          {"keyword", "trav"},
          {"kind", "system"},
          {"action", "timeHomeHere"}},
         {{"id", "pdf"},
          {"name", "Find a PDF"},
          {"keyword", "p"},
          {"kind", "files"},
          {"extensions", {"pdf"}}},
         {{"id", "pick"},
          {"name", "Pick one"},
          {"keyword", "pick"},
          {"kind", "list"},
          {"script",
           "printf '[{\"title\":\"%s, first\",\"arg\":\"1\"},{\"title\":\"second\","
           "\"arg\":\"it is 2\"}]' \"$1\""},
          {"onSelect", "printf %s \"$1\"" + keeping("pick")}}});
    start();
    ASSERT_TRUE(becomes(1, "command hotkeys: 0 registered"));

    enter("say it is $(touch no) & more");
    EXPECT_TRUE(traces("say", "launcher|it is $(touch no) & more|it is $(touch no) & more"))
        << traced("say");
    enter("both");
    EXPECT_TRUE(traces("notes", "notes:one\nnotes:two\n")) << traced("notes");
    enter("fn a b&c=d/e");
    EXPECT_TRUE(traces("notes", "notes:one\nnotes:two\nnotes:find?q=a%20b%26c%3Dd%2Fe\n"))
        << traced("notes");
    enter("stripe");
    EXPECT_TRUE(started("zebra"));
    enter("trav");
    EXPECT_TRUE(becomes(1, "time zones: home follows this Mac"));

    summon();
    keys("type --delay 8 'pick '");
    ASSERT_TRUE(becomes(1, "list pick: cached 2 rows, calling back"));
    keys("type x");
    ASSERT_TRUE(becomes(2, "list pick: cached 2 rows, calling back"));
    keys("key Down Return");
    EXPECT_TRUE(traces("pick", "it is 2")) << traced("pick");

    ASSERT_TRUE(waitUntil(patience, [&] { return logged("file index: 2 items") > 0; }));
    enter("p min");
    EXPECT_TRUE(traces("reader", "file://" + folder.path("/home/Documents/minutes.pdf") + "\n"))
        << traced("reader");
}

TEST_F(PanelCommandsTest, aHotkeyRunsItsCommandOrAsksForTheArgument) {
    writeCommands({{{"id", "now"},
                    {"name", "Now"},
                    {"kind", "script"},
                    {"script", "echo x >> " + trace("now")},
                    {"hotkey", "ctrl+alt+k"}},
                   {{"id", "ask"},
                    {"name", "Ask"},
                    {"keyword", "ask"},
                    {"kind", "script"},
                    {"script", "printf %s \"$1\" > " + trace("ask")},
                    {"hotkey", "⌃⌥J"}}});
    const auto front = neighbour.open(40, 40, 300, 200);
    start();
    ASSERT_TRUE(becomes(1, "command hotkeys: 2 registered"));
    keys("key ctrl+alt+k");
    EXPECT_TRUE(traces("now", "x\n"));
    EXPECT_FALSE(panelWindow()) << "nothing comes up for it";

    keys("key ctrl+alt+j");
    ASSERT_TRUE(becomes(1, shown));
    keys("type --delay 8 'two words'");
    keys("key Return");
    EXPECT_TRUE(traces("ask", "two words")) << traced("ask");
    EXPECT_EQ(neighbour.active(), front);

    writeCommands({{{"id", "now"},
                    {"name", "Now"},
                    {"kind", "script"},
                    {"script", "echo y >> " + trace("now")},
                    {"hotkey", "ctrl+alt+l"}}});
    ASSERT_TRUE(waitUntil(1300ms, [&] { return logged("command hotkeys: 1 registered") == 1; }))
        << "a save is seen within a second, and what a busy machine adds";
    keys("key ctrl+alt+k");
    keys("key ctrl+alt+l");
    EXPECT_TRUE(traces("now", "x\ny\n")) << "the old chord is given back: " << traced("now");
}

TEST_F(PanelCommandsTest, aBrokenFileTakesNothingAwayAndSaysWhereItIsBroken) {
    writeCommands({{{"id", "now"},
                    {"name", "Now"},
                    {"keyword", "nnow"},
                    {"kind", "script"},
                    {"script", "echo x >> " + trace("now")}}});
    start();
    ASSERT_TRUE(becomes(1, "command hotkeys: 0 registered"));
    folder.write("/home/.local/share/tessarine/commands.json", "{\"commands\": [\n}");
    ASSERT_TRUE(becomes(1, "commands.json did not parse: "));
    summon();
    keys("type --delay 8 nnow");
    keys("key Down Return"); // the first row tells of the file
    EXPECT_TRUE(traces("now", "x\n"));
    const auto rows = tessarine::run({"--search", "nnow"}, environment).out;
    EXPECT_THAT(rows, HasSubstr("Your commands file could not be read"));
    EXPECT_THAT(rows, HasSubstr("commands.json parse error: "));
}

TEST_F(PanelCommandsTest, aScriptThatMisbehavesCostsOneLineOfTheLogAndNoMore) {
    const struct {
        const char* id;
        const char* script;
        const char* line;
    } cases[] = {
        {"flood", "yes abcdefghi | head -c 100000000", "script flood exit 0: abcdefghi"},
        {"binary", "head -c 100000 /dev/urandom; exit 3", "script binary exit 3: "},
        {"daemon", "sleep 300 & echo $! > DAEMON; echo left", "script daemon exit 0: left"},
        {"dead", "kill -SEGV $$", "script dead exit 139: "},
        {"none", "", ""},
    };

    auto commands = nlohmann::json::array();
    for (const auto& [id, script, line] : cases) {
        std::string text = script;
        if (const auto place = text.find("DAEMON"); place != std::string::npos)
            text.replace(place, 6, trace("daemon"));
        commands.push_back(
            {{"id", id}, {"name", id}, {"keyword", std::string("zz") + id}, {"kind", "script"}});
        if (!text.empty())
            commands.back()["script"] = text;
    }
    writeCommands(commands);
    start();
    ASSERT_TRUE(becomes(1, "command hotkeys: 0 registered"));
    for (const auto& [id, script, line] : cases) {
        SCOPED_TRACE(id);
        enter(std::string("zz") + id);
        if (*line) {
            EXPECT_TRUE(becomes(1, line));
        }
    }
    enter("zeal");
    EXPECT_TRUE(started("zeal"));
    const auto row = tessarine::run({"--search", "zznone"}, environment).out;
    EXPECT_THAT(row, HasSubstr("none: kind script needs a script")) << "the row says what it lacks";
    run("kill $(cat " + trace("daemon") + ")");
}

TEST_F(PanelCommandsTest, aWindowIsTiledByAWordAndKeepsTheKeyboard) {
    const auto front = neighbour.open(100, 120, 300, 200);
    ASSERT_TRUE(waitUntil(patience, [&] { return neighbour.active() == front; }));
    start();
    const auto stands = [&](const WindowFrame& wanted) {
        return waitUntil(patience, [&] { return frameOf(front) == wanted; });
    };
    enter("left");
    EXPECT_TRUE(stands({.x = 0, .y = 0, .width = 640, .height = 800}));
    enter("bottom");
    EXPECT_TRUE(stands({.x = 0, .y = 400, .width = 1280, .height = 400}));
    enter("max");
    EXPECT_TRUE(stands({.x = 0, .y = 0, .width = 1280, .height = 800}));
    EXPECT_EQ(logged("window: left -> "), 1);
    keys("type abc");
    EXPECT_EQ(keysOfNeighbour(), "abc");
}

/// With the accessibility bus up.
class PanelJumpTest : public PanelCommandsTest {
protected:
    /// A real program with a window of buttons, which notes what is pressed.
    void
    installButtons(const std::string& id, const std::string& name, const std::string& command) {
        folder.write("/bin/" + id, "#!/bin/sh\nexec " + command + " > " + trace(id) + "\n");
        run("chmod +x " + folder.path("/bin/" + id));
        folder.write("/data/applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nIcon=x\nName=" + name +
                         "\nExec=" + folder.path("/bin/" + id) + "\nStartupWMClass=" + id + "\n");
    }

    nlohmann::json jump(const std::string& id, const std::vector<std::string>& press) const {
        return {{"id", id},
                {"name", "Jump to " + id},
                {"keyword", "zj" + id},
                {"kind", "jump"},
                {"path", folder.path("/data/applications/" + id + ".desktop")},
                {"press", press}};
    }
};

constexpr auto gtkProgram = R"(
import gi
gi.require_version('Gtk', '3.0')
from gi.repository import Gtk, Gdk, GLib
GLib.set_prgname('gtkbuttons')
Gdk.set_program_class('gtkbuttons')
window, box = Gtk.Window(title='Buttons'), Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
window.add(box)
window.connect('destroy', lambda _: Gtk.main_quit())
later = Gtk.Button(label='Second step')
later.connect('clicked', lambda _: print('second', flush=True))
def pressed(_):
    print('first', flush=True)
    GLib.timeout_add(700, lambda: (box.add(later), later.show()) and False)
first = Gtk.Button(label='First step')
first.connect('clicked', pressed)
box.add(first)
window.show_all()
Gtk.main()
)";

TEST_F(PanelJumpTest, aJumpPressesItsWayThroughRealProgramsWhichQuitByName) {
    folder.write("/bin/gtk.py", gtkProgram);
    installButtons("gtkbuttons", "Knobs", "/usr/bin/python3 -u " + folder.path("/bin/gtk.py"));
    installButtons("ShownProgram", "Levers", std::string(TESSARINE_SHOWN_PROGRAM) + " buttons");
    writeCommands({jump("gtkbuttons", {"First step", "Second step"}),
                   jump("ShownProgram", {"Go", "Wrap lines", "Nowhere"})});
    start();
    ASSERT_TRUE(becomes(1, "command hotkeys: 0 registered"));

    enter("zjgtkbuttons");
    EXPECT_TRUE(traces("gtkbuttons", "first\nsecond\n")) << traced("gtkbuttons");
    EXPECT_TRUE(becomes(1, "jump gtkbuttons: pressed 2 in "));
    enter("zjShownProgram");
    EXPECT_TRUE(becomes(1, "jump ShownProgram: pressed 2 but could not find Nowhere"));
    EXPECT_EQ(traced("ShownProgram"), "ready\ngo\nwrap\n");

    const auto probe =
        tessarine::run({"--jump-press-probe", "gtkbuttons", "First step"}, environment);
    EXPECT_EQ(probe.out.substr(0, 9), "PRESSED: ") << probe.out;
    EXPECT_EQ(probe.status, 0);
    const auto missed = tessarine::run({"--jump-press-probe", "gtkbuttons", "Third"}, environment);
    EXPECT_THAT(missed.out, HasSubstr("NOT PRESSED: "));
    EXPECT_EQ(missed.status, 1);

    const auto windows = neighbour.managed().size();
    enter("quit knobs");
    EXPECT_TRUE(waitUntil(patience, [&] { return neighbour.managed().size() == windows - 1; }));
    enter("kill levers");
    EXPECT_TRUE(waitUntil(patience, [&] { return neighbour.managed().size() == windows - 2; }));
    EXPECT_EQ(logged("window: quit Knobs"), 1);
    EXPECT_EQ(logged("window: force-quit Levers"), 1);
}

TEST_F(PanelJumpTest, aJumpThatIsToStayBehindLeavesTheWindowInFront) {
    folder.write("/bin/gtk.py", gtkProgram);
    installButtons("gtkbuttons", "Knobs", "/usr/bin/python3 -u " + folder.path("/bin/gtk.py"));
    auto quiet = jump("gtkbuttons", {"First step"});
    quiet["activate"] = false;
    writeCommands(nlohmann::json::array({quiet}));
    // It runs: one that is started has the focus by its toolkit's and window manager's leave.
    run(folder.path("/bin/gtkbuttons") + " &");
    ASSERT_TRUE(waitUntil(patience, [&] { return neighbour.managed().size() == 1; }));
    const auto front = neighbour.open(40, 40, 300, 200);
    ASSERT_TRUE(waitUntil(patience, [&] { return neighbour.active() == front; }));
    start();
    ASSERT_TRUE(becomes(1, "command hotkeys: 0 registered"));
    enter("zjgtkbuttons");
    ASSERT_TRUE(becomes(1, "jump gtkbuttons: pressed 1 in "));
    EXPECT_TRUE(traces("gtkbuttons", "first\n"));
    EXPECT_EQ(neighbour.active(), front);
    EXPECT_EQ(neighbour.managed().size(), 2U) << "nor is it started again";
    enter("quit knobs");
    EXPECT_TRUE(waitUntil(patience, [&] { return neighbour.managed().size() == 1; }));
}

} // namespace
} // namespace tessarine
