#include "launcherapp/clipboard/ClipboardWatcher.h"

#include "LauncherCore/clipboard/ClipIdentity.h"
#include "tests/launcherapp/clipboard/ClipboardFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using Reason = ClipSkip::Reason;
using Skipped = ClipboardWatcher::Skipped;
using Manner = FakePasteboard::Owner::Manner;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto secretType = "x-kde-passwordManagerHint";

/// Its services over a pasteboard that is watched already.
struct Watched : ClipboardFixture {
    Watched() { start(); }
};

TEST(ClipboardWatcher, whatIsCopiedIsThereToFind) {
    Watched fixture;
    fixture.board.copy({{"text/plain", " hello\n"}, {"text/html", "<b>hello</b>"}});
    fixture.poll();
    fixture.board.copy(
        {{"UTF8_STRING", "/a b\n/ü"}, {"text/uri-list", "file:///a%20b\r\nfile:///%C3%BC\r\n"}});
    fixture.poll();
    fixture.copyPicture(7, 700);
    ASSERT_THAT(fixture.texts(), ElementsAre("Image 700×700", "/a b\n/ü", " hello\n"));
    EXPECT_EQ(fixture.entries()[1].kind, ClipKind::file);
    EXPECT_EQ(fixture.entries()[1].id, ClipIdentity::ofFiles("/a b\n/ü"));
    EXPECT_EQ(fixture.entries()[2].id, ClipIdentity::ofText(" hello\n"));
    EXPECT_EQ(fixture.entries()[2].sourceApp, "Editor");
    EXPECT_EQ(fixture.entries()[2].fromOtherDevice, std::nullopt);
    const auto& picture = fixture.entries()[0];
    EXPECT_THAT(fixture.pictureFiles(), ElementsAre(*picture.fullFile, *picture.imageFile));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("clipboard: watching the pasteboard every 0.5s; recording is on"));
}

TEST(ClipboardWatcher, nothingOfASecretIsEverRead) {
    Watched fixture;
    fixture.board.copy({{"UTF8_STRING", "hunter2"},
                        {"text/uri-list", "file:///secret"},
                        {"image/png", ClipboardFixture::png(1)},
                        {secretType, "secret"}});
    fixture.poll();
    EXPECT_EQ(fixture.board.totalReads(), 0);
    EXPECT_THAT(fixture.entries(), IsEmpty());
    EXPECT_EQ(fixture.watcher.skipped(), (Skipped{{Reason::concealed, 1}}));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("clipboard: skipped a concealed item without reading it"));
}

TEST(ClipboardWatcher, aSecretThatIsReadInAnothersNameIsNotKept) {
    Watched fixture;
    fixture.board.copy(
        {{"UTF8_STRING", "plain"}},
        {.manner = Manner::replaced, .next = {{"UTF8_STRING", "hunter2"}, {secretType, "secret"}}});
    fixture.poll();
    fixture.poll();
    EXPECT_EQ(fixture.board.reads["UTF8_STRING"], 1);
    EXPECT_THAT(fixture.entries(), IsEmpty());
    EXPECT_EQ(fixture.watcher.skipped(), (Skipped{{Reason::concealed, 1}}));
}

