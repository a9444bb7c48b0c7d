#pragma once

#include "LauncherCore/answers/TimeZones.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Stated times: the clock ("3pm", "quarter to nine"), the day ("tomorrow", "next friday") and the
/// zone that it is told by. Texts are as `ZoneWords::normalized` leaves them. Pure; any thread.
namespace tessarine::TimeZones {

struct Reading {
    int hour = 0; ///< 0 to 23, or 24 for the midnight that ends a day
    int minute = 0;

    bool operator==(const Reading&) const = default;
};

struct Day {
    enum class Kind { today, tomorrow, yesterday, weekday };
    enum class Next { no, yes };
    Kind kind = Kind::today;
    int weekday = 1;      ///< of a weekday: 1 is Sunday, 7 Saturday
    Next next = Next::no; ///< never today

    bool operator==(const Day&) const = default;
};

/// A day's words, and whether they mean its evening ("tonight").
struct DayPhrase {
    Day day;
    bool evening = false;
};

/// A stated time.
struct Moment {
    Day day;
    std::vector<Reading> readings; ///< what the clock may mean; the morning first
    ZoneClock zone;                ///< that it was stated in
    bool zoneNamed = false;        ///< the text names it
};

/// A clock at one end of a text, and the text without it.
struct StatedClock {
    std::vector<Reading> readings;
    std::string rest;
};

/// The clock that the text begins with: "3pm et", "15:30 in rome", "half past six".
std::optional<StatedClock> leadingClock(std::string_view text);

/// The clock that the text ends with: "athens at 3pm".
std::optional<StatedClock> trailingClock(std::string_view text);

/// An hour alone, 1 to 12, that the text begins with: "8 in paris".
std::optional<StatedClock> bareHour(std::string_view text);

/// The words of a day at either end of a text, and the text without them.
struct StatedDay {
    DayPhrase phrase;
    std::string_view rest;
};

std::optional<StatedDay> statedDay(std::string_view text);

/// Only the later of two readings; of twelve o'clock the one at the evening's end.
std::vector<Reading> inTheEvening(const std::vector<Reading>& readings);

/// When the first reading shows on the stated zone's clocks, on a day counted there; nothing for
/// a zone that isn't known.
std::optional<double> instant(const Moment& moment, double now);

} // namespace tessarine::TimeZones
