#include "launcherapp/commands/CommandStore.h"

#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/hotkeys/Hotkey.h"
#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr auto path = "/home/u/.local/share/tessarine/commands.json";
constexpr auto folder = "/home/u/.local/share/tessarine";

std::string fileWith(const std::string& commands) {
    return R"({"version": 1, "commands": [)" + commands + "]}";
}

const auto alpha = fileWith(R"({"id": "a", "name": "Alpha", "kind": "files", "hotkey": "cmd+1"})");
const auto beta = fileWith(R"({"id": "b", "name": "Beta", "kind": "files"},
                              {"id": "n", "name": "N", "kind": "teleport"})");

struct Store {
    FakeServices services;
    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey{{.registrar = registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    std::vector<std::string> shown;
    std::vector<std::string> ran;
    CommandHotkeys hotkeys{
        {.hotkey = [this] { return &hotkey; },
         .usage = services.usage,
         .diagnostics = services.diagnostics},
        {.showPanel = [this](const std::string& query) { shown.push_back(query); },
         .run = [this](const CommandSpec& command) { ran.push_back(command.id); }}};
    std::shared_ptr<FileStore> files{std::shared_ptr<void>(), &services.platform.files};
    CommandStore store{{.queue = services.platform.queue,
                        .work = services.platform.work,
                        .files = files,
                        .directories = services.platform.watcher,
                        .prefs = services.prefs,
                        .diagnostics = services.diagnostics,
                        .hotkeys = hotkeys,
                        .environment = services.environment},
                       folder,
                       CommandStore::Content::file};
    int changes = 0;
    Subscription changed = store.onChange([this] { ++changes; });

    void write(const std::string& text, double date) {
        services.platform.files.now = date;
        services.platform.files.file(path, text);
    }

    void startWith(const std::string& text) {
        write(text, 1);
        store.start();
        services.platform.time.settle();
    }

    /// As long as a reload may take.
    void wait() { services.platform.time.advance(Seconds{1.3}); }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& command : store.file().commands)
            names.push_back(command.name);
        return names;
    }

    std::string onDisk() { return services.platform.files.read(path, 1 << 20).value_or(""); }
};

TEST(CommandStore, aFirstRunWritesTheStarterFile) {
    Store fixture;
    fixture.store.start();
    fixture.services.platform.time.settle();
    EXPECT_EQ(fixture.store.file(), CommandFile::starter());
    EXPECT_EQ(fixture.onDisk(), CommandFile::starter().encoded());
    EXPECT_EQ(fixture.changes, 1);
}

TEST(CommandStore, whateverChangesTheFileIsSeenWithinASecond) {
    const struct {
        const char* reason;
        Seconds patience; ///< the folder is quicker than the poll
        std::function<void(Store&)> change;
    } cases[] = {
        {"a sync program tells nobody: the date is looked at",
         Seconds{1.3},
         [](Store& fixture) { fixture.write(beta, 2); }},
        {"an editor saves by renaming, and the folder tells",
         Seconds{0.31},
         [](Store& fixture) {
             fixture.services.platform.files.now = 2;
             fixture.services.platform.files.file(std::string(folder) + "/.new", beta);
             fixture.services.platform.files.rename(std::string(folder) + "/.new", path);
             fixture.services.platform.watcher.fire(folder);
         }},
        {"the date goes back, as when a copy is restored",
         Seconds{1.3},
         [](Store& fixture) { fixture.write(beta, 0.5); }},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        Store fixture;
        fixture.startWith(alpha);
        each.change(fixture);
        fixture.services.platform.time.advance(each.patience);
        EXPECT_THAT(fixture.names(), ElementsAre("Beta"));
    }
}

TEST(CommandStore, aFileThatDidNotChangeIsNotReadAgain) {
    Store fixture;
    fixture.startWith(alpha);
    const auto reads = fixture.services.platform.files.reads;
    fixture.services.platform.time.advance(Seconds{60});
    fixture.services.platform.watcher.fire(folder); // some other file of the folder
    fixture.wait();
    EXPECT_EQ(fixture.services.platform.files.reads, reads);
    EXPECT_EQ(fixture.changes, 1);
}

