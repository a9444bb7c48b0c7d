#include "launcherapp/shell/modes/CommandModes.h"

#include "launcherapp/commands/ListCommands.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/modes/Modes.h"
#include "tests/launcherapp/commands/CommandFixture.h"
#include "tests/launcherapp/commands/CommandOffer.h"
#include "tests/launcherapp/shell/modes/ModeRun.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using Words = std::vector<std::string>;

/// A run of the program with these words and this commands file.
class CommandRun {
public:
    CommandRun(Words words, const std::string& file)
        : mode(services, *model, std::move(words), &commands) {
        fixture.services.platform.files.file(CommandOffer::path, file);
        fixture.services.startCatalog();
        fixture.runtime.system = [this](SystemAction action) { offer.system.run(action); };
        Modes::schedule(mode.context);
    }

    void pass(double seconds) { fixture.services.platform.time.advance(Seconds{seconds}); }

    CommandFixture fixture;
    FakeServices& services = fixture.services;
    CommandOffer offer{services};
    ListCommands lists{{.queue = services.platform.queue,
                        .runtime = fixture.runtime,
                        .programs = services.platform.programs,
                        .work = services.platform.work,
                        .diagnostics = services.diagnostics}};
    CommandModeServices commands{.store = offer.store,
                                 .catalog = offer.catalog,
                                 .runtime = fixture.runtime,
                                 .lists = lists,
                                 .probe =
                                     [this](const std::string& bundleID,
                                            const std::vector<std::string>& names,
                                            const std::function<void(std::string)>& told) {
                                         probed.push_back(bundleID);
                                         std::ranges::copy(names, std::back_inserter(probed));
                                         told(probeLine);
                                     },
                                 .isSettled = [this] { return isSettled; }};
    std::unique_ptr<SearchModel> model = services.makeModel();
    std::vector<std::string> probed; ///< the application and the names
    std::string probeLine = "PRESSED: One";
    bool isSettled = true;
    ModeRun mode;
    std::vector<std::string>& lines = mode.lines;
    std::optional<int>& status = mode.status;
};

constexpr auto file = R"({"version": 1, "commands": [
    {"id": "one", "name": "Two", "keyword": "three", "kind": "script", "script": "1"},
    {"id": "two", "name": "Other", "aliases": ["FOUR", "one"], "kind": "script", "script": "2"},
    {"id": "x3", "name": "Größe", "keyword": "Two", "kind": "script", "script": "3"},
    {"id": "f", "name": "Docs", "kind": "files"},
    {"id": "l", "name": "List", "kind": "list", "script": "5"},
    {"id": "away", "name": "Away", "kind": "system", "action": "lockScreen"}]})";

TEST(CommandModes, aCommandIsFoundByIdThenNameThenKeywordThenAlias) {
    const struct {
        const char* name;
        const char* script;
        const char* reason;
    } cases[] = {
        {"one", "1", "an id before an alias"},
        {"two", "2", "an id before names"},
        {"Two", "1", "a name before a keyword; ids are exact"},
        {"GRÖSSE", nullptr, "lower case is no folding"},
        {"gröSSe", nullptr, "nor is it of this"},
        {"GRÖßE", "3", "a name in another case"},
        {"THREE", "1", "a keyword"},
        {"four", "2", "an alias"},
    };

    for (const auto& [name, script, reason] : cases) {
        SCOPED_TRACE(reason);
        CommandRun run({"--run", name, "--arg", "--x"}, file);
        run.pass(0.29);
        EXPECT_THAT(run.fixture.started(), IsEmpty());
        run.pass(0.02);
        if (!script) {
            EXPECT_EQ(run.status, 2);
            continue;
        }
        ASSERT_THAT(run.fixture.started(), SizeIs(1));
        EXPECT_THAT(run.fixture.started()[0]->spec.arguments,
                    ElementsAre("/bin/bash", "-c", script, "launcher", "--x"));
        run.pass(0.38);
        EXPECT_EQ(run.status, std::nullopt) << "what was handed over is to be on its way";
        run.pass(0.02);
        EXPECT_EQ(run.status, 0);
        EXPECT_THAT(run.lines, ElementsAre("RAN: \"" + std::string(name) + "\" (script)"));
    }
}

