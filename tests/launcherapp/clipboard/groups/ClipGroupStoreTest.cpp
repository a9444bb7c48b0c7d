#include "launcherapp/clipboard/groups/ClipGroupStore.h"

#include "tests/launcherapp/clipboard/groups/ClipGroupsFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Json = nlohmann::json;
using Removal = ClipGroupStore::Removal;
using Upkeep = ClipGroupStore::Upkeep;

constexpr auto path = ClipGroupsFixture::groupsPath;

/// As it was before it read the handoff's file.
ClipGroup retiredLedger() {
    auto ledger = ClipGroups::templates()[0];
    ledger.match.filePattern.reset();
    ledger.match.fileState.reset();
    ledger.match.fileNeedle.reset();
    ledger.match.pasted = false;
    return ledger;
}

TEST(ClipGroupStore, theFirstRunSeedsOnceAndNotesSinceWhenPastesAreMarked) {
    ClipGroupsFixture fixture;
    fixture.groups.load(Upkeep::all);
    EXPECT_EQ(Json::parse(fixture.text()), Json::parse(R"({"groups":[]})"));
    const auto first = fixture.now();
    EXPECT_EQ(fixture.runtime.pasteTrackingSince(), first);
    fixture.time.advance(Seconds{10});
    fixture.groups.load(Upkeep::all);
    EXPECT_EQ(fixture.services.prefs.clipPasteTrackingSince(), first);
}

TEST(ClipGroupStore, aGroupTaughtElsewhereIsInForceAtOnce) {
    ClipGroupsFixture fixture;
    fixture.groups.load(Upkeep::all);
    fixture.groups.follow(fixture.services.platform.watcher);
    int changes = 0;
    const auto observer = fixture.groups.onChange([&] { ++changes; });
    fixture.files.file(path, ClipGroupsFixture::fileWith("Receipts"));
    fixture.services.platform.watcher.fire("/support");
    fixture.time.advance(Seconds{0.1});
    EXPECT_THAT(fixture.names(), ElementsAre("Receipts"));
    EXPECT_EQ(changes, 1);
    fixture.services.platform.watcher.fire("/support"); // another file of the folder
    fixture.time.advance(Seconds{0.1});
    EXPECT_EQ(changes, 1);
    // What stops parsing, or goes, leaves what is in force.
    fixture.files.file(path, "{");
    fixture.services.platform.watcher.fire("/support");
    fixture.time.advance(Seconds{0.1});
    EXPECT_TRUE(fixture.groups.loadError());
    EXPECT_THAT(fixture.services.log(), HasSubstr("clip-groups.json did not parse."));
    fixture.files.remove(path);
    fixture.services.platform.watcher.fire("/support");
    fixture.time.advance(Seconds{0.1});
    EXPECT_THAT(fixture.names(), ElementsAre("Receipts"));
}

TEST(ClipGroupStore, whatDoesNotParseIsLeftForTheUserToMend) {
    ClipGroupsFixture fixture;
    const std::string broken = R"({"groups":[{"name":"Mine")";
    fixture.files.file(path, broken);
    fixture.groups.load(Upkeep::all);
    EXPECT_EQ(fixture.groups.loadError(),
              "clip-groups.json did not parse. No taught group is in force until it does.");
    EXPECT_FALSE(fixture.groups.write({.groups = {ClipGroupsFixture::group("New")}}));
    EXPECT_EQ(fixture.text(), broken);
    EXPECT_THAT(fixture.names(), IsEmpty());
    fixture.files.file(path, ClipGroupsFixture::fileWith("Mine"));
    fixture.groups.readAgain();
    EXPECT_EQ(fixture.groups.loadError(), std::nullopt);
    EXPECT_THAT(fixture.names(), ElementsAre("Mine"));
    fixture.files.forbid(path);
    fixture.groups.readAgain();
    EXPECT_EQ(fixture.groups.loadError(),
              "clip-groups.json could not be read. The groups read before stay in force until it "
              "can be.");
    fixture.files.allow(path);
    fixture.groups.readAgain();
    EXPECT_EQ(fixture.groups.loadError(), std::nullopt);
}

TEST(ClipGroupStore, aCopyIsKeptOfAFileThatSaysMoreThanIsUnderstood) {
    ClipGroupsFixture fixture;
    const std::string newer = R"({"groups":[],"colours":["red"]})";
    fixture.files.file(path, newer);
    fixture.groups.load(Upkeep::all);
    EXPECT_TRUE(fixture.groups.write({.groups = {ClipGroupsFixture::group("New")}}));
    EXPECT_EQ(fixture.files.read(std::string(path) + ".damaged", 1 << 20), newer);
    EXPECT_EQ(fixture.text(), ClipGroupsFixture::fileWith("New"));
}

TEST(ClipGroupStore, aRunThatEndsByItselfLeavesNothingBehind) {
    ClipGroupsFixture fixture;
    fixture.groups.load(Upkeep::none);
    EXPECT_FALSE(fixture.files.info(path));
    EXPECT_EQ(fixture.services.prefs.clipPasteTrackingSince(), 0);
    EXPECT_EQ(fixture.runtime.pasteTrackingSince(), fixture.now());
    const auto retired = ClipGroupsJson::encoded({.groups = {retiredLedger()}});
    fixture.files.file(path, retired);
    fixture.groups.load(Upkeep::none);
    EXPECT_EQ(fixture.text(), retired);
    EXPECT_EQ(fixture.runtime.current()->groups, (std::vector{ClipGroups::templates()[0]}));
}

TEST(ClipGroupStore, theRetiredLedgerIsUpgradedOnDisk) {
    ClipGroupsFixture fixture;
    fixture.files.file(path, ClipGroupsJson::encoded({.groups = {retiredLedger()}}));
    fixture.groups.load(Upkeep::all);
    const ClipGroups upgraded{.groups = {ClipGroups::templates()[0]}};
    EXPECT_EQ(*fixture.runtime.current(), upgraded);
    EXPECT_EQ(fixture.text(), ClipGroupsJson::encoded(upgraded));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("clip groups: upgraded the handoff ledger to read the handoff file "
                          "instead of the paste ledger"));
}

TEST(ClipGroupStore, nothingIsInForceThatCouldNotBeWritten) {
    ClipGroupsFixture fixture;
    fixture.files.file(path, ClipGroupsFixture::fileWith("Receipts"));
    fixture.groups.load(Upkeep::all);
    fixture.files.forbid(path);
    EXPECT_FALSE(fixture.groups.write({}));
    EXPECT_EQ(fixture.groups.remove("receipts"), Removal::notWritten);
    EXPECT_THAT(fixture.names(), ElementsAre("Receipts"));
    fixture.files.allow(path);
    EXPECT_EQ(fixture.groups.remove("RECEIPTS"), Removal::done);
    EXPECT_EQ(fixture.groups.remove("RECEIPTS"), Removal::absent);
    EXPECT_THAT(fixture.names(), IsEmpty());
}

} // namespace
} // namespace tessarine