TEST(ClipboardWatcher, aFileListThatCannotBeReadIsNotKeptAsItsText) {
    const struct {
        const char* reason;
        std::string list;
        std::string refusedType;
        Skipped skipped;
        const char* line;
    } cases[] = {
        {"longer than any list",
         std::string(ClipSkips::fileListLimitBytes + 1, 'x'),
         "",
         {{Reason::tooLarge, 1}},
         "clipboard: skipped a file list, over the 16777216 byte limit"},
        {"refused", "file:///a", "text/uri-list", {}, "clipboard: could not read a copy: refused"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Watched fixture;
        fixture.board.copy({{"UTF8_STRING", "/a"}, {"text/uri-list", each.list}},
                           {.refusedType = each.refusedType});
        fixture.poll();
        EXPECT_THAT(fixture.entries(), IsEmpty());
        EXPECT_EQ(fixture.watcher.skipped(), each.skipped);
        EXPECT_THAT(fixture.services.log(), HasSubstr(each.line));
    }
}

TEST(ClipboardWatcher, copiesThatTheUserExcludedAreCountedAndNotRead) {
    Watched fixture;
    fixture.services.prefs.clipIgnoredApps.set({"org.example.Editor"});
    fixture.copyText("excluded");
    fixture.board.copy(
        {{"image/png", ClipboardFixture::png(1)}, {"com.apple.is-remote-clipboard", ""}});
    fixture.poll();
    fixture.front.bundleID = "quillet";
    fixture.copyText("companion");
    EXPECT_EQ(fixture.board.totalReads(), 0);
    EXPECT_EQ(fixture.watcher.skipped(),
              (Skipped{{Reason::remote, 1}, {Reason::ignoredApp, 1}, {Reason::quillet, 1}}));
    // A copy from elsewhere was not made in the application in front.
    fixture.front = {.bundleID = "org.example.Editor", .name = "Editor"};
    fixture.board.copy({{"UTF8_STRING", "from afar"}, {"com.apple.is-remote-clipboard", ""}});
    fixture.poll();
    ASSERT_THAT(fixture.texts(), ElementsAre("from afar"));
    EXPECT_EQ(fixture.entries()[0].sourceApp, std::nullopt);
    EXPECT_EQ(fixture.entries()[0].fromOtherDevice, true);
}

TEST(ClipboardWatcher, aTextOverTheLimitIsCountedAndNotKept) {
    Watched fixture;
    fixture.services.prefs.clipMaxCharacters.set(5);
    fixture.copyText("grüße");
    fixture.copyText("grüßen");
    fixture.copyText(std::string(81, 'x')); // more bytes than are asked for
    EXPECT_THAT(fixture.texts(), ElementsAre("grüße"));
    EXPECT_EQ(fixture.watcher.skipped(), (Skipped{{Reason::tooLarge, 2}}));
    const auto log = fixture.services.log();
    EXPECT_THAT(log, HasSubstr("clipboard: skipped a 6-character copy, over the 5 limit"));
    EXPECT_THAT(log,
                HasSubstr("clipboard: skipped a copy of more than 80 bytes, over the 5 limit"));
}

TEST(ClipboardWatcher, whatIsOfferedFirstIsNotAlwaysWhatWasCopied) {
    const struct {
        const char* reason;
        FakePasteboard::Items items;
        std::vector<std::string> texts;
    } cases[] = {
        {"only blanks: the picture is meant",
         {{"UTF8_STRING", " \t\r\n "}, {"image/png", ClipboardFixture::png(3)}},
         {"Image 8×8"}},
        {"a list of addresses is no file list",
         {{"text/uri-list", "https://example.com/"}, {"UTF8_STRING", "https://example.com/"}},
         {"https://example.com/"}},
        {"a lie about files is no reason to lose the text",
         {{"UTF8_STRING", "text"}, {"text/uri-list", ""}},
         {"text"}},
        {"no picture though it says so", {{"image/png", "garbage"}}, {}},
        {"the picture in a worse type that it can be read in",
         {{"image/png", "garbage"},
          {"image/x-bmp", "garbage"},
          {"image/jpeg", ClipboardFixture::png(3)}},
         {"Image 8×8"}},
        {"addresses of the web alone are their text",
         {{"text/uri-list", "# two\r\nhttps://a.example/\r\nhttps://b.example/\r\n"}},
         {"https://a.example/\nhttps://b.example/"}},
        {"nothing that is kept", {{"application/x-thing", "thing"}}, {}},
        {"nothing at all", {}, {}},
        {"bad bytes are replaced", {{"UTF8_STRING", "a\xff"}}, {"a\xEF\xBF\xBD"}},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Watched fixture;
        fixture.board.copy(each.items);
        fixture.poll();
        EXPECT_EQ(fixture.texts(), each.texts);
        EXPECT_EQ(fixture.services.log().find(
                      "could not read a copy: its image/png is no picture") != std::string::npos,
                  fixture.board.content("image/png") == "garbage");
    }
}

TEST(ClipboardWatcher, anOwnerThatMisbehavesCostsItsOwnCopyAlone) {
    for (const auto manner : {Manner::silent, Manner::refusing, Manner::vanishing}) {
        SCOPED_TRACE(static_cast<int>(manner));
        Watched fixture;
        fixture.board.copy({{"UTF8_STRING", "lost"}}, {.manner = manner});
        fixture.time.advance(Seconds{20});
        EXPECT_THAT(fixture.entries(), IsEmpty());
        EXPECT_THAT(fixture.services.log(), HasSubstr("clipboard: could not read a copy: "));
        fixture.copyText("kept");
        EXPECT_THAT(fixture.texts(), ElementsAre("kept"));
    }
}

TEST(ClipboardWatcher, aSlowOwnerIsWaitedForAndANewerCopyWins) {
    Watched fixture;
    fixture.board.copy({{"UTF8_STRING", "slow"}}, {.answersAfter = Seconds{2}});
    fixture.front.name = "Browser";
    fixture.poll(); // noticed
    fixture.front.name = "Mail";
    fixture.time.advance(Seconds{4});
    ASSERT_THAT(fixture.texts(), ElementsAre("slow"));
    EXPECT_EQ(fixture.entries()[0].sourceApp, "Browser"); // as it was when it was noticed
    fixture.board.copy({{"UTF8_STRING", "slower"}}, {.answersAfter = Seconds{2}});
    fixture.poll();
    fixture.board.copyText("newer");
    fixture.time.advance(Seconds{5});
    EXPECT_THAT(fixture.texts(), ElementsAre("newer", "slow"));
}

TEST(ClipboardWatcher, onlyWhatIsCopiedWhileItWatchesIsRecorded) {
    ClipboardFixture fixture;
    fixture.board.copyText("before the program");
    fixture.watcher.start();
    fixture.board.copyText("while the history loads");
    fixture.poll();
    fixture.services.prefs.clipboardEnabled.set(false);
    fixture.copyText("while it is off");
    fixture.services.prefs.clipboardEnabled.set(true);
    fixture.poll();
    EXPECT_THAT(fixture.texts(), ElementsAre("while the history loads"));
    EXPECT_EQ(fixture.board.offers, 1);
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("clipboard: not watching, Keep clipboard history is off"));
    fixture.copyText("on again");
    EXPECT_THAT(fixture.texts(), SizeIs(2));
    fixture.watcher.stop();
    fixture.copyText("after the end");
    EXPECT_THAT(fixture.texts(), SizeIs(2));
}

