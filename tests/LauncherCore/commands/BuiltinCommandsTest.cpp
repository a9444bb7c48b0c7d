#include "LauncherCore/commands/BuiltinCommands.h"

#include "LauncherCore/commands/CommandFile.h"

#include <gmock/gmock.h>

#include <map>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> idsOf(const std::vector<CommandSpec>& commands) {
    std::vector<std::string> ids;
    for (const auto& command : commands)
        ids.push_back(command.id);
    return ids;
}

CommandSpec own(SystemAction action, std::string id = "mine") {
    return {.id = std::move(id), .name = "Mine", .kind = CommandKind::system, .action = action};
}

TEST(BuiltinCommands, aWordFindsOneOfThemAlone) {
    std::map<std::string, std::string> owners;
    for (const auto& command : BuiltinCommands::actions()) {
        for (const auto& word : command.aliases.value())
            EXPECT_TRUE(owners.emplace(word, command.id).second)
                << word << " is both " << owners[word] << "'s and " << command.id << "'s";
    }
    const std::pair<const char*, const char*> told[] = {
        {"close everything", "sys.quitAll"},
        {"toggle dark mode", "sys.darkMode"},
        {"toggle appearance", "sys.darkMode"},
        {"switch appearance", "sys.darkMode"},
        {"light appearance", "sys.lightOn"},
        {"appearance light", "sys.lightOn"},
        {"automatic appearance", "sys.autoAppearance"},
        {"home time zone here", "sys.timeHomeHere"},
        {"time zone home here", "sys.timeHomeHere"},
        {"time zone home clocks", "sys.timeHomeClocks"},
        {"show hidden files", "sys.hiddenFiles"},
        {"hide hidden files", "sys.hiddenFiles"},
        {"restart wispr flow", "sys.fixWispr"},
        {"window screenshot", "sys.shotWindow"},
        {"reboot", "sys.restart"},
        {"restart nautilus", "sys.restartFinder"},
        {"restart panel", "sys.restartDock"},
    };
    for (const auto& [word, id] : told)
        EXPECT_EQ(owners[word], id) << word;
    EXPECT_FALSE(owners.contains("nautilus")) << "it would stand above the application";
}

TEST(BuiltinCommands, theyAreCommandsAsAUserWouldWriteThem) {
    auto commands = BuiltinCommands::actions();
    EXPECT_EQ(commands.size(), allSystemActions.size());
    EXPECT_EQ(commands.front().id, "sys.restart");
    EXPECT_EQ(commands.back().id, "sys.shotWindow");
    commands.push_back(BuiltinCommands::settings("/a/settings.desktop"));
    for (auto& command : commands)
        command.aliases.reset(); // words that a user could not type as keywords are fine here
    EXPECT_THAT(CommandFile{.commands = commands}.problems(), IsEmpty());
}

TEST(BuiltinCommands, theUsersOwnCommandTakesThePlaceOfItsActionsAlone) {
    const auto script = [] {
        auto command = own(SystemAction::lockScreen);
        command.kind = CommandKind::script;
        return command;
    }();

    const struct {
        std::vector<CommandSpec> user;
        std::vector<std::string> hidden;
        const char* reason;
    } cases[] = {
        {{}, {}, "nobody has an own command"},
        {{own(SystemAction::lockScreen)}, {"sys.lock"}, "one action"},
        {{own(SystemAction::restart)}, {"sys.restart"}, "the immediate form is another action"},
        {{own(SystemAction::sleep, "a"), own(SystemAction::sleep, "b")}, {"sys.sleep"}, "two"},
        {{script}, {}, "a script that names an action does not do it"},
        {{{.id = "x", .name = "Lock Screen", .kind = CommandKind::system}}, {}, "no action"},
        {{{.id = "sys.lock", .name = "Lock Screen", .kind = CommandKind::open}}, {}, "an id"},
    };

    const auto& all = BuiltinCommands::actions();
    for (const auto& [user, hidden, reason] : cases) {
        SCOPED_TRACE(reason);
        const auto offered = idsOf(BuiltinCommands::available(all, user));
        EXPECT_EQ(offered.size(), all.size() - hidden.size());
        for (const auto& id : hidden)
            EXPECT_THAT(offered, Not(Contains(id)));
    }
}

TEST(BuiltinCommands, theUsersOwnCommandInheritsEachWordThatItLacks) {
    const std::vector<CommandSpec> builtIns{{.id = "b",
                                             .name = "Lock Screen",
                                             .kind = CommandKind::system,
                                             .action = SystemAction::lockScreen,
                                             .aliases = {{"lock", "lock session"}}}};

    const struct {
        CommandSpec user;
        std::vector<std::string> aliases;
        const char* reason;
    } cases[] = {
        {own(SystemAction::lockScreen), {"Lock Screen", "lock", "lock session"}, "all of them"},
        {{.id = "m",
          .name = "LOCK",
          .keyword = "Lock Session",
          .kind = CommandKind::system,
          .action = SystemAction::lockScreen},
         {"Lock Screen"},
         "its name and keyword are its own words"},
        {{.id = "m",
          .name = "L",
          .kind = CommandKind::system,
          .action = SystemAction::lockScreen,
          .aliases = {{"lock screen", "x", "x"}}},
         {"lock screen", "x", "x", "lock", "lock session"},
         "its aliases stay as they are, first"},
    };

    for (const auto& [user, aliases, reason] : cases) {
        SCOPED_TRACE(reason);
        const auto inherited = BuiltinCommands::inheriting(builtIns, std::vector{user});
        ASSERT_EQ(inherited.size(), 1u);
        EXPECT_EQ(inherited[0].aliases, aliases);
        EXPECT_EQ(inherited[0].name, user.name);
    }
}

TEST(BuiltinCommands, twoOwnCommandsForOneActionBothInheritAndOthersStayAsTheyAre) {
    const std::vector<CommandSpec> user{
        own(SystemAction::sleep, "a"),
        {.id = "o", .name = "Open", .kind = CommandKind::open, .urls = {{"https://a.example"}}},
        own(SystemAction::sleep, "b")};
    const auto inherited = BuiltinCommands::inheriting(BuiltinCommands::actions(), user);
    EXPECT_THAT(idsOf(inherited), ElementsAre("a", "o", "b"));
    EXPECT_THAT(inherited[0].aliases.value(), Contains("suspend"));
    EXPECT_EQ(inherited[1], user[1]);
    EXPECT_EQ(inherited[2].aliases, inherited[0].aliases);
}

} // namespace
} // namespace tessarine