TEST(CommandModes, whatCannotBeRunIsSaid) {
    const std::string list = " is a live search mode in the panel, not a one-shot action. Use "
                             "--search instead.";

    const struct {
        Words words;
        int status;
        std::string line;
    } cases[] = {
        {{"--run", "none"}, 2, "NOT_FOUND: no command matched \"none\""},
        {{"--run", ""}, 2, "NOT_FOUND: no command matched \"\""},
        {{"--run", "docs"}, 4, "NOT_RUNNABLE: \"docs\" (kind: files)" + list},
        {{"--run", "List"}, 4, "NOT_RUNNABLE: \"List\" (kind: list)" + list},
        {{"--run", "sleep"}, 0, "RAN: \"sleep\" (system)"},
        {{"--run", "lock screen"}, 0, "RAN: \"lock screen\" (system)"},
    };

    for (const auto& [words, status, line] : cases) {
        CommandRun run(words, file);
        run.pass(1);
        EXPECT_EQ(run.status, status);
        EXPECT_THAT(run.lines, ElementsAre(line));
        EXPECT_THAT(run.fixture.started(), IsEmpty());
    }
}

TEST(CommandModes, aBrokenFileIsSaidBeforeAll) {
    CommandRun run({"--run", "one"}, "{\"commands\": [");
    run.pass(1);
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.lines,
                ElementsAre(StartsWith("commands.json parse error: "), HasSubstr("NOT_FOUND: ")));

    CommandRun machine({"--run", "sleep"}, "{\"commands\": [");
    machine.pass(1);
    EXPECT_EQ(machine.status, 0) << "what needs no file runs without one";
    EXPECT_THAT(machine.offer.effects.performed, ElementsAre(SystemAction::sleep));
}

TEST(CommandModes, aRunEndsWhenWhatItStartedIsHandedOver) {
    CommandRun run({"--run", "one"}, file);
    run.isSettled = false;
    run.pass(5);
    EXPECT_EQ(run.status, std::nullopt);
    run.isSettled = true;
    run.pass(0.3);
    EXPECT_EQ(run.status, std::nullopt) << "what was started last is to be on its way";
    run.pass(0.6);
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.lines, ElementsAre("RAN: \"one\" (script)"));

    CommandRun hanging({"--run", "one"}, file);
    hanging.isSettled = false;
    hanging.pass(16);
    EXPECT_EQ(hanging.status, 0);
    EXPECT_THAT(hanging.lines,
                ElementsAre("RAN: \"one\" (script)", HasSubstr("still under way after 15 s")));
}

TEST(CommandModes, theFileIsReadOnceWhoeverBegins) {
    CommandRun run({"--run", "one"}, file);
    run.offer.store.start();
    run.pass(0.2);
    const auto reads = run.services.platform.files.reads;
    run.pass(0.2);
    EXPECT_EQ(run.services.platform.files.reads, reads);
    EXPECT_THAT(run.fixture.started(), SizeIs(1));
}

TEST(CommandModes, aProbePressesTheNamesThatFollowUpToTheNextFlag) {
    CommandRun run({"--jump-press-probe", "org.x.App", "File", "Save as", "--demo"}, file);
    run.pass(0.31);
    EXPECT_THAT(run.probed, ElementsAre("org.x.App", "File", "Save as"));
    EXPECT_THAT(run.lines, ElementsAre("PRESSED: One"));
    EXPECT_EQ(run.status, 0);

    CommandRun twice({"--run", "none", "--arg", "A", "--jump-press-probe", "A", "B"}, file);
    twice.pass(0.31);
    EXPECT_THAT(twice.probed, ElementsAre("A", "B")) << "the names follow the flag, not the word";

    CommandRun failing({"--jump-press-probe", "org.x.App", "File"}, file);
    failing.probeLine = "NOT PRESSED: could not find File";
    failing.pass(0.31);
    EXPECT_EQ(failing.status, 1);
}

} // namespace
} // namespace tessarine
