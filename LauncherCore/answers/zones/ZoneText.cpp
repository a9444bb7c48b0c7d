#include "LauncherCore/answers/zones/ZoneText.h"

#include "LauncherCore/text/Counted.h"
#include "LauncherCore/text/Formats.h"

#include <fmt/format.h>

#include <cstdlib>

namespace tessarine {

namespace {

constexpr int minutesOfHour = 60;

Zone zoneOr(const ZoneClock& clock, const Zone& other) {
    return ZonePlaces::zone(clock).value_or(other);
}

std::string inStep(const ZoneClock& clock, const ZoneClock& home) {
    return "same as " + (clock.identifier == home.identifier ? "home" : home.name);
}

int minutesAhead(const Zone& zone, const Zone& from, double at) {
    return static_cast<int>(
        std::chrono::duration_cast<std::chrono::minutes>(zone.offset(at) - from.offset(at))
            .count());
}

} // namespace

std::string TimeZones::clockText(double at, const Zone& zone) {
    const auto time = std::chrono::hh_mm_ss(zone.civil(at).timeOfDay);
    const auto hour24 = static_cast<int>(time.hours().count());
    const int hour = hour24 % 12 == 0 ? 12 : hour24 % 12;
    const auto* half = hour24 < 12 ? "am" : "pm";
    if (time.minutes().count() == 0)
        return fmt::format("{}{}", hour, half);
    return fmt::format("{}:{:02}{}", hour, time.minutes().count(), half);
}

std::string TimeZones::offsetText(const Zone& zone, const Zone& from, double at) {
    const int ahead = minutesAhead(zone, from, at);
    if (ahead == 0)
        return "same time";
    const char sign = ahead > 0 ? '+' : '-';
    const int hours = std::abs(ahead) / minutesOfHour;
    const int minutes = std::abs(ahead) % minutesOfHour;
    if (minutes == 0)
        return fmt::format("{}{}h", sign, hours);
    return fmt::format("{}{}:{:02}h", sign, hours, minutes);
}

std::string TimeZones::differenceWords(int minutes) {
    if (minutes == 0)
        return "the same time as";
    // Through a wider type, as the least int has no positive one.
    const auto magnitude = std::abs(static_cast<long>(minutes));
    const int hours = static_cast<int>(magnitude / minutesOfHour);
    const int rest = static_cast<int>(magnitude % minutesOfHour);
    std::string words;
    if (hours > 0)
        words = counted(hours, "hour");
    if (rest > 0)
        words += (words.empty() ? "" : " ") + counted(rest, "minute");
    return words + (minutes > 0 ? " ahead of" : " behind");
}

std::string
TimeZones::nowValue(const ZoneClock& clock, const Context& context, const Formats& formats) {
    return ZoneText::value(clock, context.now, context, formats);
}

std::string ZoneText::value(const ZoneClock& clock,
                            double at,
                            const TimeZones::Context& context,
                            const Formats& formats) {
    return value(clock, context.home, at, context, formats);
}

std::string ZoneText::value(const ZoneClock& clock,
                            const ZoneClock& stated,
                            double at,
                            const TimeZones::Context& context,
                            const Formats& formats) {
    const auto home = zoneOr(context.home, Zone::utc());
    const auto zone = zoneOr(clock, home);
    auto text = TimeZones::clockText(at, zone);
    const auto date = zone.civil(at).date;
    if (date != home.civil(at).date || date != zoneOr(stated, home).civil(at).date)
        text += " " + formats.date(at, "EEE", zone);
    const auto offset = minutesAhead(zone, home, at) == 0 ? inStep(clock, context.home)
                                                          : TimeZones::offsetText(zone, home, at);
    return fmt::format("{} ({})", text, offset);
}

std::string ZoneText::day(const ZoneClock& clock, double at, const Formats& formats) {
    return formats.date(at, "EEE, MMM d", zoneOr(clock, formats.zone()));
}

Answer ZoneText::row(const ZoneClock& clock, std::string value, std::string detail) {
    return {.value = std::move(value),
            .detail = std::move(detail),
            .symbol = "clock",
            .glyph = ZonePlaces::flag(clock)};
}

} // namespace tessarine
