#include "launcherapp/platform/Environment.h"

#include <gmock/gmock.h>

#include <map>

namespace tessarine {
namespace {

using testing::ElementsAre;

Environment read(const std::map<std::string, std::string, std::less<>>& variables,
                 std::string_view accountHome = "/home/account") {
    return readEnvironment(
        [&](std::string_view name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            return found == variables.end() ? std::nullopt : std::optional(found->second);
        },
        accountHome);
}

TEST(Environment, defaultsAreThoseOfTheStandard) {
    const auto environment = read({{"HOME", "/home/u/"}});
    EXPECT_EQ(environment.home, "/home/u");
    EXPECT_EQ(environment.dataHome, "/home/u/.local/share");
    EXPECT_EQ(environment.configHome, "/home/u/.config");
    EXPECT_THAT(environment.dataDirs, ElementsAre("/usr/local/share", "/usr/share"));
    EXPECT_THAT(environment.configDirs, ElementsAre("/etc/xdg"));
    EXPECT_EQ(environment.runtimeDir, std::nullopt);
    EXPECT_EQ(environment.messagesLocale, "C");
}

TEST(Environment, valuesThatAreNoAbsolutePathsAreIgnored) {
    const auto environment = read({{"HOME", "relative"},
                                   {"XDG_DATA_HOME", "data"},
                                   {"XDG_RUNTIME_DIR", ""},
                                   {"XDG_DATA_DIRS", "rel:/a/::/b"},
                                   {"XDG_CONFIG_DIRS", ""}});
    EXPECT_EQ(environment.home, "/home/account");
    EXPECT_EQ(environment.dataHome, "/home/account/.local/share");
    EXPECT_EQ(environment.runtimeDir, std::nullopt);
    EXPECT_THAT(environment.dataDirs, ElementsAre("/a", "/b"));
    EXPECT_THAT(environment.configDirs, ElementsAre("/etc/xdg"));
}

TEST(Environment, withoutAnyHomeTheRootStandsIn) {
    const auto environment = read({}, "");
    EXPECT_EQ(environment.home, "/");
    EXPECT_EQ(environment.dataHome, "/.local/share");
}

TEST(Environment, localesFollowTheirOrder) {
    EXPECT_EQ(read({{"LANG", "de_DE"}, {"LC_MESSAGES", "sv_SE"}}).messagesLocale, "sv_SE");
    EXPECT_EQ(read({{"LANG", "de_DE"}, {"LC_MESSAGES", "sv_SE"}}).collationLocale, "de_DE");
    EXPECT_EQ(read({{"LC_ALL", "fr_FR"}, {"LC_MESSAGES", "sv_SE"}}).messagesLocale, "fr_FR");
    EXPECT_EQ(read({{"LC_ALL", ""}, {"LANG", "de_DE"}}).messagesLocale, "de_DE");
}

TEST(Environment, userFoldersAreCalledAsTheUserCallsThem) {
    const Environment environment{.home = "/home/u"};
    const auto folders = userFolders(environment,
                                     "# a comment\n"
                                     "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                     "XDG_DOWNLOAD_DIR=\"/data/My \\$tuff/\"\n"
                                     "XDG_DOCUMENTS_DIR=\"$HOME/\"\n"   // turned off
                                     "XDG_DESKTOP_DIR=\"relative\"\n"); // no path at all
    EXPECT_EQ(folders,
              (UserFolders{.downloads = "/data/My $tuff", .desktop = "/home/u/Schreibtisch"}));
    EXPECT_EQ(userFolders(environment, "").documents, "/home/u/Documents");
}

TEST(Environment, tildeIsTheHomeFolderOnlyAtTheFront) {
    const auto environment = read({{"HOME", "/home/u"}});
    EXPECT_EQ(expandingTilde(environment, "~"), "/home/u");
    EXPECT_EQ(expandingTilde(environment, "~/a"), "/home/u/a");
    EXPECT_EQ(expandingTilde(environment, "~other/a"), "~other/a");
    EXPECT_EQ(expandingTilde(environment, "/a~"), "/a~");
}

} // namespace
} // namespace tessarine
