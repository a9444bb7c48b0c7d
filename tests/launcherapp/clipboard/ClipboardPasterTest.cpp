#include "launcherapp/clipboard/ClipboardPaster.h"

#include "tests/fakes/FakeKeyInjector.h"
#include "tests/launcherapp/clipboard/ClipboardFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

/// A desktop with an editor, a terminal that is minimised, and the clipboard's services.
struct Desk : ClipboardFixture {
    FakeWindowList& windows = services.platform.windows;
    FakeKeyInjector keys{services.platform.queue};
    AppWindow editor{.id = 1};
    AppWindow terminal{.id = 2, .hidden = true};
    ClipboardPaster paster{{.queue = services.platform.queue,
                            .work = services.platform.work,
                            .prefs = services.prefs,
                            .diagnostics = services.diagnostics,
                            .windows = windows,
                            .keys = keys,
                            .store = store,
                            .watcher = watcher,
                            .pictures = pictures,
                            .target = [](const AppWindow& window) {
                                return window.id == 1 ? ClipboardPaster::Target{.name = "Editor"}
                                                      : ClipboardPaster::Target{.isTerminal = true};
                            }}};

    Desk() {
        windows.open = {editor, terminal};
        windows.activeID = editor.id;
        start();
    }

    ClipboardEntry recorded(const std::string& text) {
        store.record(textEntry(text, now()));
        return entries().front();
    }

    void wait() { time.advance(Seconds{1}); }
};

TEST(ClipboardPaster, aClippingIsPastedIntoTheWindowThatWasInFront) {
    Desk desk;
    const auto entry = desk.recorded("text");
    desk.time.advance(Seconds{5});
    EXPECT_TRUE(desk.paster.paste(entry, desk.editor));
    desk.time.settle();
    EXPECT_EQ(desk.board.content("UTF8_STRING"), "text");
    desk.time.advance(Seconds{0.029});
    EXPECT_THAT(desk.keys.pasted, IsEmpty());
    desk.time.advance(Seconds{0.001});
    EXPECT_THAT(desk.keys.pasted, ElementsAre(KeyInjector::PasteChord::ordinary));
    desk.wait();
    const auto& pasted = desk.entries().front();
    EXPECT_THAT(*pasted.pastedInto, ElementsAre("Editor"));
    EXPECT_EQ(pasted.count, 1);
    EXPECT_EQ(pasted.lastSeen, entry.lastSeen + 5); // a use moves it to the top
    EXPECT_THAT(desk.services.log(), HasSubstr("paste: Editor already frontmost"));
    EXPECT_THAT(desk.services.log(), HasSubstr("paste: posted ⌘V to Editor"));
}

TEST(ClipboardPaster, aWindowBehindIsBroughtForwardFirst) {
    Desk desk;
    desk.services.prefs.clipMoveToTopOnUse.set(false);
    const auto entry = desk.recorded("text");
    desk.time.advance(Seconds{5});
    EXPECT_TRUE(desk.paster.paste(entry, desk.terminal));
    desk.time.settle();
    EXPECT_THAT(desk.windows.calls, ElementsAre(Pair("unhide", 2), Pair("activate", 2)));
    desk.time.advance(Seconds{0.049});
    EXPECT_THAT(desk.keys.pasted, IsEmpty()); // its field isn't ready
    desk.wait();
    EXPECT_THAT(desk.keys.pasted, ElementsAre(KeyInjector::PasteChord::terminal));
    EXPECT_EQ(desk.entries().front().lastSeen, entry.lastSeen);
    EXPECT_THAT(desk.services.log(), HasSubstr("paste: fronting app via activate()"));
    EXPECT_THAT(desk.services.log(), HasSubstr("paste: posted ⌘V to another app"));
}

/// A window list whose desktop lets no window come forward.
struct Stubborn : FakeWindowList {
    void activate(std::uint64_t window) override { calls.emplace_back("activate", window); }
};

