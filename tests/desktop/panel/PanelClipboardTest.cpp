#include "launcherapp/clipboard/ClipTakeOver.h"
#include "tests/desktop/panel/PanelDesktop.h"
#include "tests/linux/pasteboard/ForeignOwner.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <thread>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSubsetOf;
using testing::Not;

/// An editor of another toolkit that writes down, after each change, what stands in it.
constexpr auto editorScript = R"(
import gi, sys
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title="Editor")
view = Gtk.TextView()
window.add(view)
window.set_default_size(420, 260)
def changed(buffer):
    with open(sys.argv[1] + ".new", "w") as out:
        out.write(buffer.get_text(buffer.get_start_iter(), buffer.get_end_iter(), True))
    import os
    os.rename(sys.argv[1] + ".new", sys.argv[1])
view.get_buffer().connect("changed", changed)
window.connect("map-event", lambda *_: open(sys.argv[1], "w").close())
window.show_all()
Gtk.main()
)";

/// The program, beside an editor and whoever copies.
class PanelClipboardTest : public PanelDesktop {
protected:
    PanelClipboardTest() {
        folder.write("/data/applications/editor.desktop",
                     "[Desktop Entry]\nType=Application\nName=Field Notes\nExec=/usr/bin/touch x\n"
                     "StartupWMClass=Editor.py\n");
    }

    /// Copies in a program that goes on running until something else is copied.
    void copy(const std::string& bytes, const std::string& type = "UTF8_STRING") const {
        const auto name = "/copied-" + std::to_string(++copies_);
        folder.write(name, bytes);
        copyFile(folder.path(name), type);
    }

    void copyFile(const std::string& path, const std::string& type) const {
        launch("xclip -quiet -selection clipboard -t '" + type + "' -i '" + path + "'");
    }

    /// Pictures in the files of several formats, each number another one.
    void makePictures(int count) const {
        folder.write("/pictures.py", R"(
import gi, sys
gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf, GLib
for number in range(int(sys.argv[2])):
    pixels = bytes((x * 3 + y * 5 + c * 90 + number) % 256
                   for y in range(300) for x in range(400) for c in range(3))
    picture = GdkPixbuf.Pixbuf.new_from_bytes(GLib.Bytes.new(pixels), 0, False, 8, 400, 300, 1200)
    for kind in ("png", "jpeg", "bmp", "tiff"):
        picture.savev(sys.argv[1] + str(number) + "." + kind, kind, [], [])
)");
        run("/usr/bin/python3 " + folder.path("/pictures.py") + " " + folder.path("/picture") +
            " " + std::to_string(count));
    }

    /// Opens the editor and waits until it has the keyboard.
    void openEditor() {
        folder.write("/editor.py", editorScript);
        launch("/usr/bin/python3 " + folder.path("/editor.py") + " " + folder.path("/written"));
        ASSERT_TRUE(
            waitUntil(patience, [&] { return std::filesystem::exists(folder.path("/written")); }));
        keys("search --sync --class editor windowactivate --sync");
    }

    std::string written() const { return textOf(folder.path("/written")); }

    bool writes(const std::string& text) const {
        return waitUntil(patience, [&] { return written() == text; });
    }

    /// As another program gets it that pastes.
    std::string onTheClipboard(const std::string& type = "UTF8_STRING") const {
        run("DISPLAY=" + environment.at("DISPLAY") + " timeout 10 xclip -selection clipboard -t '" +
            type + "' -o > " + folder.path("/pasted") + " 2>/dev/null || true");
        return textOf(folder.path("/pasted"));
    }

    nlohmann::json clipGroups(const std::vector<std::string>& words) const {
        std::vector<std::string> all{"--clip-groups"};
        all.insert(all.end(), words.begin(), words.end());
        return nlohmann::json::parse(tessarine::run(all, environment).out, nullptr, false);
    }

    /// What comes sooner after a program's end may be what it had copied, put there again.
    static void letNobodyTakeOver() {
        std::this_thread::sleep_for(ClipTakeOver::longestPause + std::chrono::milliseconds(100));
    }

    static constexpr auto clipboardChord = "super+shift+v";

private:
    mutable int copies_ = 0;
};

