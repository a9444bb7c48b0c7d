#include "launcherapp/clipboard/ClipboardStore.h"

#include "tests/launcherapp/clipboard/ClipboardFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

struct Stored : ClipboardFixture {
    Stored() { start(); }

    void record(const std::string& text) { store.record(textEntry(text, now())); }

    /// Which texts are on disk, as the next start will find them.
    std::vector<std::string> saved() const {
        std::vector<std::string> texts;
        const auto document = ClipboardJson::decoded(onDisk());
        if (!document)
            return {"no document"};
        for (const auto& entry : document->history.entries)
            texts.push_back(entry.text.string());
        return texts;
    }
};

TEST(ClipboardStore, aBurstOfChangesIsSavedOnceASecondAfterTheFirst) {
    Stored fixture;
    fixture.record("one");
    fixture.time.advance(Seconds{0.9});
    fixture.record("two");
    EXPECT_EQ(fixture.onDisk(), "");
    fixture.time.advance(Seconds{0.1});
    EXPECT_THAT(fixture.saved(), ElementsAre("two", "one"));
    fixture.record("three");
    fixture.store.flush(); // the program ends
    fixture.time.settle();
    EXPECT_THAT(fixture.saved(), ElementsAre("three", "two", "one"));
}

TEST(ClipboardStore, whatIsOnDiskIsNeverLost) {
    const struct {
        const char* reason;
        std::string text;
        bool keepsEntry;
    } cases[] = {
        {"no document", "{\"entries\": [{", false},
        {"an entry that lacks a field: the whole is not understood",
         R"({"entries":[{"id":"a"}]})",
         false},
        {"of a newer build",
         R"({"entries":[{"id":"a","kind":"text","text":"A","preview":"A","firstSeen":1,"lastSeen":1,)"
         R"("count":1,"pinned":false,"novelty":1}]})",
         true},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        ClipboardFixture fixture;
        fixture.files.file(ClipboardFixture::historyPath, each.text);
        fixture.start();
        EXPECT_THAT(fixture.entries(), SizeIs(each.keepsEntry ? 1 : 0));
        EXPECT_EQ(fixture.onDisk(), each.text); // until something is to be saved
        fixture.copyText("new");
        fixture.time.advance(Seconds{2});
        const auto copy = std::string(ClipboardFixture::historyPath) + ".damaged";
        EXPECT_EQ(fixture.files.read(copy, 1 << 20), each.text);
        EXPECT_THAT(fixture.onDisk(), HasSubstr("new"));
        EXPECT_THAT(fixture.services.log(), Not(HasSubstr("clipboard.json")));
    }
}

std::string picturePath(const std::string& name) {
    return std::string(ClipboardFixture::pictureFolder) + "/" + name;
}

TEST(ClipboardStore, aStartSweepsOnlyWhatNoDocumentCanWant) {
    const std::string orphan = "bbbbbbbbbbbbbbbbbbbbbbbb-full.png";
    const std::string path = ClipboardFixture::historyPath;
    const std::string empty = R"({"entries":[]})";

    const struct {
        const char* reason;
        std::function<void(MemoryFileStore&)> put;
        bool isSwept;
    } cases[] = {
        {"understood whole", [&](auto& files) { files.file(path, empty); }, true},
        {"none: it may have been moved away", [](auto&) {}, false},
        {"damaged", [&](auto& files) { files.file(path, "{\"entries\": ["); }, false},
        {"of a newer build",
         [&](auto& files) { files.file(path, R"({"entries":[],"novelty":1})"); },
         false},
        {"unreadable",
         [&](auto& files) {
             files.file(path, empty);
             files.forbid(path);
         },
         false},
        {"a damaged copy beside it names it",
         [&](auto& files) {
             files.file(path, empty);
             files.file(path + ".damaged-2", "[\"" + orphan);
         },
         false},
        {"the damaged copy can't be read",
         [&](auto& files) {
             files.file(path, empty);
             files.file(path + ".damaged", "");
             files.forbid(path + ".damaged");
         },
         false},
        {"a damaged copy names others",
         [&](auto& files) {
             files.file(path, empty);
             files.file(path + ".damaged", "aaaaaaaaaaaaaaaaaaaaaaaa.png");
         },
         true},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        ClipboardFixture fixture;
        fixture.files.file(picturePath(orphan), "x");
        each.put(fixture.files);
        fixture.start();
        EXPECT_EQ(fixture.pictureFiles().empty(), each.isSwept);
        fixture.copyText("new"); // nor may the next save set it free at the next start
        fixture.time.advance(Seconds{2});
        EXPECT_EQ(fixture.pictureFiles().empty(), each.isSwept);
    }
}