TEST(CommandStore, aBadSaveTakesNoCommandAwayAndMendingItClearsTheLine) {
    Store fixture;
    fixture.startWith(alpha);
    fixture.write("{\"commands\": [", 2);
    fixture.wait();
    EXPECT_THAT(fixture.names(), ElementsAre("Alpha"));
    EXPECT_THAT(fixture.store.problems(),
                ElementsAre(testing::StartsWith("commands.json parse error: ")));
    EXPECT_THAT(fixture.services.log(), HasSubstr("commands.json did not parse: "));
    EXPECT_THAT(fixture.registrar.held, SizeIs(1)) << "the hotkeys stay too";
    EXPECT_THROW(fixture.store.save(fixture.store.file()), FileError)
        << "what the user is writing is not written over";
    EXPECT_EQ(fixture.onDisk(), "{\"commands\": [");

    fixture.services.platform.files.remove(path);
    fixture.wait();
    EXPECT_THAT(fixture.names(), ElementsAre("Alpha"));
    EXPECT_THAT(fixture.store.problems(), ElementsAre(HasSubstr("there is no file")));

    fixture.write(beta, 3);
    fixture.wait();
    EXPECT_THAT(fixture.names(), ElementsAre("Beta"));
    EXPECT_EQ(fixture.store.error(), std::nullopt);
}

TEST(CommandStore, whatANewerVersionWroteIsToldAndKeptThroughASave) {
    Store fixture;
    fixture.startWith(beta);
    EXPECT_THAT(fixture.store.problems(),
                ElementsAre("1 command from a newer Tessarine, kept but not usable until this Mac "
                            "updates"));
    fixture.services.platform.files.now = 2; // so that the save has a date of its own
    fixture.store.setHotkey(Chord::parse("cmd+2"), "b");
    EXPECT_THAT(fixture.onDisk(), HasSubstr("teleport"));
    EXPECT_THAT(fixture.onDisk(), HasSubstr("\"hotkey\": \"cmd+2\""));
    EXPECT_THAT(fixture.hotkeys.registered(), ElementsAre(Pair("b", *Chord::parse("cmd+2"))));
    const auto changes = fixture.changes;
    fixture.services.platform.watcher.fire(folder);
    fixture.wait();
    EXPECT_EQ(fixture.changes, changes) << "our own save is no change";

    fixture.store.setHotkey(std::nullopt, "b");
    EXPECT_THAT(fixture.onDisk(), testing::Not(HasSubstr("hotkey")));
    EXPECT_THAT(fixture.registrar.held, IsEmpty());
}

TEST(CommandStore, whatWasNeverReadIsNotWrittenOver) {
    Store fixture;
    fixture.write(beta, 1);
    fixture.store.start(); // reads in the background, which has not run yet
    fixture.store.setHotkey(Chord::parse("cmd+2"), "b");
    EXPECT_THAT(fixture.onDisk(), testing::AllOf(HasSubstr("teleport"), HasSubstr("cmd+2")));
    fixture.services.platform.time.settle();
    EXPECT_EQ(fixture.store.file().commands.front().hotkey, "cmd+2") << "the older look is dropped";
}

TEST(CommandStore, aDemonstrationTouchesNoFile) {
    Store fixture;
    fixture.write(alpha, 1);
    CommandStore demonstration{{.queue = fixture.services.platform.queue,
                                .work = fixture.services.platform.work,
                                .files = fixture.files,
                                .directories = fixture.services.platform.watcher,
                                .prefs = fixture.services.prefs,
                                .diagnostics = fixture.services.diagnostics,
                                .hotkeys = fixture.hotkeys,
                                .environment = fixture.services.environment},
                               folder,
                               CommandStore::Content::demonstration};
    demonstration.start();
    const auto id = demonstration.file().commands.front().id;
    demonstration.setHotkey(Chord::parse("cmd+2"), id);
    demonstration.relocate("/share");
    demonstration.load();
    EXPECT_EQ(demonstration.file().commands.front().hotkey, "cmd+2");
    EXPECT_EQ(fixture.onDisk(), alpha);
    EXPECT_FALSE(fixture.services.platform.files.info("/share/commands.json"));
}

TEST(CommandStore, aLinkedFolderIsTheSameFolder) {
    Store fixture;
    fixture.startWith(alpha);
    fixture.services.platform.files.link("/share", folder);
    fixture.store.relocate("/share/");
    EXPECT_EQ(fixture.onDisk(), alpha);
    EXPECT_THAT(fixture.names(), ElementsAre("Alpha"));
}

TEST(CommandStore, aSaveThatFailsChangesNothing) {
    Store fixture;
    fixture.startWith(alpha);
    fixture.services.platform.files.forbid(path);
    EXPECT_THROW(fixture.store.save({}), FileError);
    EXPECT_THAT(fixture.names(), ElementsAre("Alpha"));
    EXPECT_THAT(fixture.registrar.held, SizeIs(1));
}