TEST_F(PanelClipboardTest, holdsExactlyWhatItShould) {
    startWatching();
    copy("plain text");
    ASSERT_TRUE(keeps({"plain text"}));
    copy("file:///etc/hostname\r\nhttps://a.example\r\nfile:///tmp/a%20b\r\n", "text/uri-list");
    ASSERT_TRUE(keeps({"/etc/hostname\n/tmp/a b", "plain text"}));

    {
        std::atomic<int> contentsAsked = 0;
        ForeignOwner secret([&](ForeignOwner& owner, const ForeignOwner::Request& request) {
            if (owner.asks(request, "TARGETS"))
                return owner.putTargets(request,
                                        {owner.client.display.atom("TARGETS"),
                                         owner.client.display.atom("UTF8_STRING"),
                                         owner.client.display.atom("x-kde-passwordManagerHint")});
            ++contentsAsked;
            owner.put(request, "UTF8_STRING", 8, "hunter2");
            owner.tell(request);
        });
        EXPECT_TRUE(becomes(1, "clipboard: skipped a concealed item without reading it"));
        EXPECT_EQ(contentsAsked, 0);
    }
    {
        ForeignOwner garbage([](ForeignOwner& owner, const ForeignOwner::Request& request) {
            owner.put(request, "STRING", 8, "\xff\xfe\x01 no list of types");
            owner.tell(request);
        });
        EXPECT_TRUE(becomes(1, "clipboard: could not read a copy"));
    }
    letNobodyTakeOver();
    {
        std::atomic<int> contentsAsked = 0;
        ForeignOwner blank([&](ForeignOwner& owner, const ForeignOwner::Request& request) {
            if (owner.asks(request, "TARGETS"))
                return owner.putTargets(request, {owner.client.display.atom("UTF8_STRING")});
            owner.put(request, "UTF8_STRING", 8, " \n\t ");
            owner.tell(request);
            ++contentsAsked;
        });
        EXPECT_TRUE(waitUntil(patience, [&] { return contentsAsked > 0; }));
    }
    letNobodyTakeOver();
    copy("a \xff b");
    EXPECT_TRUE(keeps({"a \xef\xbf\xbd b", "/etc/hostname\n/tmp/a b", "plain text"}))
        << testing::PrintToString(keptTexts());
    EXPECT_THAT(textOf(support("clipboard.json")), Not(HasSubstr("hunter2")));

    program.reset();
    start();
    EXPECT_EQ(clipGroups({"list"}).at("history_size"), 3) << "after a restart too";
}

TEST_F(PanelClipboardTest, picturesOfRealProgramsAreKeptAndComeBackWhole) {
    makePictures(1);
    startWatching();
    const auto countOf = [&](std::size_t index) {
        const auto read = history();
        return read.is_object() && read.at("entries").size() > index
                   ? read.at("entries")[index].at("count").get<int>()
                   : 0;
    };
    int copies = 0;
    for (const auto* kind : {"png", "bmp", "tiff"}) {
        copyFile(folder.path(std::string("/picture0.") + kind), std::string("image/") + kind);
        ++copies;
        EXPECT_TRUE(waitUntil(patience, [&] { return countOf(0) == copies; }))
            << kind << " is the same picture";
    }
    EXPECT_THAT(keptTexts(), ElementsAre("Image 400×300"));
    copyFile(folder.path("/picture0.jpeg"), "image/jpeg");
    EXPECT_TRUE(keeps({"Image 400×300", "Image 400×300"})) << "another: it lost something";

    copy("something else");
    ASSERT_TRUE(waitUntil(patience, [&] { return keptTexts().size() == 3; }));
    summon(clipboardChord);
    keys("key Down Down Return");
    ASSERT_TRUE(goesAway());
    EXPECT_TRUE(waitUntil(patience, [&] {
        return onTheClipboard("image/png") == textOf(folder.path("/picture0.png"));
    }));
}

TEST_F(PanelClipboardTest, returnPastesIntoTheEditorWhichHasTheKeyboardAfter) {
    startWatching();
    copy("first ");
    ASSERT_TRUE(keeps({"first "}));
    copy("second ");
    ASSERT_TRUE(keeps({"second ", "first "}));
    openEditor();
    for (const auto* expected : {"first x", "first xsecond x", "first xsecond xfirst x"}) {
        summon(clipboardChord);
        keys("key Down Return"); // the one below goes to the top by being used
        ASSERT_TRUE(goesAway());
        const std::string all = expected;
        ASSERT_TRUE(writes(all.substr(0, all.size() - 1))) << written();
        keys("type x");
        ASSERT_TRUE(writes(all)) << written();
    }
    EXPECT_EQ(logged("paste: posted ⌘V to Field Notes"), 3);
}