TEST(ClipboardPaster, aWindowThatStaysBehindGetsNoKeys) {
    Desk desk;
    Stubborn windows;
    windows.open = {desk.editor};
    ClipboardPaster paster(
        {.queue = desk.services.platform.queue,
         .work = desk.services.platform.work,
         .prefs = desk.services.prefs,
         .diagnostics = desk.services.diagnostics,
         .windows = windows,
         .keys = desk.keys,
         .store = desk.store,
         .watcher = desk.watcher,
         .pictures = desk.pictures,
         .target = [](const AppWindow&) { return ClipboardPaster::Target{.name = "Editor"}; }});
    paster.paste(desk.recorded("text"), desk.editor);
    desk.wait();
    paster.typeIntoPreviousApp("typed", desk.editor);
    desk.wait();
    EXPECT_THAT(desk.keys.pasted, IsEmpty());
    EXPECT_THAT(desk.keys.typed, IsEmpty());
    EXPECT_EQ(desk.entries().front().pasteCount(), 0U);
    const auto log = desk.services.log();
    EXPECT_THAT(log, HasSubstr("paste: Editor never came forward; the text is on the clipboard"));
    EXPECT_THAT(log, HasSubstr("type: Editor never came forward"));
    // At the last moment it may be in front without anybody having been told.
    paster.paste(desk.entries().front(), desk.editor);
    desk.time.settle();
    windows.activeID = desk.editor.id;
    desk.wait();
    EXPECT_THAT(desk.keys.pasted, testing::SizeIs(1));
}

TEST(ClipboardPaster, whatCannotBePastedIsCopiedAndSaidSo) {
    const struct {
        std::function<void(Desk&)> prepare;
        bool hasTarget;
        const char* line;
    } cases[] = {
        {[](Desk& desk) { desk.services.prefs.clipAutoPaste.set(false); },
         true,
         "paste: copied only, paste-on-Return is switched off\n"},
        {[](Desk& desk) { desk.keys.trusted = Ability::missing("no keys here"); },
         true,
         "paste: copied only, Accessibility not granted: no keys here\n"},
        {[](Desk&) {}, false, "paste: copied only, no previous app to paste into\n"},
        {[](Desk& desk) { desk.windows.open.erase(desk.windows.open.begin()); },
         true,
         "paste: copied only, no previous app to paste into\n"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.line);
        Desk desk;
        each.prepare(desk);
        EXPECT_FALSE(desk.paster.paste(desk.recorded("text"),
                                       each.hasTarget ? std::optional(desk.editor) : std::nullopt));
        desk.wait();
        EXPECT_EQ(desk.board.content("UTF8_STRING"), "text");
        EXPECT_THAT(desk.keys.pasted, IsEmpty());
        EXPECT_THAT(desk.services.log(), HasSubstr(each.line));
    }
}

TEST(ClipboardPaster, filesAndPicturesArePastedAsWhatTheyAre) {
    Desk desk;
    auto files = ClipboardFixture::textEntry("/a b\n\n/ü\n", 1);
    files.kind = ClipKind::file;
    desk.paster.copyToTop(files);
    desk.time.settle();
    EXPECT_EQ(desk.board.content("text/uri-list"), "file:///a%20b\r\nfile:///%C3%BC\r\n");
    desk.copyText("swallowed");
    desk.copyPicture(7, 600);
    auto picture = desk.entries().front();
    EXPECT_TRUE(desk.paster.paste(picture, desk.editor));
    desk.wait();
    EXPECT_EQ(desk.board.content("image/png"), ClipboardFixture::png(7, 600));
    EXPECT_EQ(desk.keys.pasted.size(), 1U);
    picture.fullFile.reset(); // it was too large to be kept whole
    desk.paster.copyToTop(picture);
    desk.wait();
    EXPECT_EQ(desk.board.content("image/png"), ClipboardFixture::png(7, 512));
    EXPECT_EQ(desk.entries().front().count, 2);
    EXPECT_THAT(desk.services.log(),
                HasSubstr("clipboard: copied an existing entry back to the top"));
}

TEST(ClipboardPaster, aPictureThatIsGoneIsSaidToBe) {
    ClipboardEntry gone = ClipboardFixture::textEntry("Image 1×1", 1);
    gone.kind = ClipKind::image;
    auto fetched = gone;
    fetched.syncBlob.emplace();
    auto large = fetched;
    large.blobTooLarge = true;

    const struct {
        ClipboardEntry entry;
        const char* line;
    } cases[] = {
        {gone, "clipboard: that picture's file is missing; nothing was pasted"},
        {fetched, "clipboard: that picture lies on another computer, and syncing is not built yet"},
        {large,
         "clipboard: that picture is larger than one object may be, so it stayed on the Mac it was "
         "copied on"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.line);
        Desk desk;
        EXPECT_FALSE(desk.paster.paste(each.entry, desk.editor));
        desk.wait();
        EXPECT_THAT(desk.board.written, IsEmpty());
        EXPECT_THAT(desk.keys.pasted, IsEmpty());
        EXPECT_THAT(desk.services.log(), HasSubstr(each.line));
    }
}