TEST(CommandStore, aSharedFolderTakesTheFileAndAnExistingOneWins) {
    for (const bool isThere : {false, true}) {
        SCOPED_TRACE(isThere);
        Store fixture;
        fixture.startWith(alpha);
        if (isThere)
            fixture.services.platform.files.file("/share/commands.json", beta);
        fixture.services.platform.files.file(std::string(path) + ".moved", "old");
        fixture.store.relocate("/share");
        EXPECT_THAT(fixture.names(), ElementsAre(isThere ? "Beta" : "Alpha"));
        EXPECT_EQ(fixture.onDisk(), "");
        EXPECT_EQ(fixture.services.platform.files.read(std::string(path) + ".moved", 1 << 20),
                  alpha);
        EXPECT_EQ(fixture.services.prefs.commandsFilePath(), "/share/commands.json");
        fixture.store.relocate("/share"); // once more is no harm
        EXPECT_TRUE(fixture.services.platform.files.info("/share/commands.json"));
    }
    Store fixture;
    fixture.startWith(alpha);
    fixture.services.platform.files.folder("/share");
    fixture.services.platform.files.forbid("/share");
    EXPECT_THROW(fixture.store.relocate("/share"), FileError);
    EXPECT_EQ(fixture.onDisk(), alpha);
}

TEST(CommandHotkeys, eachChordIsTakenOnceAndARefusalIsTold) {
    Store fixture;
    const auto command = [](const char* id, const char* hotkey) {
        return CommandSpec{.id = id, .name = id, .kind = CommandKind::open, .hotkey = hotkey};
    };
    fixture.registrar.heldByOthers = {Chord::parse("cmd+9")->binding()};
    fixture.hotkeys.sync({command("one", "cmd+1"),
                          command("same", "⌘1"),
                          command("none", ""),
                          command("no", "cmd+"),
                          command("held", "cmd+9")});
    EXPECT_THAT(fixture.hotkeys.registered(), ElementsAre(Pair("one", *Chord::parse("cmd+1"))));
    EXPECT_THAT(fixture.hotkeys.failed(),
                ElementsAre(Pair("held", testing::StartsWith("⌘9 not registered: is held by")),
                            Pair("no", "cmd+ is not a chord"),
                            Pair("same", testing::StartsWith("⌘1 not registered: "))));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("command hotkeys: 1 registered failed: held (⌘9 not registered"));

    fixture.hotkeys.sync({command("same", "⌘1")});
    EXPECT_THAT(fixture.hotkeys.registered(), ElementsAre(Pair("same", *Chord::parse("cmd+1"))));
    EXPECT_THAT(fixture.registrar.held, SizeIs(1));
}

TEST(CommandStore, aHangingDriveCostsOneLookAtATime) {
    Store fixture;
    fixture.startWith(alpha);
    auto& work = fixture.services.platform.work;
    const auto before = work.submittedApart;
    work.apartDuration = Seconds{60};
    fixture.write(beta, 2);
    fixture.services.platform.time.advance(Seconds{30});
    EXPECT_EQ(work.submittedApart, before + 1);
    EXPECT_THAT(fixture.names(), ElementsAre("Alpha"));
    fixture.services.platform.time.advance(Seconds{32});
    EXPECT_THAT(fixture.names(), ElementsAre("Beta")) << "what came late still counts";
}

TEST(CommandStore, aLookThatOutlivesTheStoreIsDropped) {
    FakeServices services;
    CommandHotkeys hotkeys{{.hotkey = [] { return nullptr; },
                            .usage = services.usage,
                            .diagnostics = services.diagnostics},
                           {}};
    auto store = std::make_unique<CommandStore>(
        CommandStore::Services{.queue = services.platform.queue,
                               .work = services.platform.work,
                               .files = {std::shared_ptr<void>(), &services.platform.files},
                               .directories = services.platform.watcher,
                               .prefs = services.prefs,
                               .diagnostics = services.diagnostics,
                               .hotkeys = hotkeys,
                               .environment = services.environment},
        folder,
        CommandStore::Content::file);
    store->start();
    store.reset();
    services.platform.time.advance(Seconds{5});
    EXPECT_THAT(services.log(), testing::Not(HasSubstr("command hotkeys")));
}

TEST(CommandStore, aStarterThatCannotBeWrittenIsToldWithTheReason) {
    Store fixture;
    fixture.services.platform.files.forbid(path);
    fixture.store.start();
    fixture.services.platform.time.settle();
    ASSERT_THAT(fixture.store.problems(), SizeIs(1));
    EXPECT_THAT(fixture.store.problems()[0], testing::Not(HasSubstr("there is no file")));
    EXPECT_EQ(fixture.store.error(), std::nullopt) << "nothing of the user's could not be read";
    EXPECT_EQ(fixture.store.file(), CommandFile::starter());
}

