#include "launcherapp/query/rows/WindowRows.h"

#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class WindowRowsTest : public testing::Test {
protected:
    std::vector<ResultRow> rows(std::string_view query) { return windowRows(sources, query); }

    /// Presses Return on the only row.
    ResultRow run(std::string_view query) {
        auto found = rows(query);
        EXPECT_THAT(found, SizeIs(1)) << query;
        found.at(0).primary();
        return found.at(0);
    }

    Keywords keywords;
    std::vector<std::string> done;
    std::vector<QuittableApp> apps{{"Browser", "org.b"}, {"Editor", "org.e"}};
    int listings = 0;
    std::optional<std::string> movingProblem;
    std::optional<std::string> quittingProblem;
    WindowRowSources sources{
        .keywords = keywords,
        .movingProblem = [this] { return movingProblem; },
        .apply = [this](WindowVerb verb) { done.emplace_back(WindowVerbs::name(verb)); },
        .setUp = [this] { done.emplace_back("set up"); },
        .quittingProblem = [this] { return quittingProblem; },
        .runningApps =
            [this](std::string_view query) {
                ++listings;
                std::vector<QuittableApp> found;
                for (const auto& app : apps) {
                    if (app.name.find(query) != std::string::npos)
                        found.push_back(app);
                }
                return found;
            },
        .quit = [this](const QuittableApp& app) { done.push_back("quit " + app.bundleID); },
        .forceQuit = [this](const QuittableApp& app) { done.push_back("kill " + app.bundleID); }};
};

TEST_F(WindowRowsTest, eachVerbAnswersToItsWordAlone) {
    const struct {
        const char* query;
        const char* id;
        const char* title;
        const char* symbol;
    } cases[] = {
        {"left", "win:left", "Left half", "rectangle.lefthalf.filled"},
        {"right", "win:right", "Right half", "rectangle.righthalf.filled"},
        {"top", "win:top", "Top half", "rectangle.tophalf.filled"},
        {"bottom", "win:bottom", "Bottom half", "rectangle.bottomhalf.filled"},
        {"Max", "win:max", "Maximize", "rectangle.fill"},
        {"center", "win:center", "Center", "rectangle.center.inset.filled"},
        {"display", "win:display", "Next display", "macwindow.on.rectangle"},
    };

    for (const auto& [query, id, title, symbol] : cases) {
        SCOPED_TRACE(query);
        done.clear();
        const auto row = run(query);
        EXPECT_EQ(row.id, id);
        EXPECT_EQ(row.title, title);
        EXPECT_EQ(row.symbol, symbol);
        EXPECT_EQ(row.subtitle, "the front window");
        EXPECT_EQ(row.group, "commands");
        EXPECT_THAT(done, ElementsAre(row.id.substr(4)));
    }

    for (const auto* query : {"", "lef", "left x", "leftover", "maximize"})
        EXPECT_THAT(rows(query), IsEmpty()) << query;
    EXPECT_EQ(listings, 0); // the desktop is asked for the words that need it alone
    keywords.setWord(BuiltinKeyword::windowLeft, "west");
    EXPECT_THAT(rows("left"), IsEmpty());
    EXPECT_EQ(run("west").id, "win:left");
}

TEST_F(WindowRowsTest, whatTheDesktopCannotDoIsSaidBeforeReturn) {
    movingProblem = "this desktop lets no program move another's windows";
    const auto verb = run("left");
    EXPECT_EQ(verb.subtitle, *movingProblem);
    EXPECT_EQ(verb.primaryLabel, "set up");
    EXPECT_THAT(done, ElementsAre("set up"));

    quittingProblem = "this desktop doesn't tell which programs run";
    const auto quit = run("kill something");
    EXPECT_EQ(quit.kind, RowKind::hint);
    EXPECT_EQ(quit.title, "Force quit an app");
    EXPECT_EQ(quit.subtitle, *quittingProblem);
    EXPECT_THAT(done, SizeIs(1));
}

TEST_F(WindowRowsTest, applicationsAreQuitByName) {
    const auto quit = run("quit Edit");
    EXPECT_EQ(quit.id, "quit:org.e");
    EXPECT_EQ(quit.title, "Quit Editor");
    EXPECT_EQ(quit.symbol, "power");
    EXPECT_EQ(quit.group, "commands");
    const auto kill = run("kill Edit");
    EXPECT_EQ(kill.title, "Force quit Editor");
    EXPECT_EQ(kill.id.substr(0, 5), "quit:");
    EXPECT_NE(kill.id, quit.id); // what was learned of one says nothing of the other
    EXPECT_THAT(done, ElementsAre("quit org.e", "kill org.e"));
    EXPECT_THAT(rows("quit nothing"), IsEmpty());

    apps.assign(quitRowLimit + 5, {"Many", "org.m"});
    EXPECT_THAT(rows("quit"), SizeIs(quitRowLimit));
}

TEST_F(WindowRowsTest, returnOnABareWordMovesAWindowAndEndsNothing) {
    FakeServices services;
    const auto model = services.makeModel();
    model->families.windows = [this](std::string_view query) { return rows(query); };
    const auto first = [&](const std::string& query) {
        model->setQuery(query);
        return model->rows().empty() ? "" : model->rows().front().id;
    };
    EXPECT_EQ(first("left"), "win:left");
    EXPECT_EQ(first("kill Ed"), "quit:force:org.e");
    for (int use = 0; use < 5; ++use)
        model->runSelected();
    EXPECT_EQ(first("kill"), "keyword:forceQuit"); // however often its rows were used
    EXPECT_EQ(first("kill "), "keyword:forceQuit");
    EXPECT_THAT(model->rows(), SizeIs(3));
}

} // namespace
} // namespace tessarine