TEST(ClipboardPaster, noKeysAreSentBeforeTheClippingIsOffered) {
    const struct {
        const char* reason;
        Seconds heardAfter;
        std::function<void(Desk&)> meanwhile;
        std::size_t keys;
    } cases[] = {
        {"a pasteboard that is busy for a moment", Seconds{0.6}, [](Desk&) {}, 1},
        {"one that hangs", Seconds{1.5}, [](Desk&) {}, 0},
        {"somebody else copied before it was offered",
         Seconds{0.6},
         [](Desk& desk) { desk.board.copyText("hunter2"); },
         0},
        {"somebody else copied while the window came forward",
         Seconds{0.48},
         [](Desk& desk) { desk.board.copyText("hunter2"); },
         0},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Desk desk;
        desk.board.heardAfter = each.heardAfter;
        EXPECT_TRUE(desk.paster.paste(desk.recorded("text"), desk.editor));
        desk.time.advance(Seconds{0.5});
        EXPECT_THAT(desk.keys.pasted, IsEmpty());
        each.meanwhile(desk);
        desk.time.advance(Seconds{2});
        EXPECT_EQ(desk.keys.pasted.size(), each.keys);
        EXPECT_EQ(desk.entries().back().pasteCount(), each.keys);
        EXPECT_THAT(desk.services.log(),
                    HasSubstr(each.keys ? "paste: posted"
                                        : "paste: no keys sent, the clipping is not on the "
                                          "clipboard"));
    }
}

TEST(ClipboardPaster, withoutAPasteboardNothingIsSaidToBeCopied) {
    Desk desk;
    const auto entry = desk.recorded("text");
    desk.board.supported = Ability::missing("no clipboard here");
    EXPECT_FALSE(desk.paster.paste(entry, desk.editor));
    desk.paster.copyToTop(entry);
    desk.wait();
    EXPECT_THAT(desk.keys.pasted, IsEmpty());
    EXPECT_EQ(desk.entries().front().count, 1);
    EXPECT_THAT(desk.services.log(), HasSubstr("clipboard: nothing was copied, no clipboard here"));
}

TEST(ClipboardPaster, ofTwoPastesTheLaterIsPastedOnce) {
    Desk desk;
    desk.copyPicture(7);
    const auto picture = desk.entries().front();
    desk.paster.paste(picture, desk.editor); // still being read
    desk.paster.paste(desk.recorded("later"), desk.editor);
    desk.wait();
    EXPECT_EQ(desk.board.content("UTF8_STRING"), "later");
    EXPECT_EQ(desk.keys.pasted.size(), 1U);
}

TEST(ClipboardPaster, typingCountsCharactersAsPeopleDo) {
    Desk desk;
    EXPECT_FALSE(desk.paster.typeIntoPreviousApp("", desk.editor));
    EXPECT_FALSE(desk.paster.typeIntoPreviousApp("x", std::nullopt));
    EXPECT_FALSE(desk.paster.typeIntoPreviousApp(
        std::string(ClipboardPaster::longestTyped + 1, 'x'), desk.editor));
    EXPECT_TRUE(desk.paster.typeIntoPreviousApp("e\u0301🇩🇪", desk.editor));
    desk.wait();
    EXPECT_TRUE(desk.paster.typeIntoPreviousApp("x", desk.editor));
    desk.wait();
    EXPECT_THAT(desk.keys.typed, ElementsAre("e\u0301🇩🇪", "x"));
    const auto log = desk.services.log();
    EXPECT_THAT(log, HasSubstr("type: sent 2 characters to Editor"));
    EXPECT_THAT(log, HasSubstr("type: sent 1 character to Editor"));
    EXPECT_THAT(log, HasSubstr("type: no previous app to type into"));
    EXPECT_THAT(desk.board.written, IsEmpty());
}

} // namespace
} // namespace tessarine