TEST(ClipboardWatcher, itsOwnWriteIsNotRecordedNorTheNextChange) {
    Watched fixture;
    fixture.watcher.writeOwn({.items = {{"UTF8_STRING", std::make_shared<std::string>("own")}}});
    fixture.poll();
    fixture.copyText("swallowed");
    EXPECT_EQ(fixture.board.offers, 0);
    fixture.copyText("real");
    EXPECT_THAT(fixture.texts(), ElementsAre("real"));
}

TEST(ClipboardWatcher, aWriteThatCannotBeMadeHidesNoCopy) {
    Watched fixture;
    fixture.board.setAbility(Ability::missing("the display is gone"));
    EXPECT_FALSE(fixture.watcher.writeOwn(
        {.items = {{"UTF8_STRING", std::make_shared<std::string>("own")}}}));
    fixture.board.setAbility({});
    fixture.copyText("real");
    EXPECT_THAT(fixture.texts(), ElementsAre("real"));
}

TEST(ClipboardWatcher, whatWasClearedDoesNotComeBack) {
    for (const bool isPicture : {false, true}) {
        SCOPED_TRACE(isPicture);
        Watched fixture;
        if (isPicture)
            fixture.board.copy({{"image/png", ClipboardFixture::png(5)}},
                               {.answersAfter = Seconds{0.5}});
        else
            fixture.board.copy({{"UTF8_STRING", "copied"}}, {.answersAfter = Seconds{0.5}});
        fixture.poll();
        fixture.store.clear(std::nullopt);
        fixture.time.advance(Seconds{5});
        EXPECT_THAT(fixture.entries(), IsEmpty());
        EXPECT_THAT(fixture.pictureFiles(), IsEmpty());
    }
}

