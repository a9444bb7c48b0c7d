#include "launcherapp/shell/modes/SearchMode.h"

#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/modes/CommandModes.h"
#include "launcherapp/shell/modes/Modes.h"
#include "tests/launcherapp/shell/WiredCommands.h"
#include "tests/launcherapp/shell/modes/ModeRun.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto listFile = R"({"version": 1, "commands": [
    {"id": "br", "name": "Branches", "keyword": "br", "kind": "list", "script": "x"}]})";

class SearchModeTest : public testing::Test {
protected:
    void schedule() {
        services.catalog.start();
        Modes::schedule(run.context);
    }

    FakeServices services;
    std::unique_ptr<SearchModel> model = services.makeModel();
    ModeRun run{services, *model, {"--search", "pad"}};
};

TEST_F(SearchModeTest, printsOneObjectARowOnceTheServicesHaveSettled) {
    services.install("a", "Launch \"Pad\" \\ café");
    services.install("b", "Pad");
    schedule();
    services.platform.time.advance(Seconds{2.4});
    EXPECT_EQ(run.status, std::nullopt);
    services.platform.time.advance(Seconds{0.2});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(
        run.lines,
        ElementsAre(
            R"({"id":"/usr/share/applications/b.desktop","kind":"app","group":"apps","title":"Pad","subtitle":""})",
            R"({"id":"/usr/share/applications/a.desktop","kind":"app","group":"apps","title":"Launch \"Pad\" \\ café","subtitle":""})"));
}

TEST_F(SearchModeTest, nothingOnTheMachineIsNoFailure) {
    schedule();
    services.platform.time.advance(Seconds{3});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.lines, ElementsAre(HasSubstr(R"("id":"web")")));
}

TEST_F(SearchModeTest, waitsForASlowDiskAndSaysSoWhenItNeverAnswers) {
    services.install("b", "Pad");
    services.platform.work.duration = Seconds{10};
    schedule();
    services.platform.time.advance(Seconds{10.1});
    EXPECT_EQ(run.lines.size(), 1u);

    FakeServices slow;
    slow.platform.work.duration = Seconds{100};
    const auto slowModel = slow.makeModel();
    ModeRun slowRun{slow, *slowModel, {"--search", "pad"}};
    slow.catalog.start();
    Modes::schedule(slowRun.context);
    slow.platform.time.advance(Seconds{18});
    EXPECT_EQ(slowRun.status, 0);
    EXPECT_THAT(slowRun.lines,
                ElementsAre(HasSubstr(R"({"note":"NOT MEASURED: )"), HasSubstr(R"("id":"web")")));
}

TEST(SearchModeOfCommands, theCommandsAreReadAndAListsScriptIsWaitedFor) {
    const struct {
        const char* reason;
        bool answers;
        Seconds until;
        std::vector<const char*> shown;
    } cases[] = {
        {"its rows came", true, Seconds{0.1}, {"\"title\":\"main\""}},
        {"it prints nothing for ever",
         false,
         Seconds{16},
         {"the command's script still runs", "Its script is running"}},
    };

    for (const auto& [reason, answers, until, shown] : cases) {
        SCOPED_TRACE(reason);
        WiredCommands wired;
        auto& platform = wired.services.platform;
        wired.offer.services.platform.files.file(CommandOffer::path, listFile);
        const CommandModeServices commands{.store = wired.offer.store,
                                           .catalog = wired.offer.catalog,
                                           .runtime = wired.fixture.runtime,
                                           .lists = wired.lists,
                                           .probe = {},
                                           .isSettled = {}};
        ModeRun run{wired.services, wired.model, {"--search", "br x"}, &commands};
        SearchMode::run(run.context, "br x");
        ASSERT_EQ(platform.programs.started.size(), 1u);
        EXPECT_EQ(run.status, std::nullopt);
        if (answers)
            platform.programs.started[0]->end({.output = R"([{"title": "main"}])"});
        platform.time.advance(until);
        EXPECT_EQ(run.status, 0);
        ASSERT_EQ(run.lines.size(), shown.size());
        for (std::size_t i = 0; i < shown.size(); ++i)
            EXPECT_THAT(run.lines[i], HasSubstr(shown[i]));
    }
}

} // namespace
} // namespace tessarine
