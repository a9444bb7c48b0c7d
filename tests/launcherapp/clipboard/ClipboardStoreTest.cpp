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
        for (const auto& entry : document ? document->history.entries : entries())
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
    fixture.record("three"); // the next change saves again
    fixture.time.advance(Seconds{1});
    EXPECT_THAT(fixture.saved(), SizeIs(3));
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
        fixture.time.settle();
        fixture.copyPicture(1); // what was deleted is written again
        fixture.store.remove(fixture.entries().at(0).id);
        fixture.time.settle();
        EXPECT_EQ(fixture.pictureFiles(), files);
        each.drop(fixture);
        fixture.time.settle();
        EXPECT_EQ(fixture.pictureFiles(), files); // the other one has them too
        fixture.store.remove("two");
        fixture.time.settle();
        EXPECT_THAT(fixture.pictureFiles(), IsEmpty());
    }
}

TEST(ClipboardStore, aCopyThatTheCapDropsLosesItsPicturesAtOnce) {
    ClipboardFixture fixture;
    std::vector<ClipboardEntry> pinned;
    for (std::size_t i = 0; i < ClipboardHistory::keep; ++i) {
        pinned.push_back(ClipboardFixture::textEntry(std::to_string(i), 1));
        pinned.back().pinned = true;
    }
    fixture.putOnDisk(pinned);
    fixture.start();
    fixture.copyPicture(1);
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
    fixture.time.advance(Seconds{ClipboardStore::tombstoneWindow + 1});
    fixture.record("b");
    fixture.store.clear(std::nullopt);
    EXPECT_THAT(fixture.store.tombstones(), SizeIs(1)); // the old one is trimmed
}

} // namespace
} // namespace tessarine