TEST_F(PanelClipboardTest, aGroupTaughtFromTheCommandLineIsAFilterOfTheRunningPanel) {
    startWatching();
    copy("order no. 12");
    ASSERT_TRUE(keeps({"order no. 12"}));
    copy("newer");
    ASSERT_TRUE(keeps({"newer", "order no. 12"}));
    const auto added =
        clipGroups({"add", "--json", R"({"name": "Receipts", "match": {"contains": "ORDER"}})"});
    ASSERT_EQ(added.at("ok"), true) << added;
    EXPECT_EQ(added.at("matches"), 1);
    openEditor();
    summon(clipboardChord);
    keys("key Tab Tab Tab Return"); // everything, text, receipts
    keys("key Return");
    EXPECT_TRUE(writes("order no. 12")) << written();
    EXPECT_EQ(clipGroups({"remove", "--name", "RECEIPTS"}).at("ok"), true);
}

TEST_F(PanelClipboardTest, aCopyOutlivesTheProgramThatMadeIt) {
    startWatching();
    copy("kept alive");
    ASSERT_TRUE(keeps({"kept alive"}));
    endOthers();
    EXPECT_TRUE(waitUntil(patience, [&] { return onTheClipboard() == "kept alive"; }));
    copy("newer");
    EXPECT_TRUE(keeps({"newer", "kept alive"})) << "putting it back hides no copy that follows";
}

TEST_F(PanelClipboardTest, killedInTheMiddleOfAStormItLosesNothingThatWasSaved) {
    constexpr int pictures = 12;
    makePictures(pictures);
    std::mt19937 random(20261121);
    const auto upTo = [&](int most) {
        return std::chrono::milliseconds(std::uniform_int_distribution<int>(0, most)(random));
    };
    const auto ids = [&] {
        std::set<std::string> found;
        if (const auto read = history(); read.is_object())
            for (const auto& entry : read.at("entries"))
                found.insert(entry.at("id"));
        return found;
    };
    std::set<std::string> saved;
    int copied = 0;
    for (int round = 0; round < 8; ++round) {
        startWatching();
        const auto end = std::chrono::steady_clock::now() + 1s + upTo(2000);
        do {
            if (++copied % 3 == 0)
                copyFile(folder.path("/picture" + std::to_string(copied / 3 % pictures) + ".bmp"),
                         "image/bmp");
            else
                copy("copy " + std::to_string(copied) + std::string(20000, 'x'));
            saved.merge(ids());
            std::this_thread::sleep_for(upTo(400)); // people are no faster
        } while (std::chrono::steady_clock::now() < end);
        ::kill(program->pid(), SIGKILL);
        program.reset();
        ASSERT_TRUE(history().is_object() || saved.empty()) << "round " << round;
        EXPECT_THAT(saved, IsSubsetOf(ids())) << "round " << round;
        saved.merge(ids());
    }
    EXPECT_GT(saved.size(), 5u) << "there was a storm";

    startWatching();
    EXPECT_EQ(clipGroups({"list"}).at("history_size"), saved.size());
    std::set<std::string> named;
    const auto kept = history();
    for (const auto& entry : kept.at("entries"))
        for (const auto* key : {"imageFile", "fullFile"})
            if (entry.contains(key))
                named.insert(entry.at(key));
    EXPECT_FALSE(named.empty()) << "there were pictures";
    const auto files = [](const std::string& directory) {
        std::set<std::string> names;
        for (const auto& file : std::filesystem::directory_iterator(directory))
            names.insert(file.path().filename());
        return names;
    };
    EXPECT_TRUE(waitUntil(patience, [&] { return files(support("clips")) == named; }))
        << "each file is of a clipping, and each clipping's is there";
    for (const auto& name : files(support("")))
        EXPECT_TRUE(!name.starts_with("clipboard.json") || name == "clipboard.json") << name;
}

} // namespace
} // namespace tessarine
