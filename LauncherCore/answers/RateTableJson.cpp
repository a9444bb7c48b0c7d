#include "LauncherCore/answers/RateTableJson.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace tessarine {

namespace {

using Json = nlohmann::json;

Json parsed(std::string_view text) {
    return Json::parse(text, nullptr, false);
}

/// The member of an object as text; nothing when there is none, or it is no text.
std::optional<std::string> textMember(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        return std::nullopt;
    return found->get<std::string>();
}

/// Nothing unless there is at least one rate.
std::optional<RateTable> withRates(const Json& document, std::string base) {
    const auto found = document.find("rates");
    if (found == document.end() || !found->is_object())
        return std::nullopt;
    RateTable table{.base = std::move(base)};
    for (const auto& [code, value] : found->items()) {
        const double rate = value.is_number() ? value.get<double>() : 0;
        if (rate > 0 && std::isfinite(rate))
            table.rates.emplace(code, rate);
    }
    return table.rates.empty() ? std::nullopt : std::optional(std::move(table));
}

} // namespace

std::string RateTableJson::encoded(const RateTable& table) {
    const Json document{{"base", table.base},
                        {"rates", table.rates},
                        {"fetched", table.fetched},
                        {"host", table.host},
                        {"checkURL", table.checkURL}};
    // A code is whatever the provider called it.
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<RateTable> RateTableJson::decoded(std::string_view text) {
    const auto document = parsed(text);
    if (!document.is_object())
        return std::nullopt;
    auto base = textMember(document, "base");
    auto host = textMember(document, "host");
    auto page = textMember(document, "checkURL");
    const auto fetched = document.find("fetched");
    if (!base || !host || !page || fetched == document.end() || !fetched->is_number())
        return std::nullopt;
    auto table = withRates(document, *std::move(base));
    if (table) {
        table->fetched = fetched->get<double>();
        table->host = *std::move(host);
        table->checkURL = *std::move(page);
    }
    return table;
}

std::optional<RateTable> RateTableJson::decodedAnswer(std::string_view body) {
    const auto document = parsed(body);
    if (!document.is_object())
        return std::nullopt;
    auto base = textMember(document, "base");
    if (!base)
        base = textMember(document, "base_code");
    return withRates(document, std::move(base).value_or("USD"));
}

} // namespace tessarine
