#include "LauncherCore/clipboard/ClipGroupsJson.h"
#include "launcherapp/clipboard/groups/ClipGroupStore.h"
#include "launcherapp/clipboard/groups/ClipGroupsCommandLine.h"
#include "tests/launcherapp/clipboard/ClipboardFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Json = nlohmann::json;

constexpr auto path = "/support/clip-groups.json";

struct Groups : ClipboardFixture {
    ClipGroupStore groups{{.queue = services.platform.queue,
                           .work = services.platform.work,
                           .files = files,
                           .prefs = services.prefs,
                           .diagnostics = services.diagnostics,
                           .runtime = runtime},
                          path};
    ClipboardHistory history;

    std::string text() const { return files.read(path, 1 << 20).value_or(""); }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& group : runtime.current()->groups)
            names.push_back(group.name);
        return names;
    }

    static std::string fileWith(const std::string& name) {
        return ClipGroupsJson::encoded({.groups = {group(name)}});
    }

    static ClipGroup group(const std::string& name) {
        return {.name = name, .symbol = "tag", .match = {.contains = "invoice"}};
    }

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

TEST(ClipGroupStore, theFirstRunSeedsOnceAndNotesSinceWhenPastesAreMarked) {
    Groups fixture;
    fixture.groups.load();
    EXPECT_EQ(Json::parse(fixture.text()), Json::parse(R"({"groups":[]})"));
    const auto first = fixture.now();
    EXPECT_EQ(fixture.runtime.pasteTrackingSince(), first);
    fixture.time.advance(Seconds{10});
    fixture.groups.load();
    EXPECT_EQ(fixture.services.prefs.clipPasteTrackingSince(), first);
}

TEST(ClipGroupStore, aGroupTaughtElsewhereIsInForceAtOnce) {
    Groups fixture;
    fixture.groups.load();
    fixture.groups.follow(fixture.services.platform.watcher);
    int changes = 0;
    const auto observer = fixture.groups.onChange([&] { ++changes; });
    fixture.files.file(path, Groups::fileWith("Receipts"));
    fixture.services.platform.watcher.fire("/support");
    fixture.time.advance(Seconds{0.1});
    EXPECT_THAT(fixture.names(), ElementsAre("Receipts"));
    EXPECT_EQ(changes, 1);
    fixture.services.platform.watcher.fire("/support"); // another file of the folder
    fixture.time.advance(Seconds{0.1});
    EXPECT_EQ(changes, 1);
    // What stops parsing, or goes, leaves what is in force.
    fixture.files.file(path, "{");
    fixture.services.platform.watcher.fire("/support");
    fixture.time.advance(Seconds{0.1});
    EXPECT_TRUE(fixture.groups.loadError());
    EXPECT_THAT(fixture.services.log(), HasSubstr("clip-groups.json did not parse."));
    fixture.files.remove(path);
    fixture.services.platform.watcher.fire("/support");
    fixture.time.advance(Seconds{0.1});
    EXPECT_THAT(fixture.names(), ElementsAre("Receipts"));
}

TEST(ClipGroupStore, whatDoesNotParseIsLeftForTheUserAndCopiedBeforeItIsWrittenOver) {
    Groups fixture;
    const std::string broken = R"({"groups":[{"name":"Mine")";
    fixture.files.file(path, broken);
    fixture.groups.load();
    EXPECT_EQ(fixture.groups.loadError(),
              "clip-groups.json did not parse. No taught group is in force until it does.");
    EXPECT_EQ(fixture.text(), broken);
    EXPECT_TRUE(fixture.groups.write({.groups = {Groups::group("New")}}));
    EXPECT_EQ(fixture.files.read(std::string(path) + ".damaged", 1 << 20), broken);
    EXPECT_EQ(fixture.groups.loadError(), std::nullopt);
    EXPECT_EQ(fixture.text(), Groups::fileWith("New"));
}

TEST(ClipGroupStore, theRetiredLedgerIsUpgradedOnDisk) {
    Groups fixture;
    auto ledger = ClipGroups::templates()[0];
    ledger.match.filePattern.reset();
    ledger.match.fileState.reset();
    ledger.match.fileNeedle.reset();
    ledger.match.pasted = false;
    fixture.files.file(path, ClipGroupsJson::encoded({.groups = {ledger}}));
    fixture.groups.load();
    const ClipGroups upgraded{.groups = {ClipGroups::templates()[0]}};
    EXPECT_EQ(*fixture.runtime.current(), upgraded);
    EXPECT_EQ(fixture.text(), ClipGroupsJson::encoded(upgraded));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("clip groups: upgraded the handoff ledger to read the handoff file "
                          "instead of the paste ledger"));
}

TEST(ClipGroupStore, nothingIsInForceThatCouldNotBeWritten) {
    Groups fixture;
    fixture.files.file(path, Groups::fileWith("Receipts"));
    fixture.groups.load();
    fixture.files.forbid(path);
    EXPECT_FALSE(fixture.groups.write({}));
    EXPECT_FALSE(fixture.groups.remove("receipts"));
    EXPECT_THAT(fixture.names(), ElementsAre("Receipts"));
    fixture.files.allow(path);
    EXPECT_TRUE(fixture.groups.remove("RECEIPTS"));
    EXPECT_FALSE(fixture.groups.remove("RECEIPTS"));
    EXPECT_THAT(fixture.names(), IsEmpty());
}

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
        fixture.groups.load();
        const auto before = fixture.text();
        const auto answer = fixture.ask(each.verb, each.json);
        EXPECT_EQ(answer["reason"], each.reason);
        EXPECT_THAT(answer["message"].get<std::string>(), HasSubstr(each.message));
        EXPECT_EQ(fixture.text(), before);
    }
}

TEST(ClipGroupsCommandLine, aGroupIsTaughtReplacedAndTakenAway) {
    Groups fixture;
    fixture.groups.load();
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
    EXPECT_EQ(fixture.ask("add", R"({"name":"B","match":{"kind":"file"}})")["message"],
              std::string("Could not write ") + path);
    EXPECT_EQ(fixture.ask("remove", {}, "receipts")["reason"], "write_failed");
    fixture.files.allow(path);
    EXPECT_EQ(fixture.ask("remove", {}, "receipts")["removed"], "receipts");
    EXPECT_THAT(fixture.names(), IsEmpty());
}

TEST(ClipGroupsCommandLine, aRuleIsTriedWithoutBeingSaved) {
    Groups fixture;
    fixture.groups.load();
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
    fixture.groups.load();
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
    fixture.ask("add",
                Json{{"name", "HANDOFFS whose file is gone"}, {"match", gone["match"]}}.dump());
    answer = fixture.ask("list");
    EXPECT_FALSE(answer.contains("load_error"));
    EXPECT_EQ(answer["templates"][1]["installed"], true);
    EXPECT_EQ(answer["groups"][0]["matches"], 1);
}

} // namespace
} // namespace tessarine
