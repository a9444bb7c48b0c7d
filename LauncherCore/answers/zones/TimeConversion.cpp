#include "LauncherCore/answers/zones/ZoneFamilies.h"
#include "LauncherCore/answers/zones/ZoneMoments.h"
#include "LauncherCore/answers/zones/ZonePlaces.h"
#include "LauncherCore/answers/zones/ZoneText.h"
#include "LauncherCore/answers/zones/ZoneWords.h"

#include <fmt/format.h>

#include <array>
#include <optional>
#include <utility>

namespace tessarine {

namespace {

using TimeZones::Context;
using TimeZones::DayPhrase;
using TimeZones::Moment;
using TimeZones::StatedClock;
using ZonePlaces::Place;
using ZonePlaces::Unknown;

/// What may stand before a clock without changing what is asked.
constexpr auto openings = std::to_array<std::string_view>({
    "if it is",
    "if it's",
    "when it is",
    "when it's",
    "when its",
    "what is",
    "what's",
    "whats",
    "when is",
    "convert",
    "at",
});

constexpr auto connectors =
    std::to_array<std::string_view>({" in ", " to ", " from ", " at ", " for "});

/// Words of connectors that are left before a place when the text has two of them.
constexpr auto connectorWords = std::to_array<std::string_view>({"in", "to", "from", "at", "for"});

/// A second question in the middle is a connector: "when it's 3pm in tokyo what time is it in
/// london".
constexpr auto middles = std::to_array<std::string_view>(
    {" what time is it in ", " what's the time in ", " what is the time in ", " what time is it "});

/// What parts the targets from a clock that stands behind them: "athens at 3pm".
constexpr auto beforeClock = std::to_array<std::string_view>(
    {" at ", " when it is ", " when it's ", " if it is ", " if it's "});

/// Zone and targets of a clock. Either is empty when the text names none.
struct Sides {
    std::string_view source;
    std::string_view targets;
    std::string_view connector;
};

/// A question taken apart.
struct Stated {
    Moment moment;
    std::vector<Place> targets;
    std::string sourceLabel;
};

Sides atLastConnector(std::string_view rest) {
    Sides sides{.source = rest};
    std::size_t last = 0;
    for (const auto connector : connectors) {
        auto found = rest.rfind(connector);
        auto length = connector.size();
        if (found == std::string_view::npos) {
            if (!rest.starts_with(connector.substr(1)))
                continue;
            found = 0;
            --length;
        }
        if (!sides.connector.empty() && found <= last)
            continue;
        last = found;
        sides = {.source = ZoneWords::trimmed(rest.substr(0, found)),
                 .targets = ZoneWords::trimmed(rest.substr(found + length)),
                 .connector = connector};
    }
    if (sides.connector == " from ")
        std::swap(sides.source, sides.targets);
    return sides;
}

/// Takes a day's words off either end of a text and keeps them.
std::string_view withoutDay(std::string_view text, DayPhrase& day) {
    const auto stated = TimeZones::statedDay(text);
    if (!stated)
        return text;
    day = stated->phrase;
    return stated->rest;
}

std::string joinedAtMiddle(std::string_view text) {
    for (const auto words : middles)
        if (const auto at = text.find(words); at != std::string_view::npos)
            return fmt::format("{} in {}", text.substr(0, at), text.substr(at + words.size()));
    return std::string(text);
}

std::vector<Place> watched(const Context& context) {
    auto places = ZonePlaces::resolveAll("my clocks", context, Unknown::refused);
    if (places.empty())
        places.push_back({.clock = context.home});
    return places;
}

/// The clock with its zone and targets; nothing when a side is named and is no place.
std::optional<Stated>
resolved(StatedClock clock, Sides sides, DayPhrase day, const Context& context) {
    const auto source = withoutDay(ZoneWords::withoutAllOf(sides.source, connectorWords), day);
    const auto targets = withoutDay(ZoneWords::withoutAllOf(sides.targets, connectorWords), day);
    auto zone =
        source.empty() ? Place{.clock = context.here} : ZonePlaces::resolve(source, context);
    if (!zone)
        return std::nullopt;
    auto places = targets.empty() ? watched(context)
                                  : ZonePlaces::resolveAll(targets, context, Unknown::refused);
    if (places.empty())
        return std::nullopt;
    return Stated{.moment = {.day = day.day,
                             .readings = day.evening ? TimeZones::inTheEvening(clock.readings)
                                                     : std::move(clock.readings),
                             .zone = zone->clock,
                             .zoneNamed = !source.empty()},
                  .targets = std::move(places),
                  .sourceLabel = zone->label()};
}

/// "8 in paris", "8 et in paris" and "8 in the morning": what else begins with a number is more
/// often a quantity.
bool isClock(const StatedClock& bareHour, const Sides& sides) {
    if (bareHour.rest.empty())
        return true;
    DayPhrase day;
    const auto source = withoutDay(sides.source, day);
    return sides.connector == " in " && (source.empty() || ZonePlaces::isZoneName(source));
}

/// "athens at 3pm et".
std::optional<Stated>
targetsFirst(std::string_view text, const DayPhrase& day, const Context& context) {
    for (const auto words : beforeClock) {
        const auto at = text.rfind(words);
        if (at == std::string_view::npos)
            continue;
        auto clock = TimeZones::leadingClock(text.substr(at + words.size()));
        if (!clock)
            continue;
        const auto rest = clock->rest;
        return resolved(
            std::move(*clock), {.source = rest, .targets = text.substr(0, at)}, day, context);
    }
    return std::nullopt;
}

/// "pst est" and "et/pt" without a connector: two zones, the first of them the clock's. Home and
/// here may be the second: "7pm cet here".
Sides sidesOf(std::string_view rest) {
    const auto sides = atLastConnector(rest);
    const auto blank = rest.find_first_of(" /");
    if (!sides.connector.empty() || blank == std::string_view::npos || ZonePlaces::isZoneName(rest))
        return sides;
    const auto second = rest.substr(blank + 1);
    const bool isTarget =
        ZonePlaces::isZoneName(second) || ZoneWords::isHome(second) || ZoneWords::isHere(second);
    if (ZonePlaces::isZoneName(rest.substr(0, blank)) && isTarget)
        return {.source = rest.substr(0, blank), .targets = second};
    return sides;
}

std::string_view withoutAsk(std::string_view text) {
    const auto ask = ZoneWords::stripped(text, ZoneWords::askPrefixes());
    return ZoneWords::withoutAllOf(ask ? ask->rest : text, openings);
}

std::optional<Stated> stated(std::string_view text, const Context& context) {
    DayPhrase day;
    text = withoutAsk(withoutDay(withoutAsk(text), day));
    if (auto clock = TimeZones::leadingClock(text)) {
        const auto rest = joinedAtMiddle(clock->rest);
        return resolved(std::move(*clock), sidesOf(rest), day, context);
    }
    if (auto clock = TimeZones::bareHour(text)) {
        const auto rest = clock->rest;
        const auto sides = atLastConnector(rest);
        if (!isClock(*clock, sides))
            return std::nullopt;
        return resolved(std::move(*clock), sides, day, context);
    }
    if (auto found = targetsFirst(text, day, context))
        return found;
    auto clock = TimeZones::trailingClock(text);
    if (!clock)
        return std::nullopt;
    const auto place = clock->rest;
    return resolved(std::move(*clock), {.source = place}, day, context);
}

} // namespace

std::vector<Answer>
ZoneFamilies::conversion(std::string_view text, const Context& context, const Formats& formats) {
    const auto question = stated(text, context);
    if (!question)
        return {};
    const auto& moment = question->moment;
    const auto zone = ZonePlaces::zone(moment.zone);
    const auto at = TimeZones::instant(moment, context.now);
    if (!zone || !at)
        return {};
    const auto origin = fmt::format("at {} from {}, {}",
                                    TimeZones::clockText(*at, *zone),
                                    question->sourceLabel,
                                    ZoneText::day(moment.zone, *at, formats));
    std::vector<Answer> rows;
    for (const auto& target : question->targets) {
        const bool unsure = rows.empty() && moment.readings.size() > 1;
        rows.push_back(ZoneText::row(
            target.clock,
            ZoneText::value(target.clock, moment.zone, *at, context, formats),
            fmt::format("{} · {}{}", target.label(), origin, unsure ? ", read as morning" : "")));
    }
    return rows;
}

} // namespace tessarine
