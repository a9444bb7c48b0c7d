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

    void answer(std::size_t number, const std::string& output, bool isCut = false) {
        program(number).end({.output = output, .isCut = isCut});
        fixture.settle();
    }

    std::vector<std::string> titles(const std::string& query) {
        std::vector<std::string> result;
        if (const auto* rows = lists->rows(command, query)) {
            for (const auto& row : *rows)
                result.push_back(row.title);
        }
        return result;
    }

    CommandFixture fixture;
    std::optional<ListCommands> lists{
        std::in_place,
        ListCommands::Services{.runtime = fixture.runtime,
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

    answer(0, one);
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
    answer(2, one);
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

TEST_F(ListCommandsTest, whatIsNoRowsGivesNoneAndOneLine) {
    const std::string longText(200, 'x');

    const struct {
        const char* reason;
        std::string output;
        bool isCut;
        std::string shown;
    } cases[] = {
        {"text", "no\nsuch thing\n", false, "no\\nsuch thing\\n\n"},
        {"much text", longText, false, longText.substr(0, 160) + "\n"},
        {"no text", "\xff\xfe[]", false, "<not text>\n"},
        {"a character over the edge",
         std::string(159, 'x') + "üx",
         false,
         std::string(159, 'x') + "\n"},
        {"nothing", "", false, "\n"},
        {"the beginning of too much", "[]   ", true, "[]   \n"},
    };

    std::size_t number = 0;
    for (const auto& [reason, output, isCut, shown] : cases) {
        SCOPED_TRACE(reason);
        request(reason);
        answer(number++, output, isCut);
        EXPECT_THAT(lists->rows(command, reason), Pointee(IsEmpty()));
        EXPECT_THAT(fixture.services.log(),
                    HasSubstr("list l: output is not rows or {items:[…]}: " + shown));
        EXPECT_EQ(called.back(), reason);
    }
}

TEST_F(ListCommandsTest, aStartThatFailsLeavesNothingBehind) {
    fixture.services.platform.programs.missing = {"/bin/sh"};
    request("q");
    EXPECT_THAT(fixture.services.log(), HasSubstr("list l: could not start: /bin/sh "));
    fixture.services.platform.programs.missing.clear();
    request("q");
    EXPECT_THAT(fixture.started(), SizeIs(1));

    command.id = "empty";
    command.script.reset();
    request("q");
    EXPECT_THAT(fixture.services.log(), EndsWith("list empty: no script\n"));
    EXPECT_THAT(fixture.services.log(), Not(HasSubstr("empty: starting")));
}

TEST_F(ListCommandsTest, theRowsKeptLongestGoFirst) {
    for (std::size_t i = 0; i <= ListCommands::mostQueries; ++i) {
        request(std::to_string(i));
        answer(i, one);
    }
    EXPECT_EQ(lists->rows(command, "0"), nullptr);
    EXPECT_NE(lists->rows(command, "1"), nullptr);

    lists->forget();
    const auto large =
        R"([{"title": ")" + std::string(ListCommands::mostOutput - 100, 'x') + "\"}]";
    const auto fit = ListCommands::mostKeptOutput / large.size();
    const auto begun = fixture.started().size();
    for (std::size_t i = 0; i <= fit; ++i) {
        request(std::to_string(i));
        answer(begun + i, large);
    }
    EXPECT_EQ(lists->rows(command, "0"), nullptr);
    EXPECT_NE(lists->rows(command, "1"), nullptr);
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
