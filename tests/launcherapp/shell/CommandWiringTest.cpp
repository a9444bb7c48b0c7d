#include "launcherapp/shell/CommandWiring.h"

#include "tests/launcherapp/shell/WiredCommands.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class CommandWiringTest : public testing::Test {
protected:
    CommandWiringTest() {
        wired.offer.read(R"(
            {"id": "br", "name": "Branches", "keyword": "br", "kind": "list", "script": "x",
             "onSelect": "y"},
            {"id": "pdf", "name": "Papers", "aliases": ["pa"], "kind": "files",
             "extensions": ["pdf"]},
            {"id": "dir", "name": "Folders", "keyword": "fo", "kind": "files",
             "foldersOnly": true},
            {"id": "bare", "name": "Wordless", "kind": "list", "script": "x"},
            {"id": "away", "name": "Away", "kind": "system", "action": "sleep"})");
    }

    std::vector<std::string> titles(const std::string& query) {
        model.setQuery(query);
        std::vector<std::string> result;
        for (const auto& row : model.rows())
            result.push_back(row.title);
        return result;
    }

    /// Return on the row of this id.
    void choose(const std::string& id) {
        const auto& rows = model.rows();
        const auto found = std::ranges::find(rows, id, &ResultRow::id);
        ASSERT_NE(found, rows.end()) << id;
        model.select(static_cast<std::size_t>(found - rows.begin()));
        model.runSelected();
    }

    WiredCommands wired;
    SearchModel& model = wired.model;
    std::vector<std::shared_ptr<FakeProgramReader::Program>>& started = wired.fixture.started();
};

TEST_F(CommandWiringTest, thePanelIsGoneBeforeACommandRuns) {
    wired.fixture.runtime.system = [this](SystemAction) { wired.events.emplace_back("ran"); };
    model.setQuery("away");
    choose("cmd:away");
    EXPECT_THAT(wired.events, ElementsAre("hidden", "ran"));
}

TEST_F(CommandWiringTest, returnOnAFilteredSearchTypesItsWord) {
    model.setQuery("branches");
    choose("cmd:br");
    EXPECT_EQ(model.query(), "br ");
    EXPECT_EQ(model.engaged()->id, "br");
    EXPECT_TRUE(wired.services.usage.log().items.contains("cmd:br")) << "it is learned as any";

    model.setQuery("papers");
    choose("cmd:pdf");
    EXPECT_EQ(model.query(), "pa ") << "an alias, where there is no keyword";

    model.setQuery("wordless");
    EXPECT_THAT(model.rows().front().subtitle, HasSubstr("needs a keyword"));
    choose("cmd:bare");
    EXPECT_EQ(model.query(), "wordless");
    EXPECT_THAT(wired.events, IsEmpty()) << "the panel stays";
}

TEST_F(CommandWiringTest, aListComesWhenItsScriptHasPrintedWhileItIsWantedStill) {
    EXPECT_EQ(titles("br x"), std::vector<std::string>{"Branches"});
    EXPECT_EQ(model.rows().front().subtitle, "Its script is running");
    ASSERT_THAT(started, SizeIs(1));
    started[0]->end({.output = R"([{"title": "main", "arg": "m"}])"});
    wired.fixture.settle();
    ASSERT_THAT(model.rows(), SizeIs(1));
    EXPECT_EQ(model.rows().front().title, "main");
    choose("list:br:m");
    EXPECT_THAT(wired.events, ElementsAre("hidden"));
    ASSERT_THAT(started, SizeIs(2));
    EXPECT_THAT(started[1]->spec.arguments, ElementsAre("/bin/bash", "-c", "y", "launcher", "m"));

    model.setQuery("br z");
    ASSERT_THAT(started, SizeIs(3));
    model.setQuery("pa ");
    int recomputed = 0;
    const auto watch = model.onChange([&] { ++recomputed; });
    started[2]->end({.output = "[]"});
    wired.fixture.settle();
    EXPECT_EQ(recomputed, 0) << "another command has the list";
}

TEST_F(CommandWiringTest, aScriptThatCannotStartIsTriedOnceAndSaysWhy) {
    wired.services.platform.programs.missing = {"/bin/bash"};
    for (const auto* query : {"br ", "br a", "br ab"}) {
        model.setQuery(query);
        EXPECT_THAT(model.rows().front().subtitle, HasSubstr("could not start: /bin/bash "));
    }
    const auto log = wired.services.log();
    EXPECT_EQ(log.find("could not start"), log.rfind("could not start"));
}

TEST_F(CommandWiringTest, aFileSearchFindsWhatItsCommandAsksFor) {
    auto& files = wired.services.platform.files;
    files.file("/home/u/docs/report.pdf", "");
    files.file("/home/u/docs/report.txt", "");
    files.file("/home/u/docs/reports/notes.txt", "");
    wired.index.start();
    wired.fixture.settle();
    EXPECT_THAT(titles("pa rep"), ElementsAre("report.pdf"));
    EXPECT_THAT(titles("fo rep"), ElementsAre("reports"));
    EXPECT_THAT(titles("pa zzz"), ElementsAre("Papers"));
    EXPECT_EQ(model.rows().front().subtitle, "Nothing found for “zzz”");
}

TEST_F(CommandWiringTest, returnOnTheHintOfABrokenFileOpensThatFile) {
    wired.services.platform.files.file(CommandOffer::path, "{\"commands\": [");
    wired.fixture.types.byPath[CommandOffer::path] = {"text/plain"};
    wired.offer.store.load();
    model.setQuery("branches");
    choose("commands-broken");
    wired.fixture.settle();
    EXPECT_THAT(wired.events, ElementsAre("hidden"));
    EXPECT_THAT(wired.fixture.handed(),
                ElementsAre(testing::Pair(
                    "org.x.Notes", ElementsAre("file://" + std::string(CommandOffer::path)))));
    model.setQuery("branches");
    EXPECT_EQ(model.rows()[1].id, "cmd:br") << "the commands of before stay";
}

TEST_F(CommandWiringTest, aWindowVerbSaysWhatItCannotDoAndElseActsBehindThePanel) {
    wired.control.supported = Ability::missing("the window manager moves none");
    model.setQuery("left");
    EXPECT_THAT(model.rows().front().subtitle, HasSubstr("the window manager moves none"));

    wired.control.supported = {};
    wired.control.monitors = {{.name = "L",
                               .frame = {.width = 800, .height = 600},
                               .workArea = {.width = 800, .height = 600},
                               .isMain = true}};
    wired.services.platform.windows.open.push_back(
        {.id = 1, .className = "org.x.Notes", .processID = 11});
    wired.services.platform.windows.activeID = 1;
    wired.control.windows[1] = {.frame = {.x = 100, .y = 100, .width = 200, .height = 200}};
    model.setQuery("left");
    ASSERT_FALSE(model.rows().empty());
    model.runSelected();
    EXPECT_THAT(wired.events, ElementsAre("hidden"));
    EXPECT_EQ(wired.control.windows[1].frame.width, 400);
}

} // namespace
} // namespace tessarine