TEST(ClipboardStore, aHistoryElsewhereLeavesThePicturesOfTheUsualOne) {
    const std::string orphan = "bbbbbbbbbbbbbbbbbbbbbbbb.png";
    ClipboardFixture fixture("/elsewhere/scratch.json");
    fixture.files.file("/elsewhere/scratch.json", R"({"entries":[]})");
    fixture.files.file(ClipboardFixture::historyPath, "\"" + orphan);
    fixture.files.file(picturePath(orphan), "x");
    fixture.start();
    EXPECT_THAT(fixture.pictureFiles(), SizeIs(1));
}

TEST(ClipboardStore, whatAKilledSaveLeftGoesAtTheNextStart) {
    ClipboardFixture fixture;
    const std::string picture = picturePath("aaaaaaaaaaaaaaaaaaaaaaaa-full.png");
    const std::string path = ClipboardFixture::historyPath;

    const struct {
        const char* reason;
        std::string path;
        bool isGone;
    } cases[] = {
        {"of the history", path + ".unsaved-aB3dE9", true},
        {"of its copy", path + ".damaged.unsaved-aB3dE9", true},
        {"of a picture", picture + ".unsaved-aB3dE9", true},
        {"somebody's own copy", path + ".backup", false},
        {"of another document", "/support/usage.json.unsaved-aB3dE9", false},
        {"too long", path + ".unsaved-aB3dE9x", false},
        {"no name of a picture's", picturePath("notes.txt.unsaved-aB3dE9"), false},
    };

    for (const auto& each : cases)
        fixture.files.file(each.path, "x");
    fixture.start();
    for (const auto& each : cases)
        EXPECT_NE(fixture.files.info(each.path).has_value(), each.isGone) << each.reason;
}

TEST(ClipboardStore, picturesStayUntilTheDocumentThatDropsThemIsOnDisk) {
    Stored fixture;
    fixture.copyPicture(1);
    fixture.time.advance(Seconds{1});
    fixture.files.forbid(ClipboardFixture::historyPath);
    fixture.store.clear(std::nullopt);
    fixture.time.advance(Seconds{1});
    EXPECT_THAT(fixture.pictureFiles(), SizeIs(2)); // the one on disk names them still
    fixture.files.allow(ClipboardFixture::historyPath);
    fixture.store.pruneNow(); // tries again what failed
    fixture.time.settle();
    EXPECT_THAT(fixture.saved(), IsEmpty());
    EXPECT_THAT(fixture.pictureFiles(), IsEmpty());
}

TEST(ClipboardStore, oneSaveIsUnderWayAndTheNewestWaits) {
    Stored fixture;
    fixture.record("one");
    fixture.store.flush();
    fixture.record("two");
    fixture.store.end(); // while the first one waits
    fixture.time.settle();
    EXPECT_THAT(fixture.saved(), ElementsAre("two", "one"));
}

TEST(ClipboardStore, theTextsTogetherAreBounded) {
    Stored fixture;
    // Shared, since to make a text of that size takes long.
    auto entry = ClipboardFixture::textEntry("oldest", 1);
    fixture.store.record(entry);
    entry.text = ClipText(std::string(ClipboardStore::mostTextBytes / 4 + 1, 'x'));
    for (const auto* const id : {"a", "b", "c", "d"}) {
        entry.id = id;
        entry.pinned = entry.id == "a";
        fixture.store.record(entry);
    }
    std::vector<std::string> left;
    for (const auto& each : fixture.entries())
        left.push_back(each.id);
    EXPECT_THAT(left, ElementsAre("d", "c", "a")); // from the tail, never what is pinned
    EXPECT_THAT(fixture.services.log(), HasSubstr("clipboard: dropped 2 entries, as the texts"));
}

TEST(ClipboardStore, aClippingThatComesBackIsJudgedAnew) {
    Stored fixture;
    ClipGroup pasted{.name = "Pasted", .symbol = "tray"};
    pasted.match.pasted = true;
    fixture.runtime.setCurrent({.groups = {pasted}});
    fixture.runtime.setPasteTrackingSince(1);
    fixture.record("text");
    const auto id = fixture.entries()[0].id;
    fixture.store.notePaste(id, "Editor");
    ASSERT_TRUE(fixture.runtime.group(fixture.entries()[0]));
    fixture.store.remove(id);
    fixture.record("text");
    EXPECT_FALSE(fixture.runtime.group(fixture.entries()[0]));
}

