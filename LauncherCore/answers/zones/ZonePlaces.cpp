#include "LauncherCore/answers/zones/ZonePlaces.h"

#include "LauncherCore/answers/Places.h"
#include "LauncherCore/answers/zones/ZoneTables.h"
#include "LauncherCore/answers/zones/ZoneWords.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <utility>

namespace tessarine {

namespace {

using TimeZones::Context;
using ZonePlaces::Place;

/// More than there are; a text can ask for one fixed offset after another.
constexpr std::size_t mostZonesAtHand = 1000;

int number(const std::string& digits) {
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

Place place(std::string_view name, std::string_view identifier) {
    return {.clock = {.name = std::string(name), .identifier = std::string(identifier)}};
}

/// Whether the clocks of a country differ at a moment.
bool differ(std::span<const std::string_view> identifiers, double at) {
    std::optional<std::chrono::seconds> first;
    for (const auto identifier : identifiers) {
        const auto zone = ZonePlaces::zone({.identifier = std::string(identifier)});
        if (!zone)
            continue;
        const auto offset = zone->offset(at);
        if (offset != first.value_or(offset))
            return true;
        first = offset;
    }
    return false;
}

std::optional<Place> country(std::string_view region, std::string_view name, double now) {
    const auto identifiers = ZoneTables::zones(region);
    if (identifiers.empty())
        return std::nullopt;
    auto found = place(name, identifiers.front());
    found.several = differ(identifiers, now);
    found.region = region;
    return found;
}

/// A country by its name or, when it has one clock, by any word for a part of it: what is right
/// for all of it is right there.
std::optional<Place> country(std::string_view word, double now) {
    if (const auto* named = ZoneTables::country(ZoneTables::key(word)))
        return country(named->region, named->name, now);
    const auto found = Places::resolve(word);
    if (!found)
        return std::nullopt;
    auto result = country(found->region, found->name, now);
    if (result && result->several && Places::key(found->name) != Places::key(word))
        return std::nullopt;
    return result;
}

std::optional<Place> watched(std::string_view key, const Context& context) {
    for (const auto& clock : context.primary)
        if (ZoneTables::key(Folding::fold(clock.name)) == key && ZonePlaces::zone(clock))
            return Place{.clock = clock};
    return std::nullopt;
}

std::optional<Place> ofTheUser(std::string_view word, const Context& context) {
    if (ZoneWords::isHome(word))
        return Place{.clock = context.home};
    if (ZoneWords::isHere(word))
        return Place{.clock = context.here};
    return std::nullopt;
}

std::string_view withoutTime(std::string_view word) {
    for (const auto* end : {"local time", "time zone", "timezone", "time"})
        if (const auto rest = ZoneWords::without(word, end))
            return *rest;
    return word;
}

/// The ends of the parts that "," and " and " make of a text, and where the next ones begin.
std::vector<std::pair<std::size_t, std::size_t>> partings(std::string_view text) {
    constexpr std::string_view word = " and ";
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] == ',')
            found.emplace_back(at, at + 1);
        else if (text.substr(at).starts_with(word))
            found.emplace_back(at, at + word.size());
    found.emplace_back(text.size(), text.size());
    return found;
}

/// "seoul, south korea" is one clock.
bool isCountryOf(const Place& place, const Place& city) {
    return !place.region.empty() && ZoneTables::region(city.clock.identifier) == place.region;
}

void add(std::vector<Place>& places, Place&& place) {
    const auto isSame = [&](const Place& other) { return other.clock == place.clock; };
    if (std::ranges::any_of(places, isSame))
        return;
    if (!places.empty() && isCountryOf(place, places.back()))
        return;
    places.push_back(std::move(place));
}

} // namespace

std::string ZonePlaces::Place::label() const {
    if (!several)
        return clock.name;
    return fmt::format(
        "{} ({}, one of several zones)", clock.name, TimeZones::cityName(clock.identifier));
}

std::optional<ZoneClock> TimeZones::offsetZone(std::string_view word) {
    static const Pattern pattern(R"(^(utc|gmt)\s*([+\-−])\s*(\d{1,2})(?::?(\d{2}))?$)",
                                 Pattern::Case::ignored);
    const auto match = pattern.match(word);
    if (!match)
        return std::nullopt;
    const auto& groups = *match;
    const int hours = number(groups[3]);
    const int minutes = number(groups[4]);
    if (hours >= 15 || minutes >= 60)
        return std::nullopt;
    const char sign = groups[2] == "+" ? '+' : '-';
    const auto* prefix = Folding::lowercase(groups[1]) == "utc" ? "UTC" : "GMT";
    const auto name = minutes == 0 ? fmt::format("{}{}{}", prefix, sign, hours)
                                   : fmt::format("{}{}{}:{:02}", prefix, sign, hours, minutes);
    return ZoneClock{.name = name,
                     .identifier = fmt::format("GMT{}{:02}:{:02}", sign, hours, minutes)};
}

