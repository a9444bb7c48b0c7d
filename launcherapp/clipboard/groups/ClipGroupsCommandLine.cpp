#include "launcherapp/clipboard/groups/ClipGroupsCommandLine.h"

#include "LauncherCore/clipboard/ClipGroupsJson.h"
#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/clipboard/groups/ClipGroupStore.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using ClipGroupsCommandLine::Reply;
using ClipGroupsCommandLine::Request;
using Json = nlohmann::json;

constexpr int indentation = 2;
constexpr std::size_t shownSamples = 5;
constexpr std::string_view defaultSymbol = "tag";
constexpr std::string_view unsavedName = "(unsaved rule)";

Json refusal(std::string_view reason, std::string message) {
    return {{"ok", false}, {"reason", reason}, {"message", std::move(message)}};
}

Json withoutNulls(const Json& value) {
    if (value.is_object()) {
        auto result = Json::object();
        for (const auto& [key, member] : value.items()) {
            if (!member.is_null())
                result[key] = withoutNulls(member);
        }
        return result;
    }
    if (!value.is_array())
        return value;
    auto result = Json::array();
    for (const auto& member : value) {
        if (!member.is_null())
            result.push_back(withoutNulls(member));
    }
    return result;
}

/// What `--json` says; a member that isn't there is nothing.
struct Rule {
    std::optional<std::string> name;
    std::optional<std::string> symbol;
    ClipMatcher match;
};

/// Nothing for what holds no rule.
std::optional<Rule> ruleFrom(const std::optional<std::string>& text) {
    const auto json = text ? Json::parse(*text, nullptr, false) : Json();
    const auto match = json.is_object() ? json.find("match") : json.end();
    if (!json.is_object() || match == json.end())
        return std::nullopt;
    auto matcher = ClipGroupsJson::matcher(*match);
    if (!matcher)
        return std::nullopt;
    Rule rule{.name = {}, .symbol = {}, .match = *std::move(matcher)};
    for (const auto& [key, field] : {std::pair{"name", &rule.name}, {"symbol", &rule.symbol}}) {
        const auto member = json.find(key);
        if (member == json.end() || member->is_null())
            continue;
        if (!member->is_string())
            return std::nullopt;
        *field = member->get<std::string>();
    }
    return rule;
}

/// One request, with what it is answered from.
class Answer {
public:
    Answer(const Request& request,
           const ClipboardHistory& history,
           ClipGroupStore& store,
           ClipGroupsRuntime& runtime)
        : request_(request), history_(history), store_(store), runtime_(runtime) {}

    Json list() const;
    Json add() const;
    Json remove() const;
    Json test() const;

private:
    using Counts = std::map<ClipFilterKey, std::int64_t>;

    static std::int64_t count(const Counts& counts, const ClipFilterKey& key) {
        const auto found = counts.find(key);
        return found == counts.end() ? 0 : found->second;
    }

    Counts counts() const { return history_.counts(runtime_); }

    static Json described(const ClipGroup& group, const Counts& counts);
    std::vector<const ClipboardEntry*> matched(const ClipMatcher& rule) const;
    std::optional<Json> loadFailed() const;
    Json writeFailed() const;

    const Request& request_;
    const ClipboardHistory& history_;
    ClipGroupStore& store_;
    ClipGroupsRuntime& runtime_;
};

Json Answer::described(const ClipGroup& group, const Counts& counts) {
    return {{"name", group.name},
            {"symbol", group.symbol},
            {"match", ClipGroupsJson::object(group.match)},
            {"matches", count(counts, ClipFilterKey::group(group.name))}};
}

/// The clippings that the rule matches by itself, whatever group claims them.
std::vector<const ClipboardEntry*> Answer::matched(const ClipMatcher& rule) const {
    const ClipFacts facts{
        .file =
            [this](const std::string& path, const std::optional<std::string>& needle) {
                return runtime_.fileFact(path, needle);
            },
        .pasteTrackingSince = runtime_.pasteTrackingSince()};
    std::vector<const ClipboardEntry*> matched;
    for (const auto& entry : history_.entries) {
        if (rule.matches(entry, facts))
            matched.push_back(&entry);
    }
    return matched;
}

/// What the file says now is what a change is made to; nothing when it can be.
std::optional<Json> Answer::loadFailed() const {
    store_.readAgain();
    const auto& error = store_.loadError();
    return error ? std::optional(refusal("load_error", *error)) : std::nullopt;
}

Json Answer::writeFailed() const {
    return refusal("write_failed", "Could not write " + store_.path());
}

Json Answer::list() const {
    const auto current = runtime_.current();
    const auto now = counts();
    auto groups = Json::array();
    for (const auto& group : current->groups)
        groups.push_back(described(group, now));
    auto categories = Json::array();
    for (const auto category : ClipKinds::allCategories)
        categories.push_back({{"token", ClipKinds::rawValue(category)},
                              {"name", ClipKinds::label(category)},
                              {"matches", count(now, ClipFilterKey::builtin(category))}});
    auto templates = Json::array();
    for (const auto& group : ClipGroups::templates()) {
        auto each = described(group, now);
        each["would_match"] = matched(group.match).size();
        each["installed"] = current->named(group.name) != nullptr;
        templates.push_back(std::move(each));
    }
    const auto& error = store_.loadError();
    return {{"ok", true},
            {"file", store_.path()},
            {"history_size", history_.entries.size()},
            {"groups", std::move(groups)},
            {"builtin_categories", std::move(categories)},
            {"load_error", error ? Json(*error) : Json()},
            {"templates", std::move(templates)}};
}

