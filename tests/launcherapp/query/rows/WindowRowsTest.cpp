#include "launcherapp/query/rows/WindowRows.h"

#include "LauncherCore/text/Folding.h"
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
    std::optional<std::string> killingProblem;
    std::optional<std::string> quittingGap;
    WindowRowSources sources{
        .keywords = keywords,
        .movingProblem = [this] { return movingProblem; },
        .apply = [this](WindowVerb verb) { done.emplace_back(WindowVerbs::name(verb)); },
        .quittingProblem = [this] { return quittingProblem; },
        .killingProblem = [this] { return killingProblem; },
        .quittingGap = [this] { return quittingGap; },
        .runningApps = [this]() -> std::span<const QuittableApp> {
            ++listings;
            return apps;
        },
        .quit = [this](const QuittableApp& app) { done.push_back("quit " + app.bundleID); },
        .forceQuit = [this](const QuittableApp& app) { done.push_back("kill " + app.bundleID); }};
};

TEST_F(WindowRowsTest, eachVerbAnswersToItsWordAlone) {
    for (const auto* query : {"left", "right", "top", "bottom", "Max", "center", "display"}) {
        SCOPED_TRACE(query);
        done.clear();
        const auto row = run(query);
        EXPECT_EQ(row.id, "win:" + Folding::lowercase(query));
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
    const auto verb = rows("left").at(0);
    EXPECT_EQ(verb.kind, RowKind::hint);
    EXPECT_EQ(verb.title, "Left half");
    EXPECT_EQ(verb.subtitle, *movingProblem);

    quittingProblem = "this desktop doesn't tell which programs run";
    const auto quit = rows("kill something").at(0);
    EXPECT_EQ(quit.kind, RowKind::hint);
    EXPECT_EQ(quit.title, "Force quit an app");
    EXPECT_EQ(quit.subtitle, *quittingProblem);

    quittingProblem.reset();
    killingProblem = "this desktop doesn't tell whose process a window is";
    EXPECT_EQ(rows("kill Edit").at(0).kind, RowKind::hint);
    EXPECT_EQ(rows("kill Edit").at(0).subtitle, *killingProblem);
    EXPECT_EQ(run("quit Edit").id, "quit:org.e"); // which asks a window alone

    killingProblem.reset();
    quittingGap = "windows of some kind are not read";
    const auto some = rows("kill Edit");
    ASSERT_THAT(some, SizeIs(2));
    EXPECT_EQ(some[1].kind, RowKind::hint);
    EXPECT_EQ(some[1].subtitle, *quittingGap);
    EXPECT_LT(some[1].score, some[0].score);
}

TEST_F(WindowRowsTest, whatElseWouldEndIsSaidBeforeReturn) {
    apps = {{"Letter", "org.l", {"Sheet", "Slides"}}, {"Sheet", "org.s"}, {"Sheet", "com.s"}};
    EXPECT_EQ(rows("kill letter").at(0).subtitle, "also ends Sheet, Slides");
    EXPECT_EQ(rows("quit letter").at(0).subtitle, "") << "its windows are asked, and no others";
    const auto twins = rows("quit sheet");
    ASSERT_THAT(twins, SizeIs(2));
    EXPECT_EQ(twins[0].subtitle, "org.s");
    EXPECT_EQ(twins[1].subtitle, "com.s");
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