std::optional<ZonePlaces::Place> ZonePlaces::resolve(std::string_view word,
                                                     const Context& context) {
    if (auto known = ofTheUser(word, context))
        return known;
    word = withoutTime(word);
    if (const auto rest = ZoneWords::after(word, "the"))
        word = *rest;
    if (word.empty())
        return std::nullopt;
    if (auto known = ofTheUser(word, context))
        return known;
    if (const auto offset = TimeZones::offsetZone(word))
        return Place{.clock = *offset};
    const auto key = ZoneTables::key(word);
    if (const auto* row = ZoneTables::place(key))
        return place(row->name, row->identifier);
    if (auto clock = watched(key, context))
        return clock;
    return country(word, context.now);
}

std::vector<ZonePlaces::Place>
ZonePlaces::resolveAll(std::string_view text, const Context& context, Unknown unknown) {
    std::vector<Place> places;
    if (ZoneWords::isWorld(text)) {
        for (const auto& clock : context.primary)
            if (zone(clock))
                add(places, {.clock = clock});
        return places;
    }
    // The longest run of parts that is one place wins, as "trinidad and tobago" is.
    constexpr std::size_t mostParts = 3;
    const auto ends = partings(text);
    std::size_t start = 0;
    for (std::size_t part = 0; part < ends.size();) {
        std::size_t taken = 0;
        for (std::size_t count = std::min(mostParts, ends.size() - part); count > 0; --count) {
            const auto words =
                ZoneWords::trimmed(text.substr(start, ends[part + count - 1].first - start));
            // "in tokyo and in paris"
            auto found = resolve(ZoneWords::after(words, "in").value_or(words), context);
            if (!found)
                continue;
            add(places, std::move(*found));
            taken = count;
            break;
        }
        if (taken == 0 && unknown == Unknown::refused)
            return {};
        part += std::max<std::size_t>(taken, 1);
        start = ends[part - 1].second;
    }
    return places;
}

bool ZonePlaces::isZoneName(std::string_view word) {
    word = withoutTime(word);
    if (TimeZones::offsetZone(word))
        return true;
    const auto* row = ZoneTables::place(ZoneTables::key(word));
    return row && row->isAbbreviation;
}

bool ZonePlaces::isOrdinaryWord(std::string_view word) {
    return ZoneTables::isOrdinaryWord(ZoneTables::key(word));
}

std::optional<Zone> ZonePlaces::zone(const ZoneClock& clock) {
    // A thread has its own, as whoever asks in the background waits for nobody.
    thread_local std::unordered_map<std::string, Zone> atHand;
    if (const auto found = atHand.find(clock.identifier); found != atHand.end())
        return found->second;
    auto made = Zone::named(clock.identifier);
    if (!made)
        return std::nullopt;
    if (atHand.size() >= mostZonesAtHand)
        atHand.clear();
    return atHand.emplace(clock.identifier, std::move(*made)).first->second;
}

std::optional<std::string> ZonePlaces::flag(const ZoneClock& clock) {
    std::string region(ZoneTables::region(clock.identifier));
    if (region.empty()) // an older name, which the table of today's zones doesn't list
        region = Zone::region(clock.identifier).value_or("");
    auto flag = Places::flagOfRegion(region);
    return flag.empty() ? std::nullopt : std::optional(std::move(flag));
}

void ZonePlaces::prepare() {
    ZoneTables::prepare();
}

std::string TimeZones::cityName(std::string_view identifier) {
    const auto slash = identifier.rfind('/');
    std::string name(identifier.substr(slash == std::string_view::npos ? 0 : slash + 1));
    std::ranges::replace(name, '_', ' ');
    return name;
}

std::optional<ZoneClock> TimeZones::resolvePlace(std::string_view word, const Context& context) {
    if (word.size() > longestQuestion)
        return std::nullopt;
    const auto found = ZonePlaces::resolve(ZoneWords::normalized(word), context);
    if (!found)
        return std::nullopt;
    return found->clock;
}

} // namespace tessarine