TEST(ClipboardWatcher, theRetentionHoldsAtTheStartEachHourAndWhenItChanges) {
    ClipboardFixture fixture;
    const double day = 86400;
    fixture.putOnDisk({ClipboardFixture::textEntry("a", fixture.now() - 3 * day),
                       ClipboardFixture::textEntry("b", fixture.now() - 2 * day + 600),
                       ClipboardFixture::textEntry("c", fixture.now())});
    fixture.services.prefs.clipRetention.set({.textDays = 2});
    fixture.start();
    EXPECT_THAT(fixture.texts(), ElementsAre("b", "c"));
    fixture.time.advance(ClipboardWatcher::pruneInterval + ClipboardWatcher::pruneTolerance);
    EXPECT_THAT(fixture.texts(), ElementsAre("c"));
    fixture.services.prefs.clipRetention.set({.keep = 0});
    EXPECT_THAT(fixture.texts(), IsEmpty());
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("clipboard: pruned 1 entries past their retention window, deleted 0 "
                          "thumbnails"));
}

TEST(ClipboardWatcher, aPasteThatIsMarkedProvesSinceWhenPastesAre) {
    const struct {
        const char* reason;
        double known;
        double expected;
    } cases[] = {
        {"not known", 0, 1000},
        {"known from later on", 2000, 1000},
        {"known from earlier on", 500, 500},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        ClipboardFixture fixture;
        auto pasted = ClipboardFixture::textEntry("a", 1000);
        pasted.pastedInto = {{"Mail"}};
        auto never = ClipboardFixture::textEntry("b", 100);
        never.pastedInto.emplace();
        fixture.putOnDisk({never, pasted});
        fixture.services.prefs.clipPasteTrackingSince.set(each.known);
        fixture.runtime.setPasteTrackingSince(each.known);
        fixture.start();
        EXPECT_EQ(fixture.services.prefs.clipPasteTrackingSince(), each.expected);
        EXPECT_EQ(fixture.runtime.pasteTrackingSince(), each.expected);
    }
}

TEST(ClipboardWatcher, goesOnWhenTheClipboardComesBack) {
    Watched fixture;
    fixture.board.setAbility(Ability::missing("the display is gone"));
    EXPECT_FALSE(fixture.watcher.isWatching());
    EXPECT_THAT(fixture.services.log(), HasSubstr("clipboard: not watching, the display is gone"));
    fixture.board.copyText("copied meanwhile");
    fixture.board.setAbility({});
    fixture.poll();
    EXPECT_THAT(fixture.texts(), ElementsAre("copied meanwhile"));
}

// A program that keeps the clipboard for others doesn't know the mark of a secret.

const FakePasteboard::Items kept = {{"text/plain;charset=utf-8", "hunter2"},
                                    {"UTF8_STRING", "hunter2"}};
const FakePasteboard::Items secret = {{"UTF8_STRING", "hunter2"}, {secretType, ""}};

TEST(ClipboardWatcher, whatTakesOverFromASecretIsTheSecret) {
    const struct {
        const char* reason;
        std::function<void(Watched&)> happens;
        std::int64_t skipped;
    } cases[] = {
        {"after its end",
         [](Watched& fixture) {
             fixture.board.copy(secret);
             fixture.poll();
             fixture.board.quitOwner();
             fixture.time.advance(Seconds{0.9}); // with a look at nothing in between
             fixture.board.copy(kept);
         },
         2},
        {"before anybody has seen the mark",
         [](Watched& fixture) {
             fixture.board.copy(secret);
             fixture.board.quitOwner();
             fixture.board.copy(kept);
         },
         1},
        {"one keeper after the other",
         [](Watched& fixture) {
             fixture.board.copy(secret);
             fixture.poll();
             for (int i = 0; i < 2; ++i) {
                 fixture.board.quitOwner();
                 fixture.board.copy(kept);
                 fixture.poll();
             }
         },
         3},
        {"by a display that doesn't tell of the end",
         [](Watched& fixture) {
             fixture.board.copy(secret);
             fixture.poll();
             fixture.board.copyAgain(kept);
         },
         2},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Watched fixture;
        each.happens(fixture);
        fixture.poll();
        EXPECT_EQ(fixture.board.totalReads(), 0);
        EXPECT_EQ(fixture.watcher.skipped(), (Skipped{{Reason::concealed, each.skipped}}));
        EXPECT_THAT(fixture.services.log(), HasSubstr("clipboard: skipped what took over from a "));
        fixture.copyText("next");
        EXPECT_THAT(fixture.texts(), ElementsAre("next"));
    }
}

