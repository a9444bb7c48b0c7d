#include "LauncherCore/answers/CalcHistoryJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;
using Kind = CalcEntry::Kind;

constexpr auto kinds = std::to_array<std::pair<Kind, const char*>>({
    {Kind::math, "math"},
    {Kind::unit, "unit"},
    {Kind::currency, "currency"},
    {Kind::date, "date"},
});

const char* name(Kind kind) {
    return std::ranges::find(kinds, kind, [](const auto& each) { return each.first; })->second;
}

std::optional<Kind> kindNamed(const std::string& text) {
    for (const auto& [kind, its] : kinds) {
        if (text == its)
            return kind;
    }
    return std::nullopt;
}

Json toJson(const CalcEntry& entry) {
    Json object = {{"id", entry.id},
                   {"expression", entry.expression},
                   {"formatted", entry.formatted},
                   {"value", entry.value},
                   {"kind", name(entry.kind)},
                   {"at", entry.at},
                   {"pinned", entry.pinned}};
    if (entry.detail)
        object["detail"] = *entry.detail;
    if (entry.name)
        object["name"] = *entry.name;
    return object;
}

/// Nothing when the object has no such member or one of another type.
std::optional<std::string> text(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        return std::nullopt;
    return found->get<std::string>();
}

std::optional<double> number(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number() || !std::isfinite(found->get<double>()))
        return std::nullopt;
    return found->get<double>();
}

/// A member that may be absent or null, but nothing else than a text.
bool mayBeText(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() || found->is_null() || found->is_string();
}

std::optional<CalcEntry> entryFrom(const Json& object) {
    if (!object.is_object())
        return std::nullopt;
    auto id = text(object, "id");
    auto expression = text(object, "expression");
    auto formatted = text(object, "formatted");
    const auto value = number(object, "value");
    const auto kindText = text(object, "kind");
    const auto kind = kindText ? kindNamed(*kindText) : std::nullopt;
    const auto at = number(object, "at");
    const auto pinned = object.find("pinned");
    if (!id || !expression || !formatted || !value || !kind || !at || pinned == object.end() ||
        !pinned->is_boolean() || !mayBeText(object, "detail") || !mayBeText(object, "name"))
        return std::nullopt;
    return CalcEntry{.id = *std::move(id),
                     .expression = *std::move(expression),
                     .formatted = *std::move(formatted),
                     .value = *value,
                     .detail = text(object, "detail"),
                     .kind = *kind,
                     .at = *at,
                     .pinned = pinned->get<bool>(),
                     .name = text(object, "name")};
}

} // namespace

std::string CalcHistoryJson::encoded(const CalcHistoryStore& history) {
    auto entries = Json::array();
    for (const auto& entry : history.entries())
        entries.push_back(toJson(entry));
    // What was typed may be any bytes.
    return Json{{"entries", std::move(entries)}}.dump(
        -1, ' ', false, Json::error_handler_t::replace);
}

std::optional<CalcHistoryStore> CalcHistoryJson::decoded(std::string_view text) {
    const auto document = Json::parse(text, nullptr, false);
    if (!document.is_object())
        return std::nullopt;
    const auto list = document.find("entries");
    if (list == document.end() || !list->is_array())
        return std::nullopt;
    std::vector<CalcEntry> entries;
    for (const auto& each : *list) {
        auto entry = entryFrom(each);
        if (!entry)
            return std::nullopt;
        entries.push_back(*std::move(entry));
    }
    return CalcHistoryStore(std::move(entries));
}

} // namespace tessarine