TEST(ClipboardStore, aPictureFirstCopiedOnAFullDiskGetsItsFilesLater) {
    Stored fixture;
    fixture.files.forbid(ClipboardFixture::pictureFolder);
    fixture.copyPicture(1);
    EXPECT_FALSE(fixture.entries().at(0).fullFile);
    EXPECT_THAT(fixture.services.log(), HasSubstr("clipboard: a picture was not kept whole, "));
    fixture.files.allow(ClipboardFixture::pictureFolder);
    fixture.copyPicture(1);
    fixture.time.advance(Seconds{2});
    EXPECT_THAT(fixture.pictureFiles(),
                ElementsAre(*fixture.entries().at(0).fullFile, *fixture.entries().at(0).imageFile));
}

TEST(ClipboardStore, whatChangesNothingSavesNothing) {
    Stored fixture;
    fixture.store.bump("none");
    fixture.store.touch("none");
    fixture.store.togglePin("none");
    fixture.store.notePaste("none", "Editor");
    fixture.time.advance(Seconds{2});
    EXPECT_EQ(fixture.onDisk(), "");
}

TEST(ClipboardStore, aFullDiskLeavesTheHistoryInMemoryAndTheFileWhole) {
    Stored fixture;
    fixture.record("one");
    fixture.time.advance(Seconds{1});
    fixture.files.forbid(ClipboardFixture::historyPath);
    fixture.record("two");
    fixture.time.advance(Seconds{1});
    fixture.files.allow(ClipboardFixture::historyPath);
    EXPECT_THAT(fixture.texts(), ElementsAre("two", "one"));
    EXPECT_THAT(fixture.saved(), ElementsAre("one"));
    fixture.store.flush(); // the program ends, and the disk has room again
    fixture.time.settle();
    EXPECT_THAT(fixture.saved(), SizeIs(2));
}

