#include "LauncherCore/query/RowCredit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <unordered_set>

namespace tessarine {
namespace {

RowCreditSpec handler(std::string scheme) {
    return {.value = RowCreditSpec::UrlHandler{std::move(scheme)}};
}

RowCreditSpec appAt(std::string path) {
    return {.value = RowCreditSpec::AppPath{std::move(path)}};
}

TEST(RowCredit, everyActionButTheProgramsOwnIsCredited) {
    for (const auto action : allSystemActions) {
        const bool own = std::ranges::count(RowCreditSpec::ownSystemActions(), action) > 0;
        const auto credit = RowCreditSpec::forSystemAction(action);
        EXPECT_EQ(credit.has_value(), !own) << static_cast<int>(action);
        EXPECT_TRUE(own || !credit->fallbackName().empty());
    }
}

TEST(RowCredit, systemActionsNameWhoCarriesThemOut) {
    EXPECT_EQ(RowCreditSpec::forSystemAction(SystemAction::emptyTrash), RowCreditSpec::finder());
    EXPECT_EQ(RowCreditSpec::forSystemAction(SystemAction::quitAll)->fallbackName(), "Desktop");
    EXPECT_EQ(RowCreditSpec::forSystemAction(SystemAction::darkMode),
              RowCreditSpec::systemSettings());
    // The two share an application and are still told apart by their names.
    EXPECT_NE(RowCreditSpec::system(), RowCreditSpec::systemSettings());
}

TEST(RowCredit, urlsCreditWhoOpensThem) {
    const struct {
        std::string text;
        std::optional<RowCreditSpec> credit;
        const char* reason;
    } cases[] = {
        {"https://x", handler("https"), "a web address"},
        {" HTTP://x\n", handler("http"), "white space and case don't matter"},
        {"/etc/hosts", RowCreditSpec::finder(), "an absolute path"},
        {"~/notes", RowCreditSpec::finder(), "a path from home"},
        {"file:///etc", RowCreditSpec::finder(), "a file's address"},
        {"dict://word", RowCreditSpec::dictionary(), "the dictionary's scheme"},
        {"ical://today", RowCreditSpec::calendar(), "the calendar's scheme"},
        {"x-apple.systempreferences:com.x", RowCreditSpec::systemSettings(), "a settings pane"},
        {"glowcap://go", RowCreditSpec::companion("glowcap"), "a companion"},
        {"web+app.x-1:go", handler("web+app.x-1"), "every character a scheme may have"},
        {"mailto:", handler("mailto"), "nothing after the colon is no port"},
        {"", std::nullopt, "empty"},
        {"  \t", std::nullopt, "blank"},
        {"example", std::nullopt, "no colon"},
        {":x", std::nullopt, "an empty scheme"},
        {"localhost:8080", std::nullopt, "a host and port"},
        {"see this: x", std::nullopt, "a blank is no scheme character"},
        {"müll:x", std::nullopt, "schemes are ASCII"},
    };

    for (const auto& [text, credit, reason] : cases)
        EXPECT_EQ(RowCreditSpec::forURLString(text), credit) << reason << ": " << text;
}

TEST(RowCredit, commandsAreCreditedByTheFieldTheirKindUses) {
    const std::string url = "https://example.com/?q={query}";

    const struct {
        CommandSpec spec;
        std::optional<RowCreditSpec> credit;
    } cases[] = {
        {{.kind = CommandKind::open, .urls = {{"ssh://a", "https://b"}}}, handler("ssh")},
        {{.kind = CommandKind::open, .urls = std::vector<std::string>{}}, std::nullopt},
        {{.kind = CommandKind::open, .url = url}, std::nullopt},
        {{.kind = CommandKind::search, .url = url}, handler("https")},
        {{.kind = CommandKind::app, .path = "~/a.desktop"}, appAt("~/a.desktop")},
        {{.kind = CommandKind::app, .url = url}, std::nullopt},
        {{.id = "sys.pane.x", .kind = CommandKind::app, .path = "/x.desktop"},
         RowCreditSpec::systemSettings()}, // a page, as its address would be
        {{.id = "sys.settings", .kind = CommandKind::app, .path = "/x.desktop"},
         RowCreditSpec::systemSettings()},
        {{.kind = CommandKind::system, .action = SystemAction::restartDock}, RowCreditSpec::dock()},
        {{.kind = CommandKind::system, .action = SystemAction::timeHomeHere}, std::nullopt},
        {{.kind = CommandKind::system}, std::nullopt},
        {{.kind = CommandKind::jump, .path = "/a", .url = url}, appAt("/a")},
        {{.kind = CommandKind::jump, .path = "", .url = url}, handler("https")},
        {{.kind = CommandKind::jump}, std::nullopt},
        {{.kind = CommandKind::script, .path = "/a", .url = url}, std::nullopt},
        {{.kind = CommandKind::files, .path = "/a", .url = url}, std::nullopt},
        {{.kind = CommandKind::list, .path = "/a", .url = url}, std::nullopt},
    };

    for (const auto& [spec, credit] : cases) {
        EXPECT_EQ(RowCreditSpec::forCommand(spec), credit) << static_cast<int>(spec.kind);
        EXPECT_TRUE(!credit || std::ranges::count(RowCreditSpec::creditedKinds(), spec.kind) == 1);
    }
}

TEST(RowCredit, fallbackNamesAreNeverEmpty) {
    const struct {
        RowCreditSpec spec;
        std::string name;
    } cases[] = {
        {handler("https"), "Browser"},
        {handler("mailto"), "mailto"},
        {appAt("/usr/share/applications/firefox.desktop"), "firefox"},
        {appAt("/opt/Some App/"), "Some App"},
        {appAt("/opt/.hidden"), ".hidden"},
        {appAt("/"), "/"},
        {{.value = RowCreditSpec::Machine{.name = "studio", .symbol = "x"}}, "studio"},
        {RowCreditSpec::companion("no.such"), "no.such"},
    };

    for (const auto& [spec, name] : cases)
        EXPECT_EQ(spec.fallbackName(), name);
}

TEST(RowCredit, hashTellsCasesWithOneTextApart) {
    const std::unordered_set<RowCreditSpec> specs{
        handler("x"), appAt("x"), RowCreditSpec::companion("x"), handler("x")};
    EXPECT_EQ(specs.size(), 3u);
    EXPECT_TRUE(specs.contains(appAt("x")));
    EXPECT_NE(std::hash<RowCreditSpec>{}(handler("x")), std::hash<RowCreditSpec>{}(appAt("x")));
}

} // namespace
} // namespace tessarine
