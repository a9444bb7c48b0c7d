#include "launcherapp/clipboard/groups/ClipGroupsCommandLine.h"

#include "tests/launcherapp/clipboard/groups/ClipGroupsFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Json = nlohmann::json;

constexpr auto path = ClipGroupsFixture::groupsPath;

struct Groups : ClipGroupsFixture {
    ClipboardHistory history;

    /// What `--clip-groups` says, as JSON.
    Json ask(const std::string& verb,
             std::optional<std::string> json = {},
             std::optional<std::string> name = {}) {
        const auto reply = ClipGroupsCommandLine::reply(
            {.verb = verb, .json = std::move(json), .name = std::move(name)},
            history,
            groups,
            runtime);
        auto answer = Json::parse(reply.output);
        EXPECT_EQ(reply.status, answer["ok"] == true ? 0 : 1);
        return answer;
    }
};

TEST(ClipGroupsCommandLine, aMistakeInTheWordsIsToldOnStandardError) {
    Groups fixture;

    const struct {
        std::optional<std::string> verb;
        std::string problem;
    } cases[] = {
        {std::nullopt,
         "usage: --clip-groups list|add|remove|test [--json <json>] [--name <name>]\n"},
        {"drop", "unknown verb \"drop\". Use list, add, remove or test.\n"},
    };

    for (const auto& each : cases) {
        const auto reply = ClipGroupsCommandLine::reply(
            {.verb = each.verb, .json = {}, .name = {}}, {}, fixture.groups, fixture.runtime);
        EXPECT_EQ(reply.problem, each.problem);
        EXPECT_EQ(reply.output, "");
        EXPECT_EQ(reply.status, 2);
    }
}

