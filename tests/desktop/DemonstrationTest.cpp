#include "tests/desktop/Program.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <sstream>

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::Not;

using namespace std::chrono_literals;

std::string text(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path).rdbuf();
    return bytes.str();
}

/// A user with settings and a history, who looks at a demonstration.
class DemonstrationTest : public testing::Test {
protected:
    DemonstrationTest() {
        folder.write("/home/.config/tessarine/preferences.json", settings);
        folder.write("/data/applications/x.desktop",
                     "[Desktop Entry]\nType=Application\nName=X\nExec=true\n");
        folder.write("/home/.local/share/tessarine/usage.json", "{}");
    }

    std::vector<std::string> usersFiles() const {
        auto files = folder.contents();
        std::erase_if(files, [](const std::string& path) { return !path.starts_with("/home"); });
        return files;
    }

    const std::string settings = R"({"emptyMode": "mostUsed"})";
    TemporaryFolder folder;
    Program::Variables environment{{"HOME", folder.path("/home")},
                                   {"XDG_DATA_DIRS", folder.path("/data")},
                                   {"XDG_RUNTIME_DIR", folder.path("/runtime")},
                                   {"TZ", "Europe/Paris"}};
};

TEST_F(DemonstrationTest, theUsersSettingsAreNotWritten) {
    const auto before = usersFiles();
    Program resident({"--demo"}, environment);
    ASSERT_TRUE(resident.waitForError("Tessarine is running"));
    // At its start it remembers the home zone in the settings.
    const auto own = "/runtime/tessarine/demonstration-" + std::to_string(resident.pid());
    EXPECT_TRUE(waitUntil(15s, [&] {
        return !text(folder.path(own + "/config/tessarine/preferences.json")).empty();
    }));
    ::kill(resident.pid(), SIGTERM);
    ASSERT_TRUE(resident.finish());
    EXPECT_EQ(usersFiles(), before);
    EXPECT_EQ(text(folder.path("/home/.config/tessarine/preferences.json")), settings);
}

TEST_F(DemonstrationTest, theUsersSettingsAreNotRead) {
    // They show programs before anything is typed, and without them nothing is shown.
    EXPECT_NE(run({"--search", ""}, environment).out, "");
    EXPECT_EQ(run({"--demo", "--search", ""}, environment).out, "");
}

TEST_F(DemonstrationTest, nothingIsLeftOfIt) {
    EXPECT_EQ(run({"--demo", "--search", "mail"}, environment).status, 0);
    EXPECT_THAT(folder.contents(),
                Not(testing::Contains(HasSubstr("/runtime/tessarine/demonstration-"))));
}

} // namespace
} // namespace tessarine