TEST(CommandStore, aMoveThatCannotBeFinishedIsToldAndKeepsTheOldPlace) {
    Store fixture;
    fixture.startWith(alpha);
    fixture.services.platform.files.forbid(std::string(path) + ".moved");
    EXPECT_THROW(fixture.store.relocate("/share"), FileError);
    EXPECT_EQ(fixture.onDisk(), alpha);
    EXPECT_EQ(fixture.store.location(), path);
}

TEST(CommandStore, afterAMoveTheNewFolderIsWatched) {
    Store fixture;
    fixture.startWith(alpha);
    fixture.store.relocate("/share");
    fixture.services.platform.files.now = 9;
    fixture.services.platform.files.file("/share/commands.json", beta);
    fixture.services.platform.watcher.fire("/share");
    fixture.services.platform.time.advance(Seconds{0.31});
    EXPECT_THAT(fixture.names(), ElementsAre("Beta"));
}

TEST(CommandHotkeys, whatADesktopThatChoosesRefusesItMayGiveLater) {
    Store fixture;
    fixture.registrar.isChoosing = true;
    fixture.registrar.problem = "choose one there";
    fixture.hotkeys.sync(
        {{.id = "one", .name = "One", .kind = CommandKind::open, .hotkey = "cmd+1"}});
    EXPECT_THAT(fixture.hotkeys.failed(), ElementsAre(Pair("one", HasSubstr("choose one there"))));
    using Kind = HotkeyOutcome::Kind;
    fixture.registrar.settle(HotkeyIDs::firstCommand,
                             {.kind = Kind::refused, .reason = "the portal has gone"});
    EXPECT_THAT(fixture.hotkeys.failed(),
                ElementsAre(Pair("one", HasSubstr("the portal has gone"))));
    fixture.registrar.settle(HotkeyIDs::firstCommand, {.kind = Kind::registered});
    EXPECT_THAT(fixture.hotkeys.failed(), testing::IsEmpty());
    EXPECT_THAT(fixture.hotkeys.registered(), ElementsAre(Pair("one", *Chord::parse("cmd+1"))));
}

TEST(CommandHotkeys, theLogTellsApartWhatWaitsAndThenWhatBecameOfIt) {
    Store fixture;
    fixture.registrar.isChoosing = true;
    fixture.hotkeys.sync(
        {{.id = "one", .name = "One", .kind = CommandKind::open, .hotkey = "cmd+1"}});
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("command hotkeys: 0 registered waiting for the desktop: one\n"));
    fixture.registrar.settle(HotkeyIDs::firstCommand, {.kind = HotkeyOutcome::Kind::registered});
    EXPECT_THAT(fixture.services.log(), HasSubstr("command hotkeys: 1 registered\n"));
}

TEST(CommandHotkeys, aPressOnItsWayRunsNoOtherCommand) {
    Store fixture;
    const CommandSpec first{
        .id = "first", .name = "First", .kind = CommandKind::open, .hotkey = "cmd+1"};
    const CommandSpec second{
        .id = "second", .name = "Second", .kind = CommandKind::open, .hotkey = "cmd+2"};
    fixture.hotkeys.sync({first});
    const auto old = fixture.registrar.held.begin()->first;
    fixture.hotkeys.sync({second});
    EXPECT_NE(fixture.registrar.held.begin()->first, old) << "ids are not given out again";
}

TEST(CommandHotkeys, aPressRunsTheCommandOrAsksForItsArgument) {
    Store fixture;
    fixture.hotkeys.sync(
        {{.id = "run", .name = "Run", .kind = CommandKind::open, .hotkey = "cmd+1"},
         {.id = "ask",
          .name = "Ask",
          .keyword = "q",
          .kind = CommandKind::search,
          .hotkey = "cmd+2"}});
    fixture.registrar.press(Chord::parse("cmd+1")->binding(), Seconds{1});
    fixture.registrar.press(Chord::parse("cmd+2")->binding(), Seconds{2});
    EXPECT_THAT(fixture.ran, ElementsAre("run"));
    EXPECT_THAT(fixture.shown, ElementsAre("q "));
    EXPECT_GT(
        fixture.services.usage.log().frecency("cmd:run", fixture.services.platform.queue.now()), 0);
    EXPECT_GT(
        fixture.services.usage.log().frecency("cmd:ask", fixture.services.platform.queue.now()), 0);
}

} // namespace
} // namespace tessarine
