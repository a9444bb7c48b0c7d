#include "launcherapp/commands/ListCommands.h"

#include "tests/launcherapp/commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::Pointee;
using testing::SizeIs;

class ListCommandsTest : public testing::Test {
protected:
    /// The program of that number, in the order of their starts.
    FakeProgramReader::Program& program(std::size_t number) {
        return *fixture.started().at(number);
    }

    void request(const std::string& query) {
        lists->request(command, query, [this, query] { called.push_back(query); });
    }

    void answer(std::size_t number, ProcessEnd end) {
        program(number).end(std::move(end));
        fixture.settle();
    }

    std::vector<std::string> titles(const std::string& query) {
        std::vector<std::string> result;
        if (const auto* rows = lists->rows(command, query)) {
            for (const auto& row : rows->rows)
                result.push_back(row.title);
        }
        return result;
    }

    CommandFixture fixture;
    std::optional<ListCommands> lists{
        std::in_place,
        ListCommands::Services{.queue = fixture.services.platform.queue,
                               .runtime = fixture.runtime,
                               .programs = fixture.services.platform.programs,
                               .work = fixture.services.platform.work,
                               .diagnostics = fixture.services.diagnostics}};
    CommandSpec command{
        .id = "l", .kind = CommandKind::list, .script = "print", .shell = "/bin/sh"};
    std::vector<std::string> called;
};

constexpr auto one = R"([{"title": "One"}])";

TEST_F(ListCommandsTest, rowsComeOnceAndAreKept) {
    EXPECT_EQ(lists->rows(command, "q"), nullptr);
    request("q");
    request("q"); // on its way
    ASSERT_THAT(fixture.started(), SizeIs(1));
    EXPECT_THAT(program(0).spec.arguments, ElementsAre("/bin/sh", "-c", "print", "launcher", "q"));
    EXPECT_THAT(program(0).spec.environment, testing::Contains(Pair("LAUNCHER_QUERY", "q")));
    EXPECT_EQ(program(0).reading.errors, OutputReading::Errors::dropped);
    EXPECT_EQ(lists->rows(command, "q"), nullptr);

    answer(0, {.output = one});
    request("q"); // kept
    EXPECT_THAT(called, ElementsAre("q"));
    EXPECT_THAT(titles("q"), ElementsAre("One"));
    EXPECT_THAT(fixture.started(), SizeIs(1));
    const auto log = fixture.services.log();
    EXPECT_THAT(log, HasSubstr("list l: starting for \"q\"\n"));
    EXPECT_THAT(log, HasSubstr("list l: cached 1 rows, calling back\n"));
    EXPECT_THAT(log, EndsWith("list l: skip (cached or in flight) for \"q\"\n"));

    lists->forget();
    EXPECT_EQ(lists->rows(command, "q"), nullptr);
    request("q");
    EXPECT_THAT(fixture.started(), SizeIs(2));
}

TEST_F(ListCommandsTest, onlyTheNewestQueryMatters) {
    request("a");
    request("ab");
    EXPECT_TRUE(program(0).terminated);
    EXPECT_FALSE(program(1).terminated);
    fixture.settle();
    EXPECT_EQ(lists->rows(command, "a"), nullptr) << "what was ended has no result";
    request("a"); // back to it: the script runs again
    ASSERT_THAT(fixture.started(), SizeIs(3));
    EXPECT_TRUE(program(1).terminated);
    answer(2, {.output = one});
    EXPECT_THAT(called, ElementsAre("a"));

    auto other = command;
    other.id = "other";
    request("x");
    lists->request(other, "x", nullptr);
    EXPECT_FALSE(program(3).terminated) << "another command's is none of its business";
}

TEST_F(ListCommandsTest, whatHasPrintedAllIsKeptThoughAnotherQueryFollows) {
    fixture.services.platform.work.duration = Seconds{1};
    request("a");
    program(0).end({.output = one});
    request("ab"); // before anybody was told of the end
    fixture.settle();
    request("a"); // its rows are being read
    fixture.services.platform.time.advance(Seconds{1});
    EXPECT_THAT(titles("a"), ElementsAre("One"));
    EXPECT_FALSE(program(0).terminated);
    EXPECT_FALSE(program(1).terminated);
    EXPECT_THAT(fixture.started(), SizeIs(2));
}

TEST_F(ListCommandsTest, whatIsNoRowsGivesTheReasonAndOneLine) {
    const std::string longText(200, 'x');
    const std::string noRows = "Its script printed no rows; the log says what";

    const struct {
        const char* reason;
        ProcessEnd end;
        std::string shown;
        std::string problem;
    } cases[] = {
        {"text", {.output = "no\nsuch thing\n"}, "no\\nsuch thing\\n\n", noRows},
        {"much text", {.output = longText}, longText.substr(0, 160) + "\n", noRows},
        {"no text", {.output = "\xff\xfe[]"}, "<not text>\n", noRows},
        {"a character over the edge",
         {.output = std::string(159, 'x') + "üx"},
         std::string(159, 'x') + "\n",
         noRows},
        {"nothing", {}, "\n", noRows},
        {"a script that failed", {.status = 3}, "\n", "Its script ended with status 3"},
        {"a row whose argument would end early",
         {.output = R"([{"title": "a", "arg": "b\u0000c"}])"},
         R"([{"title": "a", "arg": "b\u0000c"}])",
         noRows},
        {"the beginning of too much",
         {.output = "[]   ", .isCut = true},
         "[]   \n",
         "Its script printed more than 2 MB"},
    };

    std::size_t number = 0;
    for (const auto& [reason, end, shown, problem] : cases) {
        SCOPED_TRACE(reason);
        request(reason);
        answer(number++, end);
        EXPECT_THAT(lists->rows(command, reason), Pointee(ListResult{.problem = problem}));
        EXPECT_THAT(fixture.services.log(),
                    HasSubstr("list l: output is not rows or {items:[…]}: " + shown));
        EXPECT_EQ(called.back(), reason);
    }

    request("none");
    answer(number++, {.output = "[]"});
    EXPECT_THAT(lists->rows(command, "none"), Pointee(ListResult())) << "it found nothing";
    request("rows");
    answer(number++, {.status = 1, .output = one});
    EXPECT_THAT(titles("rows"), ElementsAre("One")) << "rows are rows whatever came after";
}

