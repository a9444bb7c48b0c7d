#include "tests/desktop/Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <sstream>

namespace tessarine {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

using namespace std::chrono_literals;

class FileIndexDesktopTest : public testing::Test {
protected:
    /// Paths of the files that a search finds.
    std::vector<std::string> found(const std::string& query) {
        const auto output = run({"--search", query}, environment);
        EXPECT_EQ(output.status, 0);
        std::vector<std::string> ids;
        std::istringstream lines(output.out);
        for (std::string line; std::getline(lines, line);) {
            const auto row = nlohmann::json::parse(line);
            if (row.at("kind") == "file")
                ids.push_back(row.at("id"));
        }
        return ids;
    }

    std::string home(const std::string& below) const { return folder.path("/home" + below); }

    TemporaryFolder folder;
    Program::Variables environment{{"HOME", folder.path("/home")},
                                   {"XDG_DATA_DIRS", folder.path("/data")},
                                   {"XDG_RUNTIME_DIR", folder.path("/runtime")}};
};

TEST_F(FileIndexDesktopTest, aSearchWithoutACacheWalksTheUsersFolders) {
    folder.write("/home/Documents/letters/To Anna.odt", "");
    folder.write("/home/Documents/node_modules/to anna/index.js", "");
    folder.write("/home/Pictures/to anna.png", ""); // not among the folders that are searched
    EXPECT_THAT(found("anna"), testing::ElementsAre(home("/Documents/letters/To Anna.odt")));
}

TEST_F(FileIndexDesktopTest, anotherProgramsChangesAreFoundWithinHalfAMinute) {
    folder.write("/home/Documents/deep/old name.txt", "");
    folder.write("/home/Documents/deep/moves.txt", "");
    folder.write("/home/Documents/deep/goes.txt", "");
    folder.write("/home/Downloads/inside/x.txt", "");
    fs::create_directories(folder.path("/runtime"));
    Program resident({}, environment);
    const auto cache = home("/.local/share/tessarine/index.json");
    ASSERT_TRUE(waitUntil(10s, [&] { return fs::exists(cache); }));
    ASSERT_THAT(found("goes"), Contains(home("/Documents/deep/goes.txt")));

    folder.write("/home/Documents/deep/comes.txt", "");
    fs::rename(home("/Documents/deep/old name.txt"), home("/Documents/deep/new name.txt"));
    fs::rename(home("/Documents/deep/moves.txt"), home("/Downloads/inside/moves.txt"));
    fs::remove(home("/Documents/deep/goes.txt"));
    fs::rename(home("/Downloads/inside"), home("/Downloads/renamed"));
    folder.write("/home/Downloads/renamed/late.txt", ""); // below what was just renamed

    EXPECT_TRUE(waitUntil(35s, [&] { return !found("late").empty(); }));
    EXPECT_THAT(found("late"), Contains(home("/Downloads/renamed/late.txt")));
    EXPECT_THAT(found("comes"), Contains(home("/Documents/deep/comes.txt")));
    EXPECT_THAT(found("goes"), testing::IsEmpty());
    EXPECT_THAT(found("moves"), testing::ElementsAre(home("/Downloads/renamed/moves.txt")));
    EXPECT_THAT(found("name"), testing::ElementsAre(home("/Documents/deep/new name.txt")));
    ::kill(resident.pid(), SIGTERM);
    EXPECT_TRUE(resident.finish(5s));
}

TEST_F(FileIndexDesktopTest, theIndexProvesItself) {
    folder.write("/home/Documents/Annual Report.pdf", "");

    const struct {
        const char* mode;
        const char* proved;
    } cases[] = {
        {"--selftest-walker", "selftest-walker: "},
        {"--selftest-delta", "selftest-delta: "},
        {"--selftest-index", "every place in"},
        {"--selftest-index-duty", "a zero wait is still caught as 100%"},
        {"--selftest-volumes", "selftest-volumes: "},
        {"--selftest-fsevents", "a live stream delivered"},
        {"--walker-diff", "only-new 0; only-legacy 0"},
    };

    for (const auto& [mode, proved] : cases) {
        const auto output = run({mode}, environment);
        EXPECT_EQ(output.status, 0) << mode << output.out;
        EXPECT_THAT(output.out, HasSubstr(proved)) << mode;
    }
}

TEST_F(FileIndexDesktopTest, aShortSoakFindsItsLastChangesAndLeavesNothing) {
    fs::create_directories(home(""));
    Program soak({"--index-soak", "3"}, environment);
    const auto output = soak.finish(90s); // the last walk may be held for half a minute
    ASSERT_TRUE(output);
    EXPECT_EQ(output->status, 0) << output->out;
    EXPECT_THAT(output->out, AllOf(HasSubstr("poked "), HasSubstr("index-soak: ")));
    for (const auto& path : folder.contents())
        EXPECT_THAT(path, Not(HasSubstr("tsr-index-soak")));
}

} // namespace
} // namespace tessarine
