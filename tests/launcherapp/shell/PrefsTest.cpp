#include "launcherapp/shell/Prefs.h"

#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePlatform.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <optional>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto path = "/config/preferences.json";

/// One start of the program over the same disk.
struct Start {
    explicit Start(FakePlatform& platform)
        : diagnostics(
              platform.queue,
              platform.work,
              platform.files,
              [] { return "/data"; },
              Diagnostics::Run::oneShot),
          store(platform.queue,
                StateFile(platform.files,
                          platform.work.serial("preferences"),
                          diagnostics,
                          path,
                          StateFile::Failures::logged),
                diagnostics) {}

    Diagnostics diagnostics;
    DefaultsStore store;
    Environment environment{.home = "/home/u",
                            .userFolders = {.downloads = "/home/u/Downloads",
                                            .desktop = "/home/u/Desktop",
                                            .documents = ""}, // turned off
                            .moneyLocale = "de_DE.UTF-8"};
    Prefs prefs{store, environment};
};

class PrefsTest : public testing::Test {
protected:
    nlohmann::json onDisk() {
        platform.time.settle();
        return nlohmann::json::parse(platform.files.read(path, 1 << 20).value_or("null"));
    }

    std::string text(const std::string& where) {
        platform.time.settle();
        return platform.files.read(where, 1 << 20).value_or("(absent)");
    }

    FakePlatform platform;
};

TEST_F(PrefsTest, aFirstStartHasTheDefaultsAndStoresNoneOfThem) {
    Start start(platform);
    EXPECT_EQ(start.prefs.hotkey(), (HotkeyBinding{.keyCode = 49, .carbonModifiers = 0x100}));
    EXPECT_EQ(start.prefs.resultRows(), 9);
    EXPECT_TRUE(start.prefs.learnFromUse());
    EXPECT_EQ(start.prefs.resultOrder(), Prefs::defaultOrder());
    EXPECT_EQ(
        start.prefs.searchFolders(),
        (std::vector<std::string>{"/home/u/Downloads", "/home/u/Desktop", "/home/u/Developer"}));
    EXPECT_EQ(start.prefs.homeCurrency(), "EUR");
    EXPECT_EQ(start.prefs.clipRetention().keep, 500);
    // Only the device's id and the mark of the change made once.
    const auto stored = onDisk();
    EXPECT_EQ(stored.size(), 3u) << stored;
    EXPECT_EQ(stored.at("clipSyncDeviceID"), start.prefs.clipSyncDeviceID());
    EXPECT_EQ(stored.at("didUnhideFooter2026_09_10"), true);
    EXPECT_EQ(stored.at("autoHideFooter"), false);
}

TEST_F(PrefsTest, whatIsSetSurvivesAndIsToldOnce) {
    std::string device;
    {
        Start start(platform);
        std::vector<std::string> changed;
        const auto subscription =
            start.prefs.onChange([&](std::string_view key) { changed.emplace_back(key); });
        start.prefs.emptyMode.set(EmptyMode::mostUsed);
        start.prefs.hotkey.set({.keyCode = 1, .carbonModifiers = 0x1000});
        start.prefs.clipRetention.set({.textDays = 7, .keep = 10});
        start.prefs.rememberedOrigin.set({1.5, -2});
        start.prefs.favoriteTitles.set({{"a", "A"}});
        start.prefs.autoHideFooter.set(true);
        EXPECT_EQ(start.prefs.setKeywordWord(BuiltinKeyword::tabs, "tab"), std::nullopt);
        start.prefs.disableKeyword(BuiltinKeyword::slack);
        EXPECT_THAT(changed, testing::SizeIs(8));
        EXPECT_EQ(changed.front(), "emptyMode");
        device = start.prefs.clipSyncDeviceID();
        platform.time.settle();
    }
    Start again(platform);
    EXPECT_EQ(again.prefs.emptyMode(), EmptyMode::mostUsed);
    EXPECT_EQ(again.prefs.hotkey().carbonModifiers, 0x1000u);
    EXPECT_EQ(again.prefs.clipRetention(), (ClipRetention{.textDays = 7, .keep = 10}));
    EXPECT_THAT(again.prefs.rememberedOrigin(), ElementsAre(1.5, -2));
    EXPECT_EQ(again.prefs.favoriteTitles().at("a"), "A");
    EXPECT_TRUE(again.prefs.autoHideFooter()); // the change made once is not made again
    EXPECT_EQ(again.prefs.clipSyncDeviceID(), device);
    EXPECT_EQ(again.prefs.keywords().word(BuiltinKeyword::tabs), "tab");
    EXPECT_FALSE(again.prefs.keywords().isEnabled(BuiltinKeyword::slack));
}