TEST(ClipboardStore, clearingSparesThePinnedAndTheOlder) {
    const struct {
        const char* reason;
        std::optional<Seconds> newerThan;
        std::vector<std::string> left;
        const char* line;
    } cases[] = {
        {"all", std::nullopt, {"pinned"}, "clipboard: cleared 2 entries\n"},
        {"an age",
         Seconds{150},
         {"old", "pinned"},
         "clipboard: cleared 1 entry, newer than 2 minutes\n"},
        {"exactly its age is not older",
         Seconds{300},
         {"pinned"},
         "cleared 2 entries, newer than 5 minutes\n"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Stored fixture;
        fixture.record("pinned");
        fixture.store.togglePin(fixture.entries()[0].id);
        fixture.record("old");
        fixture.time.advance(Seconds{300});
        fixture.record("new");
        fixture.store.clear(each.newerThan);
        EXPECT_EQ(fixture.texts(), each.left);
        EXPECT_THAT(fixture.services.log(), HasSubstr(each.line));
    }
}

TEST(ClipboardStore, aClearingBeforeTheHistoryIsThereCountsToo) {
    ClipboardFixture fixture;
    fixture.putOnDisk({ClipboardFixture::textEntry("old", 1)});
    fixture.watcher.start();
    fixture.store.clear(std::nullopt);
    fixture.time.advance(Seconds{2});
    EXPECT_THAT(fixture.entries(), IsEmpty());
    EXPECT_THAT(fixture.onDisk(), Not(HasSubstr("old")));
}

TEST(ClipboardStore, picturesGoWithTheLastClippingThatNamesThem) {
    const struct {
        const char* reason;
        std::function<void(ClipboardFixture&)> drop;
    } cases[] = {
        {"deleted", [](ClipboardFixture& fixture) { fixture.store.remove("one"); }},
        {"cleared but for a pinned one",
         [](ClipboardFixture& fixture) {
             fixture.store.togglePin("two");
             fixture.store.clear(std::nullopt);
         }},
        {"expired",
         [](ClipboardFixture& fixture) {
             fixture.store.togglePin("two");
             fixture.services.prefs.clipRetention.set({.keep = 0});
         }},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        ClipboardFixture fixture;
        fixture.start();
        fixture.copyPicture(1);
        auto first = fixture.entries().at(0);
        const auto files = fixture.pictureFiles();
        ASSERT_THAT(files, SizeIs(2));
        fixture.store.remove(first.id);
        first.id = "one";
        fixture.store.record(first);
        first.id = "two";
        fixture.store.record(first);
        fixture.time.advance(Seconds{1});
        fixture.copyPicture(1); // what was deleted is written again
        fixture.store.remove(fixture.entries().at(0).id);
        fixture.time.advance(Seconds{1});
        EXPECT_EQ(fixture.pictureFiles(), files);
        each.drop(fixture);
        fixture.time.advance(Seconds{1});
        EXPECT_EQ(fixture.pictureFiles(), files); // the other one has them too
        fixture.store.remove("two");
        fixture.time.advance(Seconds{1});
        EXPECT_THAT(fixture.pictureFiles(), IsEmpty());
    }
}

TEST(ClipboardStore, aCopyThatTheCapDropsLosesItsPictures) {
    ClipboardFixture fixture;
    std::vector<ClipboardEntry> pinned;
    for (std::size_t i = 0; i < ClipboardHistory::keep; ++i) {
        pinned.push_back(ClipboardFixture::textEntry(std::to_string(i), 1));
        pinned.back().pinned = true;
    }
    fixture.putOnDisk(pinned);
    fixture.start();
    fixture.copyPicture(1);
    fixture.time.advance(Seconds{1});
    EXPECT_THAT(fixture.entries(), SizeIs(ClipboardHistory::keep));
    EXPECT_THAT(fixture.pictureFiles(), IsEmpty());
}

TEST(ClipboardStore, aPictureThatIsCopiedAgainWhileItIsDeletedStays) {
    Stored fixture;
    fixture.copyPicture(1);
    const auto entry = fixture.entries().at(0);
    bool isDone = false;
    fixture.store.keepPicture(ClipboardFixture::png(1), [&](const auto& kept) {
        ASSERT_TRUE(kept);
        fixture.store.record(entry);
        isDone = true;
    });
    fixture.store.remove(entry.id);
    fixture.store.sweepPictures();
    fixture.time.settle();
    ASSERT_TRUE(isDone);
    EXPECT_THAT(fixture.pictureFiles(), SizeIs(2));
}

TEST(ClipboardStore, aStartSweepsThePicturesThatNoClippingNames) {
    ClipboardFixture fixture;
    auto entry = ClipboardFixture::textEntry("picture", 1);
    const std::string named = "aaaaaaaaaaaaaaaaaaaaaaaa.png";
    entry.imageFile = named;
    fixture.putOnDisk({entry});
    for (const auto& name :
         {named, std::string("bbbbbbbbbbbbbbbbbbbbbbbb-full.png"), std::string("notes.txt")})
        fixture.files.file(std::string(ClipboardFixture::pictureFolder) + "/" + name, "x");
    fixture.start();
    EXPECT_THAT(fixture.pictureFiles(), ElementsAre(named, "notes.txt"));
}

TEST(ClipboardStore, otherDevicesHearOfChangesOnlyWhenTheyAreSynced) {
    Stored fixture;
    auto& prefs = fixture.services.prefs;
    fixture.record("unsynced");
    fixture.store.remove(fixture.entries()[0].id);
    EXPECT_THAT(fixture.store.tombstones(), IsEmpty());
    EXPECT_EQ(prefs.clipSyncLamport(), 0);
    prefs.clipSyncEnabled.set(true);
    prefs.clipSyncDeviceID.set("here");
    fixture.record("a");
    EXPECT_EQ(fixture.entries()[0].syncOrigin, "here");
    EXPECT_EQ(fixture.entries()[0].syncLamport, 1);
    const auto id = fixture.entries()[0].id;
    fixture.store.remove(id);
    fixture.record("a");
    fixture.store.clear(std::nullopt);
    ASSERT_THAT(fixture.store.tombstones(), SizeIs(1)); // one for each clipping, the latest
    EXPECT_EQ(fixture.store.tombstones()[0],
              (ClipTombstone{.id = id, .origin = "here", .lamport = 4, .at = fixture.now()}));
    fixture.time.advance(ClipStamps::tombstoneWindow + Seconds{1});
    fixture.record("b");
    fixture.store.clear(std::nullopt);
    EXPECT_THAT(fixture.store.tombstones(), SizeIs(1)); // the old one is trimmed
}

} // namespace
} // namespace tessarine
