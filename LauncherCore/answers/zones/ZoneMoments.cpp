#include "LauncherCore/answers/zones/ZoneMoments.h"

#include "LauncherCore/answers/zones/ZonePlaces.h"
#include "LauncherCore/answers/zones/ZoneWords.h"
#include "LauncherCore/text/Pattern.h"
#include "LauncherCore/text/Zone.h"

#include <array>
#include <charconv>
#include <chrono>

namespace tessarine {

namespace {

using TimeZones::Context;
using TimeZones::Day;
using TimeZones::DayPhrase;
using TimeZones::Moment;
using TimeZones::Reading;
using TimeZones::StatedClock;
using TimeZones::StatedDay;

constexpr int noon = 12;
constexpr int hoursOfDay = 24;
constexpr int minutesOfHour = 60;

using Readings = std::optional<std::vector<Reading>>;

/// Digits or a number word; as `digits` are at most two, it fits.
int number(const std::string& text) {
    if (const auto word = ZoneWords::clockNumber(text))
        return *word;
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

bool isClock(int hour, int minute) {
    return hour >= 0 && hour < hoursOfDay && minute >= 0 && minute < minutesOfHour;
}

/// Of a clock that doesn't say which half of the day it means.
Readings eitherHalf(int hour, int minute) {
    if (!isClock(hour, minute))
        return std::nullopt;
    const bool decided = hour == 0 || hour >= noon;
    if (decided)
        return {{{hour, minute}}};
    return {{{hour, minute}, {hour + noon, minute}}};
}

Readings ofHalf(int hour, int minute, char half) {
    if (hour < 1 || hour > noon || minute >= minutesOfHour)
        return std::nullopt;
    return {{{hour % noon + (half == 'p' ? noon : 0), minute}}};
}

Readings namedClock(const Pattern::Match& match) {
    return {{{match[1] == "midnight" ? 0 : noon, 0}}};
}

/// "half past noon" says its half of the day.
Readings aroundTwelve(const std::string& shape, bool isMidnight) {
    const int hour = isMidnight ? 0 : noon;
    if (shape == "quarter to")
        return {{{(hour + hoursOfDay - 1) % hoursOfDay, 45}}};
    return {{{hour, shape == "half past" ? 30 : 15}}};
}

Readings quarters(const Pattern::Match& match) {
    if (match[2] == "noon" || match[2] == "midday" || match[2] == "midnight")
        return aroundTwelve(match[1], match[2] == "midnight");
    const int hour = number(match[2]);
    if (match[1] == "half past")
        return eitherHalf(hour, 30);
    if (match[1] == "quarter past")
        return eitherHalf(hour, 15);
    // A quarter to one is at noon, not at night.
    const int before = hour == 1 ? noon : (hour + hoursOfDay - 1) % hoursOfDay;
    return hour < hoursOfDay ? eitherHalf(before, 45) : std::nullopt;
}

Readings wholeHour(const Pattern::Match& match) {
    return eitherHalf(number(match[1]), 0);
}

Readings clockWithHalf(const Pattern::Match& match) {
    return ofHalf(number(match[1]), number(match[2]), match[3].front());
}

Readings clockOfDigits(const Pattern::Match& match) {
    return eitherHalf(number(match[1]), number(match[2]));
}

/// One way to write a clock; the last group is what follows it.
struct ClockShape {
    Pattern pattern;
    std::size_t rest;
    Readings (*readings)(const Pattern::Match&);
};

const std::array<ClockShape, 6>& clockShapes() {
    static const std::array<ClockShape, 6> shapes{
        ClockShape{Pattern(R"(^(?:12\s+)?(noon|midday|midnight)(?:\s+(.*))?$)"), 2, namedClock},
        ClockShape{Pattern(R"(^(half past|quarter past|quarter to)\s+(\d{1,2}|one|two|three|four)"
                           R"(|five|six|seven|eight|nine|ten|eleven|twelve|noon|midday|midnight))"
                           R"((?:\s+(.*))?$)"),
                   3,
                   quarters},
        ClockShape{Pattern(R"(^(\d{1,2}|one|two|three|four|five|six|seven|eight|nine|ten|eleven)"
                           R"(|twelve)\s*o'?clock(?:\s+(.*))?$)"),
                   2,
                   wholeHour},
        ClockShape{Pattern(R"(^(\d{1,2})(?::(\d{2}))?\s*(a\.?m\.?|p\.?m\.?|a|p)(?:\s+(.*))?$)"),
                   4,
                   clockWithHalf},
        ClockShape{Pattern(R"(^(\d{1,2}):(\d{2})(?:\s+(.*))?$)"), 3, clockOfDigits},
        // As the British write it; without its half it would be a figure.
        ClockShape{Pattern(R"(^(\d{1,2})\.(\d{2})\s*(am|pm)(?:\s+(.*))?$)"), 4, clockWithHalf},
    };
    return shapes;
}

/// Whether a clock may begin here at all: most words needn't be matched.
bool mayBeginClock(std::string_view text) {
    if (text.empty())
        return false;
    if (text.front() >= '0' && text.front() <= '9')
        return true;
    const auto word = text.substr(0, text.find_first_of(" '"));
    return word == "noon" || word == "midday" || word == "midnight" || word == "half" ||
           word == "quarter" || word.ends_with("clock") || ZoneWords::clockNumber(word);
}

/// What can follow a clock and say which half of the day it means.
struct HalfWords {
    std::string_view words;
    bool evening;
};

constexpr HalfWords halves[] = {
    {"in the morning", false},
    {"in the afternoon", true},
    {"in the evening", true},
    {"at night", true},
    {"am", false},
    {"pm", true},
    {"a.m.", false},
    {"p.m.", true},
};

std::vector<Reading> inTheMorning(const std::vector<Reading>& readings) {
    return {readings.front()};
}

/// Takes words such as "in the evening" off the beginning of the clock's rest.
StatedClock decidedByHalf(StatedClock clock) {
    for (const auto& [words, evening] : halves)
        if (const auto rest = ZoneWords::after(clock.rest, words))
            return {.readings =
                        evening ? inTheEvening(clock.readings) : inTheMorning(clock.readings),
                    .rest = std::string(*rest)};
    return clock;
}

struct DayWords {
    std::string_view words;
    DayPhrase phrase;
};

constexpr DayWords dayPhrases[] = {
    {"tomorrow night", {{Day::Kind::tomorrow}, true}},
    {"tomorrow evening", {{Day::Kind::tomorrow}, true}},
    {"this evening", {{Day::Kind::today}, true}},
    {"tomorrow", {{Day::Kind::tomorrow}, false}},
    {"yesterday", {{Day::Kind::yesterday}, false}},
    {"tonight", {{Day::Kind::today}, true}},
    {"today", {{Day::Kind::today}, false}},
};

constexpr std::string_view weekdays[] = {
    "sunday", "monday", "tuesday", "wednesday", "thursday", "friday", "saturday"};

std::string_view trimmed(std::string_view text) {
    return ZoneWords::trimmed(text);
}

std::optional<int> weekdayOf(std::string_view word) {
    constexpr std::size_t shortest = 3; // "mon", and "thurs" as well
    if (word.size() < shortest)
        return std::nullopt;
    for (std::size_t i = 0; i < std::size(weekdays); ++i)
        if (weekdays[i].starts_with(word))
            return static_cast<int>(i) + 1;
    return std::nullopt;
}

DayPhrase onWeekday(int weekday, Day::Next next) {
    return {.day = {.kind = Day::Kind::weekday, .weekday = weekday, .next = next}};
}

std::optional<StatedDay> leadingWeekday(std::string_view text) {
    auto next = Day::Next::no;
    if (const auto rest = ZoneWords::after(text, "next")) {
        next = Day::Next::yes;
        text = *rest;
    } else if (const auto dayAfterOn = ZoneWords::after(text, "on")) {
        text = *dayAfterOn;
    }
    const auto word = text.substr(0, text.find(' '));
    if (const auto weekday = weekdayOf(word))
        return StatedDay{onWeekday(*weekday, next), trimmed(text.substr(word.size()))};
    return std::nullopt;
}

std::optional<StatedDay> trailingWeekday(std::string_view text) {
    const auto blank = text.rfind(' ');
    const auto start = blank == std::string_view::npos ? 0 : blank + 1;
    const auto weekday = weekdayOf(text.substr(start));
    if (!weekday)
        return std::nullopt;
    const auto rest = trimmed(text.substr(0, start));
    if (const auto before = ZoneWords::without(rest, "next"))
        return StatedDay{onWeekday(*weekday, Day::Next::yes), *before};
    return StatedDay{onWeekday(*weekday, Day::Next::no),
                     ZoneWords::without(rest, "on").value_or(rest)};
}

/// Days from today to the stated one.
std::chrono::days distance(const Day& day, std::chrono::year_month_day today) {
    constexpr int daysOfWeek = 7;
    switch (day.kind) {
    case Day::Kind::today:
        return std::chrono::days(0);
    case Day::Kind::tomorrow:
        return std::chrono::days(1);
    case Day::Kind::yesterday:
        return std::chrono::days(-1);
    case Day::Kind::weekday:
        break;
    }
    const auto current =
        static_cast<int>(std::chrono::weekday(std::chrono::sys_days(today)).c_encoding()) + 1;
    const int ahead = (day.weekday - current + daysOfWeek) % daysOfWeek;
    return std::chrono::days(ahead == 0 && day.next == Day::Next::yes ? daysOfWeek : ahead);
}

} // namespace

std::optional<StatedClock> TimeZones::leadingClock(std::string_view text) {
    if (!mayBeginClock(text))
        return std::nullopt;
    for (const auto& shape : clockShapes())
        if (const auto match = shape.pattern.match(text))
            if (auto readings = shape.readings(*match))
                return decidedByHalf({std::move(*readings), (*match)[shape.rest]});
    return std::nullopt;
}

std::optional<StatedClock> TimeZones::trailingClock(std::string_view text) {
    for (auto start = text.find(' '); start != std::string_view::npos;
         start = text.find(' ', start + 1)) {
        auto clock = leadingClock(text.substr(start + 1));
        if (clock && clock->rest.empty())
            return StatedClock{std::move(clock->readings),
                               std::string(trimmed(text.substr(0, start)))};
    }
    return std::nullopt;
}

std::optional<StatedClock> TimeZones::bareHour(std::string_view text) {
    static const Pattern pattern(R"(^(\d{1,2})\s+(.*)$)");
    const auto match = mayBeginClock(text) ? pattern.match(text) : std::nullopt;
    if (!match)
        return std::nullopt;
    const int hour = number((*match)[1]);
    if (hour < 1 || hour > noon)
        return std::nullopt;
    return decidedByHalf({*eitherHalf(hour, 0), (*match)[2]});
}

std::optional<StatedDay> TimeZones::statedDay(std::string_view text) {
    for (const auto& [words, phrase] : dayPhrases)
        if (const auto rest = ZoneWords::after(text, words))
            return StatedDay{phrase, *rest};
    for (const auto& [words, phrase] : dayPhrases)
        if (const auto rest = ZoneWords::without(text, words))
            return StatedDay{phrase, *rest};
    if (const auto day = leadingWeekday(text))
        return day;
    return trailingWeekday(text);
}

std::vector<Reading> TimeZones::inTheEvening(const std::vector<Reading>& readings) {
    const auto& last = readings.back();
    if (readings.size() == 1 && (last.hour == noon || last.hour == 0))
        return {{hoursOfDay, last.minute}};
    return {last};
}

std::optional<double> TimeZones::instant(const Moment& moment, double now) {
    const auto zone = ZonePlaces::zone(moment.zone);
    if (!zone || moment.readings.empty())
        return std::nullopt;
    const auto today = zone->civil(now).date;
    const auto& reading = moment.readings.front();
    auto day = std::chrono::sys_days(today) + distance(moment.day, today);
    if (reading.hour == hoursOfDay)
        day += std::chrono::days(1);
    return zone->instant({.date = day,
                          .timeOfDay = std::chrono::hours(reading.hour % hoursOfDay) +
                                       std::chrono::minutes(reading.minute)});
}

} // namespace tessarine