TEST(ClipGroupsCommandLine, whatCannotBeTaughtIsRefusedInWords) {
    const struct {
        std::string verb;
        std::optional<std::string> json;
        std::string reason;
        std::string message; ///< a part of it
    } cases[] = {
        {"add", std::nullopt, "bad_input", "add needs --json with {\"name\":…"},
        {"add", "{", "bad_input", "add needs --json"},
        {"add", "[]", "bad_input", "add needs --json"},
        {"add", "\xff", "bad_input", "add needs --json"},
        {"add", R"({"match":{"contains":"x"}})", "bad_input", "optional \"symbol\"."},
        {"add", R"({"name":1,"match":{"contains":"x"}})", "bad_input", "add needs"},
        {"add", R"({"name":"A","match":{"kind":"sound"}})", "bad_input", "add needs"},
        {"add", R"({"name":"","match":{"contains":"x"}})", "bad_input", "A group needs a name."},
        {"add",
         R"({"name":"A","match":{"fileNeedle":"x"}})",
         "empty_rule",
         "at least one of contains"},
        {"add",
         R"({"name":"A","match":{"regex":"("}})",
         "bad_regex",
         "That regular expression does not compile: ("},
        {"test", std::nullopt, "bad_input", "test needs --json with a rule"},
        {"test", R"({"match":{}})", "empty_rule", "so it would catch nothing."},
        {"test", R"({"match":{"regex":"["}})", "bad_regex", "does not compile: ["},
        {"remove", std::nullopt, "bad_input", "remove needs --name <group name>."},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.verb + each.json.value_or(""));
        Groups fixture;
        fixture.groups.load(ClipGroupStore::Upkeep::all);
        const auto before = fixture.text();
        const auto answer = fixture.ask(each.verb, each.json);
        EXPECT_EQ(answer["reason"], each.reason);
        EXPECT_THAT(answer["message"].get<std::string>(), HasSubstr(each.message));
        EXPECT_EQ(fixture.text(), before);
    }
}

TEST(ClipGroupsCommandLine, aGroupIsTaughtReplacedAndTakenAway) {
    Groups fixture;
    fixture.groups.load(ClipGroupStore::Upkeep::all);
    fixture.history.entries = {ClipboardFixture::textEntry("Invoice 1", 1),
                               ClipboardFixture::textEntry("letter", 2)};
    auto answer = fixture.ask("add", R"({"name":"Receipts","match":{"contains":"invoice"}})");
    EXPECT_EQ(answer,
              Json::parse(R"({"ok":true,"name":"Receipts","symbol":"tag","matches":1,)"
                          R"("match":{"contains":"invoice"},"replaced":false,"message":)"
                          R"("Added \"Receipts\". It is in force now: the panel filters by it )"
                          R"(without a restart."})"));
    answer =
        fixture.ask("add", R"({"name":"RECEIPTS","symbol":"cart","match":{"contains":"letter"}})");
    EXPECT_EQ(answer["replaced"], true);
    EXPECT_THAT(answer["message"].get<std::string>(), HasSubstr("Replaced \"RECEIPTS\""));
    EXPECT_THAT(fixture.names(), SizeIs(1));
    EXPECT_EQ(fixture.ask("remove", {}, "nothing\xff")["reason"], "not_found");
    fixture.files.forbid(path);
    EXPECT_EQ(fixture.ask("remove", {}, "receipts")["reason"], "load_error");
    fixture.files.allow(path);
    // The copy of what a newer build wrote has no place.
    fixture.files.file(path,
                       R"({"colours":[],"groups":[{"name":"Receipts","symbol":"tag",)"
                       R"("match":{"contains":"x"}}]})");
    fixture.files.forbid(path + std::string(".damaged"));
    EXPECT_EQ(fixture.ask("add", R"({"name":"B","match":{"kind":"file"}})")["message"],
              std::string("Could not write ") + path);
    EXPECT_EQ(fixture.ask("remove", {}, "receipts")["reason"], "write_failed");
    fixture.files.allow(path + std::string(".damaged"));
    EXPECT_EQ(fixture.ask("remove", {}, "receipts")["removed"], "receipts");
    EXPECT_THAT(fixture.names(), IsEmpty());
}

TEST(ClipGroupsCommandLine, whatSomebodyElseTaughtMeanwhileStays) {
    Groups fixture;
    fixture.groups.load(ClipGroupStore::Upkeep::all);
    fixture.files.file(path, Groups::fileWith("Theirs"));
    fixture.ask("add", R"({"name":"Ours","match":{"contains":"x"}})");
    EXPECT_THAT(fixture.names(), ElementsAre("Theirs", "Ours"));
    fixture.files.file(path, Groups::fileWith("Newer"));
    EXPECT_EQ(fixture.ask("remove", {}, "newer")["ok"], true);
    EXPECT_THAT(fixture.names(), IsEmpty());
}

TEST(ClipGroupsCommandLine, aRuleIsTriedWithoutBeingSaved) {
    Groups fixture;
    fixture.groups.load(ClipGroupStore::Upkeep::all);
    fixture.ask("add", R"({"name":"Receipts","match":{"contains":"invoice"}})");
    const auto before = fixture.text();
    for (int i = 0; i < 7; ++i)
        fixture.history.entries.push_back(
            ClipboardFixture::textEntry("Invoice " + std::to_string(i), i));
    fixture.history.entries[6].sourceApp = "Mail";
    fixture.history.entries[6].pastedInto = {{"Editor"}};
    fixture.history.entries.push_back(ClipboardFixture::textEntry("letter", 9));
    const auto answer = fixture.ask("test", R"({"match":{"kind":"text","startsWith":"inv"}})");
    EXPECT_EQ(answer["name"], "(unsaved rule)");
    EXPECT_EQ(answer["saved"], false);
    EXPECT_EQ(answer["matches"], 7);
    EXPECT_EQ(answer["history_size"], 8);
    EXPECT_EQ(answer["already_claimed_by"], (Json{{"Receipts", 7}}));
    ASSERT_THAT(answer["samples"], SizeIs(5));
    EXPECT_EQ(answer["samples"][0],
              (Json{{"preview", "Invoice 6"},
                    {"kind", "text"},
                    {"characters", 9},
                    {"pasted_into", {"Editor"}},
                    {"source_app", "Mail"}}));
    EXPECT_EQ(answer["samples"][1]["pasted_into"], Json::array());
    EXPECT_FALSE(answer["samples"][1].contains("source_app"));
    EXPECT_EQ(fixture.text(), before);
}

TEST(ClipGroupsCommandLine, theListSaysWhatIsInForceAndWhatIsOffered) {
    Groups fixture;
    fixture.files.file(path, "broken");
    fixture.groups.load(ClipGroupStore::Upkeep::all);
    fixture.history.entries = {
        ClipboardFixture::textEntry("https://example.com", 1),
        ClipboardFixture::textEntry("Read and execute \"/gone/plan.md\" now", 2)};
    auto answer = fixture.ask("list");
    EXPECT_EQ(answer["file"], path);
    EXPECT_EQ(answer["history_size"], 2);
    EXPECT_THAT(answer["load_error"].get<std::string>(), HasSubstr("did not parse"));
    EXPECT_EQ(answer["builtin_categories"][0],
              (Json{{"token", "link"}, {"name", "Links"}, {"matches", 1}}));
    ASSERT_THAT(answer["templates"], SizeIs(3));
    const auto& gone = answer["templates"][1];
    EXPECT_EQ(gone["would_match"], 1); // its file doesn't exist
    EXPECT_EQ(gone["installed"], false);
    EXPECT_EQ(gone["match"]["fileState"], "missing");
    EXPECT_EQ(answer["templates"][0]["would_match"], 0);
    const auto rule =
        Json{{"name", "HANDOFFS whose file is gone"}, {"match", gone["match"]}}.dump();
    const auto refused = fixture.ask("add", rule);
    EXPECT_EQ(refused["reason"], "load_error");
    EXPECT_EQ(refused["message"], answer["load_error"]);
    EXPECT_EQ(fixture.ask("remove", {}, "Mine")["reason"], "load_error");
    EXPECT_EQ(fixture.text(), "broken");
    fixture.files.file(path, R"({"groups":[]})");
    fixture.ask("add", rule);
    answer = fixture.ask("list");
    EXPECT_FALSE(answer.contains("load_error"));
    EXPECT_EQ(answer["templates"][1]["installed"], true);
    EXPECT_EQ(answer["groups"][0]["matches"], 1);
}

} // namespace
} // namespace tessarine
