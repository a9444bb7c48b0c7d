#include "LauncherCore/clipboard/ClipGroupsJson.h"

#include "LauncherCore/text/JsonFields.h"

#include <nlohmann/json.hpp>

#include <type_traits>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;
using FileState = ClipMatcher::FileState;

constexpr int indentation = 2;

/// Every field of a rule: `visit(key, field)`.
template <typename Matcher, typename Visit> void visitRule(Matcher& rule, Visit visit) {
    visit("contains", rule.contains);
    visit("firstLineEndsWith", rule.firstLineEndsWith);
    visit("firstLineContains", rule.firstLineContains);
    visit("startsWith", rule.startsWith);
    visit("regex", rule.regex);
    visit("maxLength", rule.maxLength);
    visit("minLength", rule.minLength);
    visit("pasted", rule.pasted);
    visit("filePattern", rule.filePattern);
    visit("fileState", rule.fileState);
    visit("fileNeedle", rule.fileNeedle);
    visit("kind", rule.kind);
}

template <typename Value> Json toJson(const Value& value) {
    if constexpr (std::is_same_v<Value, FileState>)
        return ClipMatcher::rawValue(value);
    else if constexpr (std::is_same_v<Value, ClipKind>)
        return ClipKinds::rawValue(value);
    else
        return value;
}

/// A name of a closed list, found by `named`; one that is in no list of ours spoils the whole.
template <typename Named> auto oneOf(JsonFields& fields, const char* key, Named named) {
    const auto name = fields.optional<std::string>(key);
    auto found = name ? named(*name) : std::nullopt;
    if (name && !found)
        fields.spoil();
    return found;
}

struct Rule {
    ClipMatcher matcher;
    bool hasOthers = false;
};

std::optional<Rule> ruleFrom(Json& value) {
    JsonFields fields(value);
    Rule rule;
    visitRule(rule.matcher, [&]<typename Value>(const char* key, std::optional<Value>& field) {
        if constexpr (std::is_same_v<Value, FileState>)
            field = oneOf(fields, key, ClipMatcher::stateNamed);
        else if constexpr (std::is_same_v<Value, ClipKind>)
            field = oneOf(fields, key, ClipKinds::kind);
        else
            field = fields.optional<Value>(key);
    });
    rule.hasOthers = fields.hasOthers();
    return fields.isWhole() ? std::optional(std::move(rule)) : std::nullopt;
}

} // namespace

std::string ClipGroupsJson::encoded(const ClipGroups& groups) {
    auto list = Json::array();
    for (const auto& group : groups.groups)
        list.push_back(
            {{"name", group.name}, {"symbol", group.symbol}, {"match", object(group.match)}});
    return Json{{"groups", std::move(list)}}.dump(
               indentation, ' ', false, Json::error_handler_t::replace) +
           "\n";
}

std::optional<ClipGroupsJson::Decoded> ClipGroupsJson::decoded(std::string_view text) {
    auto document = Json::parse(text, nullptr, false);
    JsonFields fields(document);
    auto* list = fields.member("groups");
    if (!list || !list->is_array())
        return std::nullopt;
    Decoded result{.losesOld = fields.hasOthers()};
    for (auto& each : *list) {
        JsonFields its(each);
        ClipGroup group{.name = its.required(its.optional<std::string>("name")),
                        .symbol = its.required(its.optional<std::string>("symbol"))};
        auto* match = its.member("match");
        auto rule = match ? ruleFrom(*match) : std::nullopt;
        if (!its.isWhole() || !rule)
            return std::nullopt;
        group.match = std::move(rule->matcher);
        result.groups.groups.push_back(std::move(group));
        result.losesOld = result.losesOld || its.hasOthers() || rule->hasOthers;
    }
    return result;
}

Json ClipGroupsJson::object(const ClipMatcher& matcher) {
    auto result = Json::object();
    visitRule(matcher, [&](const char* key, const auto& field) {
        if (field)
            result[key] = toJson(*field);
    });
    return result;
}

std::optional<ClipMatcher> ClipGroupsJson::matcher(const Json& value) {
    auto own = value;
    auto rule = ruleFrom(own);
    if (!rule)
        return std::nullopt;
    return std::move(rule->matcher);
}

} // namespace tessarine