TEST(ClipboardWatcher, whatTakesOverFromAnExcludedCopyIsExcludedToo) {
    Watched fixture;
    fixture.services.prefs.clipIgnoredApps.set({"org.example.Editor"});
    fixture.copyText("hunter2");
    fixture.front = {};
    fixture.board.quitOwner();
    fixture.copyText("hunter2");
    EXPECT_EQ(fixture.board.totalReads(), 0);
    EXPECT_EQ(fixture.watcher.skipped(), (Skipped{{Reason::ignoredApp, 2}}));
}

TEST(ClipboardWatcher, aRealCopyAfterASecretIsRecorded) {
    const struct {
        const char* reason;
        std::function<void(Watched&)> happens;
    } cases[] = {
        {"in its place", [](Watched& fixture) { fixture.copyText("real"); }},
        {"a second after its end",
         [](Watched& fixture) {
             fixture.board.quitOwner();
             fixture.time.advance(Seconds{1});
             fixture.copyText("real");
         }},
        {"by the same program",
         [](Watched& fixture) {
             fixture.board.copyAgain(
                 {{"text/plain;charset=utf-8", "real"}, {"UTF8_STRING", "real"}, {"TEXT", "real"}});
             fixture.poll();
         }},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Watched fixture;
        fixture.board.copy(secret);
        fixture.poll();
        each.happens(fixture);
        EXPECT_THAT(fixture.texts(), ElementsAre("real"));
    }
}

TEST(ClipboardWatcher, whatTakesOverFromACopyIsNoNewOne) {
    Watched fixture;
    fixture.copyText("older");
    fixture.copyText("copied");
    fixture.front.name = "Another";
    fixture.board.quitOwner();
    fixture.copyText("copied");
    ASSERT_THAT(fixture.texts(), ElementsAre("copied", "older"));
    EXPECT_EQ(fixture.entries()[0].count, 1);
    EXPECT_EQ(fixture.entries()[0].sourceApp, "Editor");
    fixture.board.quitOwner();
    fixture.time.advance(Seconds{0.3});
    EXPECT_EQ(fixture.board.content("UTF8_STRING"), "copied") << "it outlives the keeper too";
    fixture.copyText("copied"); // by hand
    EXPECT_EQ(fixture.entries()[0].count, 2);
    fixture.board.quitOwner();
    fixture.copyText("older"); // which a keeper may have had all the time, and a user copied
    EXPECT_EQ(fixture.entries()[0].count, 2);
}

// On this desktop what was copied goes with the program that it was copied from.

TEST(ClipboardWatcher, aCopyOutlivesTheProgramItCameFrom) {
    Watched fixture;
    fixture.copyText("precious");
    fixture.board.quitOwner();
    fixture.time.advance(Seconds{0.2});
    EXPECT_EQ(fixture.board.content("UTF8_STRING"), "precious");
    fixture.poll();           // which finds no copy in that
    fixture.copyText("next"); // nor is this one swallowed
    EXPECT_THAT(fixture.texts(), ElementsAre("next", "precious"));
    EXPECT_EQ(fixture.entries()[1].count, 1);
    fixture.copyPicture(9);
    fixture.board.quitOwner();
    fixture.time.advance(Seconds{0.2});
    EXPECT_EQ(fixture.board.content("image/png"), ClipboardFixture::png(9));
    fixture.copyPicture(11);
    fixture.files.remove(std::string(ClipboardFixture::pictureFolder) + "/" +
                         fixture.entries()[0].fullFile.value());
    fixture.board.quitOwner();
    fixture.time.advance(Seconds{0.2});
    EXPECT_EQ(fixture.board.content("image/png"), std::nullopt) << "a thumbnail is another one";
}