TEST_F(PrefsTest, valuesThatCannotBeReadAreTheDefault) {
    platform.files.file(path,
                        R"({"learnFromUse": false, "showRunningDot": "no", "resultRows": 2.5,
        "emptyMode": "hologram", "width": 3, "hotkey": {"keyCode": -1, "carbonModifiers": 0},
        "clipRetention": {"keep": 5}, "favorites": ["a", 1], "clipSyncLastSync": 3,
        "resultOrder": ["files", "apps", "gone"], "fromTheFuture": {"x": [null]},
        "favorites2": null, "hiddenApps": ["x"]})");
    Start start(platform);
    EXPECT_FALSE(start.prefs.learnFromUse()); // a stored false is no absence
    EXPECT_TRUE(start.prefs.showRunningDot());
    EXPECT_EQ(start.prefs.resultRows(), 9);
    EXPECT_EQ(start.prefs.emptyMode(), EmptyMode::clean);
    EXPECT_EQ(start.prefs.width(), PanelWidth::standard);
    EXPECT_EQ(start.prefs.hotkey().keyCode, 49u);
    EXPECT_EQ(start.prefs.clipRetention(), ClipRetention{});
    EXPECT_THAT(start.prefs.favorites(), IsEmpty());
    EXPECT_EQ(start.prefs.clipSyncLastSync(), 3.0);
    EXPECT_THAT(start.prefs.hiddenApps(), ElementsAre("x"));
    EXPECT_THAT(start.prefs.resultOrder(),
                ElementsAre("answers", "files", "web", "apps", "people", "tabs", "commands"));
    // What this program doesn't know, or can't read, survives its saves.
    start.prefs.clipRows.set(4);
    EXPECT_EQ(onDisk().at("fromTheFuture").dump(), R"({"x":[null]})");
    EXPECT_EQ(onDisk().at("emptyMode"), "hologram");
    EXPECT_EQ(onDisk().at("resultOrder").size(), 3u); // only the reading is newer
    EXPECT_EQ(onDisk().at("clipRows"), 4);
}

TEST_F(PrefsTest, retiredFavoritesAreReadUnderTheirNewIds) {
    platform.files.file(path, R"({"favorites": ["cmd:wispr", "x", "cmd:sys.fixWispr"]})");
    EXPECT_THAT(Start(platform).prefs.favorites(), ElementsAre("cmd:sys.fixWispr", "x"));
}

TEST_F(PrefsTest, aFileThatIsNoneIsKeptBeforeItIsOverwritten) {
    const std::string broken = R"({"learnFromUse": false, "favorites": ["a")";
    platform.files.file(path, broken);
    {
        Start start(platform);
        EXPECT_TRUE(start.prefs.learnFromUse());
        start.prefs.clipRows.set(4);
        EXPECT_EQ(text(std::string(path) + ".damaged"), broken);
        EXPECT_EQ(onDisk().at("clipRows"), 4);
        EXPECT_THAT(text("/data/tessarine.log"), HasSubstr("is no JSON object"));
    }
    platform.files.file(path, "[]"); // once more: the first copy stays
    Start start(platform);
    EXPECT_EQ(text(std::string(path) + ".damaged"), broken);
    EXPECT_EQ(text(std::string(path) + ".damaged-2"), "[]");
}

TEST_F(PrefsTest, whatOneKeyHoldsIsNotLostUnseen) {
    const std::string byHand = R"({"favorites": ["a", 7, "b"], "clipRows": 3, "mine": {"x": 1}})";
    platform.files.file(path, byHand);
    Start start(platform);
    EXPECT_TRUE(start.prefs.favorites().empty());
    start.prefs.clipRows.set(4); // leaves the list as it was written
    EXPECT_EQ(onDisk().at("favorites").size(), 3u);
    start.prefs.favorites.set({"c"});
    EXPECT_EQ(nlohmann::json::parse(text(std::string(path) + ".damaged")).at("favorites").dump(),
              R"(["a",7,"b"])");
    EXPECT_EQ(onDisk().at("favorites").size(), 1u);
    EXPECT_EQ(onDisk().at("mine").at("x"), 1);
}