TEST_F(ListCommandsTest, whatCannotStartSaysSoAndIsNotTriedAgain) {
    fixture.services.platform.programs.missing = {"/bin/sh"};
    request("q");
    EXPECT_THAT(fixture.services.log(), HasSubstr("list l: could not start: /bin/sh "));
    ASSERT_TRUE(lists->rows(command, "other"));
    EXPECT_THAT(*lists->rows(command, "other")->problem,
                HasSubstr("Its script could not start: /bin/sh "));
    EXPECT_FALSE(lists->isWaiting());

    fixture.services.platform.programs.missing.clear();
    request("other");
    EXPECT_THAT(fixture.started(), IsEmpty());
    lists->forget();
    request("q");
    EXPECT_THAT(fixture.started(), SizeIs(1));
    EXPECT_TRUE(lists->isWaiting());

    for (const auto& none : {std::optional<std::string>(), std::optional<std::string>("")}) {
        command.id += "-empty";
        command.script = none;
        request("q");
        EXPECT_THAT(fixture.services.log(), EndsWith("list " + command.id + ": no script\n"));
        EXPECT_THAT(lists->rows(command, "q"), Pointee(ListResult{.problem = "It has no script"}));
    }
}

TEST_F(ListCommandsTest, anOldScriptsRowsAreNotKeptWhenTheCommandsAreOthers) {
    fixture.services.platform.work.duration = Seconds{1};
    request("q");
    program(0).end({.output = one});
    fixture.settle(); // its output is being read
    lists->forget();
    fixture.services.platform.time.advance(Seconds{2});
    EXPECT_EQ(lists->rows(command, "q"), nullptr);
    EXPECT_THAT(called, IsEmpty());
}

TEST_F(ListCommandsTest, ofManyRowsTheFirstAreKept) {
    std::string output = "[";
    for (std::size_t i = 0; i < 2 * ListCommands::mostRows; ++i)
        output += R"({"title": ")" + std::to_string(i) + "\"},";
    output.back() = ']';
    request("q");
    answer(0, {.output = output});
    EXPECT_THAT(titles("q"), SizeIs(ListCommands::mostRows));
    EXPECT_EQ(titles("q").front(), "0");
    EXPECT_THAT(fixture.services.log(), HasSubstr("list l: the first 60 of 120 rows are kept\n"));
    EXPECT_THAT(fixture.services.log(), HasSubstr("list l: cached 60 rows, calling back\n"));
}

TEST_F(ListCommandsTest, theRowsKeptLongestGoFirst) {
    for (std::size_t i = 0; i <= ListCommands::mostQueries; ++i) {
        request(std::to_string(i));
        answer(i, {.output = one});
    }
    EXPECT_EQ(lists->rows(command, "0"), nullptr);
    EXPECT_NE(lists->rows(command, "1"), nullptr);

    lists->forget();
    const auto large =
        R"([{"title": ")" + std::string(ListCommands::mostOutput - 100, 'x') + "\"}]";
    const auto fit = ListCommands::mostKeptBytes / large.size();
    const auto begun = fixture.started().size();
    for (std::size_t i = 0; i <= fit; ++i) {
        request(std::to_string(i));
        answer(begun + i, {.output = large});
    }
    EXPECT_EQ(lists->rows(command, "0"), nullptr);
    EXPECT_NE(lists->rows(command, std::to_string(fit)), nullptr);
}

TEST_F(ListCommandsTest, returnRunsOnSelectOrOpensTheTarget) {
    lists->choose(command, {.title = "T", .arg = "chat:c"});
    lists->choose(command, {.title = "https://a.example"});
    lists->choose(command, {.title = "plain"});
    command.onSelect = "";
    lists->choose(command, {.title = "chat:d"});
    command.onSelect = "act \"$1\"";
    lists->choose(command, {.title = "T", .arg = "A"});
    lists->choose(command, {.title = "T"});
    fixture.settle();
    EXPECT_THAT(fixture.handed(),
                ElementsAre(Pair("org.x.Chat", ElementsAre("chat:c")),
                            Pair("org.x.Web", ElementsAre("https://a.example")),
                            Pair("org.x.Chat", ElementsAre("chat:d"))));
    EXPECT_THAT(fixture.services.log(), HasSubstr("list l: \"plain\" is nothing to open\n"));
    ASSERT_THAT(fixture.started(), SizeIs(2));
    EXPECT_THAT(program(0).spec.arguments,
                ElementsAre("/bin/sh", "-c", "act \"$1\"", "launcher", "A"));
    EXPECT_EQ(program(1).spec.arguments.back(), "T");
    program(0).end({.output = "x"});
    EXPECT_THAT(fixture.services.log(), HasSubstr("script l.onSelect exit 0: x\n"));
}

TEST_F(ListCommandsTest, whatRunsEndsWithTheLists) {
    request("a");
    lists.reset();
    EXPECT_TRUE(program(0).terminated);
    fixture.settle();
    EXPECT_THAT(called, IsEmpty());
}

} // namespace
} // namespace tessarine