TEST(ClipboardWatcher, whatMayHaveBeenClearedOnPurposeStaysSo) {
    const struct {
        const char* reason;
        bool tellsEnd; ///< the desktop
        bool hasEnded; ///< the application that was in front
        std::optional<std::string> front;
        bool isPutBack;
    } cases[] = {
        {"the application has ended", false, true, "Editor", true},
        {"it goes on", false, false, "Editor", false},
        {"nobody knows which it was", false, true, std::nullopt, false},
        {"the desktop knows better", true, false, "Editor", true},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Watched fixture;
        fixture.board.tellsEnd = each.tellsEnd;
        fixture.front.name = each.front;
        fixture.copyText("hunter2");
        fixture.front.name = "Another";
        fixture.board.quitOwner();
        fixture.time.advance(Seconds{0.3});
        fixture.hasFrontEnded = each.hasEnded; // a little later
        fixture.time.advance(Seconds{0.7});
        EXPECT_EQ(fixture.board.content("UTF8_STRING"),
                  each.isPutBack ? std::optional("hunter2") : std::nullopt);
        EXPECT_THAT(fixture.services.log(),
                    HasSubstr(each.isPutBack ? "it is there again" : "it stays empty"));
    }
}

TEST(ClipboardWatcher, onlyWhatIsInTheHistoryIsPutBack) {
    const struct {
        const char* reason;
        std::function<void(Watched&)> between;
    } cases[] = {
        {"a secret was copied since",
         [](Watched& fixture) {
             fixture.board.copy({{"UTF8_STRING", "hunter2"}, {secretType, ""}});
             fixture.poll();
             fixture.board.quitOwner();
         }},
        {"a secret that nobody has looked at yet",
         [](Watched& fixture) {
             fixture.board.copy({{"UTF8_STRING", "hunter2"}, {secretType, ""}});
             fixture.board.quitOwner();
         }},
        {"what is in the history is a secret now",
         [](Watched& fixture) {
             fixture.board.copy({{"UTF8_STRING", "first"}, {secretType, ""}});
             fixture.poll();
             fixture.board.quitOwner();
         }},
        {"the user deleted it",
         [](Watched& fixture) {
             fixture.store.remove(fixture.entries()[0].id);
             fixture.board.quitOwner();
         }},
        {"somebody copied in the meantime",
         [](Watched& fixture) {
             fixture.board.quitOwner();
             fixture.board.copyText("other");
         }},
        {"nobody watches any more",
         [](Watched& fixture) {
             fixture.services.prefs.clipboardEnabled.set(false);
             fixture.board.quitOwner();
         }},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Watched fixture;
        fixture.copyText("first");
        each.between(fixture);
        fixture.time.advance(Seconds{0.3});
        EXPECT_THAT(fixture.board.written, IsEmpty());
    }
}

TEST(ClipboardWatcher, puttingBackDoesNotMeetTheSwallowedChange) {
    Watched fixture;
    fixture.copyText("recorded");
    fixture.watcher.writeOwn({.items = {{"UTF8_STRING", std::make_shared<std::string>("own")}}});
    fixture.copyText("swallowed");
    fixture.board.quitOwner();                        // which was never recorded
    fixture.time.advance(ClipTakeOver::longestPause); // what came sooner might be that one
    EXPECT_THAT(fixture.board.written, SizeIs(1));
    fixture.copyText("real");
    fixture.board.quitOwner();
    fixture.time.advance(Seconds{0.3});
    EXPECT_EQ(fixture.board.content("UTF8_STRING"), "real");
    fixture.copyText("after");
    EXPECT_THAT(fixture.texts(), ElementsAre("after", "real", "recorded"));
}

} // namespace
} // namespace tessarine