TEST_F(PrefsTest, nothingGoesOverADamagedFileUntilItsCopyLies) {
    platform.files.file(path, "{broken");
    Start start(platform);
    platform.files.forbid("/config");
    start.prefs.clipRows.set(4);
    platform.files.allow("/config");
    start.prefs.clipRows.set(5);
    EXPECT_EQ(text(std::string(path) + ".damaged"), "{broken");
    EXPECT_EQ(onDisk().at("clipRows"), 5);
}

TEST_F(PrefsTest, aFolderInItsPlaceIsMovedAsideAndAnUnwritableOneTold) {
    platform.files.file(std::string(path) + "/inside", "kept");
    {
        Start start(platform);
        start.prefs.clipRows.set(4);
        EXPECT_EQ(onDisk().at("clipRows"), 4);
    }
    platform.files.forbid("/config");
    Start start(platform);
    start.prefs.clipRows.set(5);
    EXPECT_EQ(start.prefs.clipRows(), 5); // it counts all the same
    EXPECT_THAT(text("/data/tessarine.log"), HasSubstr("/config/preferences.json"));
    platform.files.allow("/config");
    EXPECT_EQ(onDisk().at("clipRows"), 4);
}

/// A run that follows the file, and what it was told of.
class EditedPrefsTest : public PrefsTest {
protected:
    void begin(const std::string& text) {
        platform.files.file(path, text);
        start.emplace(platform);
        start->store.follow(platform.watcher);
        changes = start->prefs.onChange([this](std::string_view key) { told.emplace_back(key); });
        platform.time.settle();
    }

    void edit(const std::string& text) {
        platform.files.file(path, text);
        look();
    }

    /// What the watcher tells of anything in the folder.
    void look() {
        platform.watcher.fire("/config");
        platform.time.advance(Seconds{0.5});
    }

    const std::string marks = R"("clipSyncDeviceID": "d", "didUnhideFooter2026_09_10": true)";
    std::optional<Start> start;
    Subscription changes;
    std::vector<std::string> told;
};

TEST_F(EditedPrefsTest, anEditCountsAtOnceAndTellsOnlyWhatItChanged) {
    begin("{" + marks + R"(, "resultRows": 5, "width": "wide", "favorites": ["x"]})");
    std::int64_t rowsWhenTold = 0;
    const auto watch = start->prefs.onChange([&](std::string_view key) {
        if (key == "mode")
            rowsWhenTold = start->prefs.resultRows();
    });
    edit("{" + marks + R"(, "resultRows": 7, "mode": "dark", "favorites": ["x"], "mine": 1,
        "resultOrder": ["files", "apps"], "builtinKeywordsDisabled": ["slack"], "emptyMode": "hologram"})");
    EXPECT_THAT(told,
                testing::UnorderedElementsAre(
                    "builtinKeywordsDisabled", "mode", "resultOrder", "resultRows", "width"));
    EXPECT_EQ(start->prefs.resultRows(), 7);
    EXPECT_EQ(rowsWhenTold, 7) << "all are read before any is told";
    EXPECT_EQ(start->prefs.width(), PanelWidth::standard) << "taken away: the default";
    EXPECT_EQ(start->prefs.resultOrder().size(), Prefs::defaultOrder().size());
    EXPECT_FALSE(start->prefs.keywords().isEnabled(BuiltinKeyword::slack));
    look(); // something else in the folder
    EXPECT_EQ(told.size(), 5u);
}

TEST_F(EditedPrefsTest, ownSavesAreNoEdits) {
    begin("{" + marks + "}");
    start->prefs.resultRows.set(4);
    platform.watcher.fire("/config"); // told of a change before it is saved, and after
    start->prefs.resultRows.set(5);
    look();
    EXPECT_EQ(start->prefs.resultRows(), 5);
    EXPECT_THAT(told, ElementsAre("resultRows", "resultRows"));
    EXPECT_EQ(onDisk().at("resultRows"), 5);
}