/// Nothing for a rule that can be used.
std::optional<Json> problemOf(const ClipMatcher& rule, std::string_view emptyRule) {
    if (rule.isEmpty())
        return refusal("empty_rule", std::string(emptyRule));
    if (rule.regex && !ClipMatcher::compiles(*rule.regex))
        return refusal("bad_regex", "That regular expression does not compile: " + *rule.regex);
    return std::nullopt;
}

Json Answer::add() const {
    auto rule = ruleFrom(request_.json);
    if (!rule || !rule->name)
        return refusal("bad_input",
                       R"(add needs --json with {"name":…,"match":{…}} and an optional "symbol".)");
    if (rule->name->empty())
        return refusal("bad_input", "A group needs a name.");
    if (auto problem = problemOf(
            rule->match,
            "That rule sets no condition, so it would catch nothing. Give it at least one of "
            "contains, firstLineEndsWith, firstLineContains, startsWith, regex, minLength, "
            "maxLength, kind or pasted."))
        return *std::move(problem);
    const ClipGroup group{.name = *std::move(rule->name),
                          .symbol = rule->symbol.value_or(std::string(defaultSymbol)),
                          .match = std::move(rule->match)};
    if (auto problem = loadFailed())
        return *std::move(problem);
    auto groups = *runtime_.current();
    const bool isReplaced = groups.named(group.name) != nullptr;
    groups.upsert(group);
    if (!store_.write(groups))
        return writeFailed();
    auto answer = described(group, counts());
    answer["ok"] = true;
    answer["replaced"] = isReplaced;
    answer["message"] =
        fmt::format("{} \"{}\". It is in force now: the panel filters by it without a restart.",
                    isReplaced ? "Replaced" : "Added",
                    group.name);
    return answer;
}

Json Answer::remove() const {
    if (!request_.name)
        return refusal("bad_input", "remove needs --name <group name>.");
    const auto& name = *request_.name;
    if (auto problem = loadFailed())
        return *std::move(problem);
    switch (store_.remove(name)) {
    case ClipGroupStore::Removal::absent:
        return refusal(
            "not_found",
            fmt::format("No group named \"{}\". Names are matched without regard to case.", name));
    case ClipGroupStore::Removal::notWritten:
        return writeFailed();
    case ClipGroupStore::Removal::done:
        break;
    }
    return {{"ok", true},
            {"removed", name},
            {"message",
             fmt::format("Removed \"{}\". It stays removed: the suggested groups are seeded once, "
                         "on first run only.",
                         name)}};
}

Json Answer::test() const {
    const auto rule = ruleFrom(request_.json);
    if (!rule)
        return refusal(
            "bad_input",
            R"(test needs --json with a rule: {"name":…,"match":{…}} or just {"match":{…}}.)");
    if (auto problem =
            problemOf(rule->match, "That rule sets no condition, so it would catch nothing."))
        return *std::move(problem);
    auto matches = matched(rule->match);
    auto claimed = Json::object();
    for (const auto* entry : matches) {
        if (const auto group = runtime_.group(*entry))
            claimed[group->name] = claimed.value(group->name, 0) + 1;
    }
    std::ranges::stable_sort(matches, std::ranges::greater(), &ClipboardEntry::lastSeen);
    auto samples = Json::array();
    for (std::size_t i = 0; i < std::min(matches.size(), shownSamples); ++i) {
        const auto& entry = *matches[i];
        samples.push_back({{"preview", entry.preview},
                           {"kind", ClipKinds::rawValue(entry.kind)},
                           {"characters", entry.characterCount()},
                           {"pasted_into", entry.pastedInto.value_or(std::vector<std::string>{})},
                           {"source_app", entry.sourceApp ? Json(*entry.sourceApp) : Json()}});
    }
    return {{"ok", true},
            {"saved", false},
            {"name", rule->name.value_or(std::string(unsavedName))},
            {"matches", matches.size()},
            {"history_size", history_.entries.size()},
            {"already_claimed_by", std::move(claimed)},
            {"samples", std::move(samples)}};
}

struct Verb {
    std::string_view name;
    Json (Answer::*answer)() const;
};

constexpr auto verbs = std::to_array<Verb>({{"list", &Answer::list},
                                            {"add", &Answer::add},
                                            {"remove", &Answer::remove},
                                            {"test", &Answer::test}});

} // namespace

Reply ClipGroupsCommandLine::reply(const Request& request,
                                   const ClipboardHistory& history,
                                   ClipGroupStore& store,
                                   ClipGroupsRuntime& runtime) {
    constexpr int mistake = 2;
    if (!request.verb)
        return {.output = {},
                .problem =
                    "usage: --clip-groups list|add|remove|test [--json <json>] [--name <name>]\n",
                .status = mistake};
    const auto verb = std::ranges::find(verbs, *request.verb, &Verb::name);
    if (verb == verbs.end())
        return {.output = {},
                .problem = fmt::format("unknown verb \"{}\". Use list, add, remove or test.\n",
                                       *request.verb),
                .status = mistake};
    const auto answer = (Answer(request, history, store, runtime).*verb->answer)();
    return {.output =
                withoutNulls(answer).dump(indentation, ' ', false, Json::error_handler_t::replace) +
                "\n",
            .problem = {},
            .status = answer["ok"] == true ? 0 : 1};
}

} // namespace tessarine
