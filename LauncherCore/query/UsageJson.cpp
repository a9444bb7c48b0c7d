#include "LauncherCore/query/UsageJson.h"

#include <nlohmann/json.hpp>

namespace tessarine {

namespace {

using Json = nlohmann::json;

std::string text(const Json& document) {
    // An id may come from a file name of any bytes.
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json toJson(const UsageLog& log) {
    auto items = Json::object();
    for (const auto& [id, record] : log.items)
        items[id] = {{"launches", record.launches}, {"total", record.total}};
    auto choices = Json::object();
    for (const auto& [query, picks] : log.choices) {
        auto& object = choices[query] = Json::object();
        for (const auto& [id, count] : picks)
            object[id] = count;
    }
    return {{"items", std::move(items)}, {"choices", std::move(choices)}};
}

/// The member of an object; null when it isn't one or has none of that name.
const Json* member(const Json& object, const char* key) {
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

std::optional<UsageRecord> recordFrom(const Json& value) {
    const auto* launches = member(value, "launches");
    const auto* total = member(value, "total");
    if (!launches || !launches->is_array() || !total || !total->is_number_integer())
        return std::nullopt;
    UsageRecord record{.total = total->get<std::int64_t>()};
    for (const auto& launch : *launches) {
        if (!launch.is_number())
            return std::nullopt;
        record.launches.push_back(launch.get<double>());
    }
    // A hand-made file may hold more than are ever kept.
    if (record.launches.size() > UsageLog::keep)
        record.launches.erase(record.launches.begin(),
                              record.launches.end() - static_cast<std::ptrdiff_t>(UsageLog::keep));
    return record;
}

std::optional<UsageLog> fromJson(const Json& document) {
    const auto* items = member(document, "items");
    const auto* choices = member(document, "choices");
    if (!items || !items->is_object() || !choices || !choices->is_object())
        return std::nullopt;
    UsageLog log;
    for (const auto& [id, value] : items->items()) {
        auto record = recordFrom(value);
        if (!record)
            return std::nullopt;
        log.items.emplace(id, *std::move(record));
    }
    for (const auto& [query, picks] : choices->items()) {
        if (!picks.is_object())
            return std::nullopt;
        auto& counts = log.choices[query];
        for (const auto& [id, count] : picks.items()) {
            if (!count.is_number_integer())
                return std::nullopt;
            counts.emplace(id, count.get<std::int64_t>());
        }
    }
    return log;
}

Json parsed(std::string_view text) {
    return Json::parse(text, nullptr, false);
}

} // namespace

std::string UsageJson::encoded(const UsageLog& log) {
    return text(toJson(log));
}

std::optional<UsageLog> UsageJson::decodedLog(std::string_view text) {
    return fromJson(parsed(text));
}

std::string UsageJson::encoded(const std::map<std::string, UsageLog>& devices) {
    auto document = Json::object();
    for (const auto& [device, log] : devices)
        document[device] = toJson(log);
    return text(document);
}

std::optional<std::map<std::string, UsageLog>> UsageJson::decodedDevices(std::string_view text) {
    const auto document = parsed(text);
    if (!document.is_object())
        return std::nullopt;
    std::map<std::string, UsageLog> devices;
    for (const auto& [device, value] : document.items()) {
        auto log = fromJson(value);
        if (!log)
            return std::nullopt;
        devices.emplace(device, *std::move(log));
    }
    return devices;
}

} // namespace tessarine