TEST_F(EditedPrefsTest, aSaveLeavesAnEditThatWasNotSeenYet) {
    begin("{" + marks + R"(, "clipRows": 3, "width": "wide"})");
    // Without a word from the watcher: a desktop may have run out of watches.
    platform.files.file(path, "{" + marks + R"(, "clipRows": 6, "hiddenApps": ["a"]})");
    start->prefs.resultRows.set(4);
    const auto stored = onDisk();
    EXPECT_EQ(stored.at("clipRows"), 6);
    EXPECT_EQ(stored.at("hiddenApps").size(), 1u);
    EXPECT_EQ(stored.at("resultRows"), 4);
    EXPECT_FALSE(stored.contains("width"));
    EXPECT_EQ(start->prefs.clipRows(), 6) << "the save has found it";
    EXPECT_THAT(told, ElementsAre("resultRows", "clipRows", "hiddenApps", "width"));
    // Of two that change one key, the later one counts.
    platform.files.file(path, "{" + marks + R"(, "resultRows": 8})");
    start->prefs.resultRows.set(2);
    EXPECT_EQ(onDisk().at("resultRows"), 2);
    EXPECT_EQ(start->prefs.resultRows(), 2);
}

TEST_F(EditedPrefsTest, aFileThatDoesNotParseKeepsWhatStands) {
    begin("{" + marks + R"(, "resultRows": 5})");
    const std::string broken = "{" + marks + R"(, "resultRows": 7,)";
    edit(broken);
    look();
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(start->prefs.resultRows(), 5);
    const auto log = text("/data/tessarine.log");
    const auto line = log.find("is no JSON object; what stood before counts");
    ASSERT_NE(line, std::string::npos);
    EXPECT_EQ(log.find("is no JSON object", line + 1), std::string::npos) << "one line";
    start->prefs.clipRows.set(2);
    EXPECT_EQ(text(std::string(path) + ".damaged"), broken);
    EXPECT_EQ(onDisk().at("resultRows"), 5) << "all that stood is there again";
    platform.files.forbid(path); // nor does one that can't be read at all take anything away
    look();
    EXPECT_EQ(start->prefs.resultRows(), 5);
    platform.files.allow(path);
    edit("{" + marks + R"(, "resultRows": 7})");
    EXPECT_EQ(start->prefs.resultRows(), 7);
}

TEST_F(EditedPrefsTest, anEditorMaySaveByRename) {
    begin("{" + marks + R"(, "resultRows": 5})");
    // The old file moved away first, as some editors do: for a moment there is none.
    platform.files.rename(path, std::string(path) + "~");
    platform.watcher.fire("/config");
    platform.time.settle();
    platform.files.file("/config/.new", "{" + marks + R"(, "resultRows": 7})");
    platform.files.rename("/config/.new", path);
    look();
    EXPECT_EQ(start->prefs.resultRows(), 7);
    EXPECT_THAT(told, ElementsAre("resultRows")) << "never the default in between";
    platform.files.remove(path);
    look();
    EXPECT_EQ(start->prefs.resultRows(), 9) << "a file that is gone sets nothing";
    EXPECT_NE(start->prefs.clipSyncDeviceID(), "");
    EXPECT_FALSE(onDisk().contains("resultRows"));
}

TEST_F(EditedPrefsTest, aChangeWhoseSaveFailedIsSavedWithTheNext) {
    begin("{" + marks + R"(, "resultRows": 5})");
    platform.files.forbid("/config");
    start->prefs.resultRows.set(6);
    platform.time.settle();
    platform.files.allow("/config");
    look(); // the file still has the old value, but nobody edited it
    EXPECT_EQ(start->prefs.resultRows(), 6);
    start->prefs.clipRows.set(2);
    EXPECT_EQ(onDisk().at("resultRows"), 6);
}

TEST_F(EditedPrefsTest, aLinkedFileIsFollowedToWhereItLies) {
    platform.files.file("/dotfiles/tessarine.json", "{" + marks + "}");
    platform.files.link(path, "/dotfiles/tessarine.json");
    start.emplace(platform);
    start->store.follow(platform.watcher);
    platform.files.file("/dotfiles/tessarine.json", "{" + marks + R"(, "resultRows": 7})");
    platform.watcher.fire("/dotfiles");
    platform.time.advance(Seconds{0.5});
    EXPECT_EQ(start->prefs.resultRows(), 7);
}

} // namespace
} // namespace tessarine
