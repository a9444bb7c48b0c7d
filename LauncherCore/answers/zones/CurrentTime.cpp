#include "LauncherCore/answers/zones/ZoneFamilies.h"
#include "LauncherCore/answers/zones/ZonePlaces.h"
#include "LauncherCore/answers/zones/ZoneText.h"
#include "LauncherCore/answers/zones/ZoneWords.h"

#include <fmt/format.h>

#include <array>

namespace tessarine {

namespace {

using TimeZones::Context;
using ZonePlaces::Place;
using ZonePlaces::Unknown;

constexpr auto nowWords = std::to_array<std::string_view>({"right now", "now"});

/// What stands behind a place to ask for its clock, longest first.
constexpr auto askSuffixes = std::to_array<std::string_view>({
    "current time",
    "local time",
    "right now",
    "time zone",
    "timezone",
    "clock",
    "time",
    "zone",
    "now",
});

std::vector<Answer>
rows(const std::vector<Place>& places, const Context& context, const Formats& formats) {
    std::vector<Answer> rows;
    for (const auto& place : places) {
        const auto day = ZoneText::day(place.clock, context.now, formats);
        rows.push_back(ZoneText::row(place.clock,
                                     TimeZones::nowValue(place.clock, context, formats),
                                     fmt::format("{} · {}", place.label(), day)));
    }
    return rows;
}

std::string_view withoutNow(std::string_view text) {
    for (const auto words : nowWords)
        if (const auto rest = ZoneWords::without(text, words))
            return *rest;
    return text;
}

/// The places of a text that needn't be a question: all of it must be places then.
std::vector<Place> surePlaces(std::string_view text, const Context& context) {
    if (text.empty() || ZonePlaces::isOrdinaryWord(text))
        return {};
    return ZonePlaces::resolveAll(text, context, Unknown::refused);
}

/// Of a text with a prefix that asks.
std::vector<Place> asked(std::string_view text, const Context& context) {
    const auto question = withoutNow(text);
    const auto ask = ZoneWords::stripped(question, ZoneWords::askPrefixes());
    if (!ask)
        return {};
    const bool weak = ask->prefix == ZoneWords::weakAskPrefix;
    if (ask->rest.empty() && (!weak || question != text))
        return {{.clock = context.home}};
    // "what time zone is arizona in"
    const auto rest = ZoneWords::without(ask->rest, "in").value_or(ask->rest);
    return weak ? surePlaces(rest, context)
                : ZonePlaces::resolveAll(rest, context, Unknown::skipped);
}

/// Of "tokyo time" and "utc now": places alone with a word of time.
std::vector<Place> named(std::string_view text, const Context& context) {
    if (ZoneWords::isWorld(text) || ZoneWords::isHome(text) || ZoneWords::isHere(text))
        return ZonePlaces::resolveAll(text, context, Unknown::refused);
    bool asks = text.starts_with("utc") || text.starts_with("gmt");
    for (const auto words : askSuffixes)
        if (const auto rest = ZoneWords::without(text, words)) {
            text = *rest;
            asks = true;
        }
    return asks ? surePlaces(text, context) : std::vector<Place>();
}

} // namespace

std::vector<Answer>
ZoneFamilies::current(std::string_view text, const Context& context, const Formats& formats) {
    auto places = asked(text, context);
    if (places.empty())
        places = named(text, context);
    return rows(places, context, formats);
}

} // namespace tessarine
