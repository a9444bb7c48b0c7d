#pragma once

#include "LauncherCore/answers/Answer.h"
#include "LauncherCore/answers/ZoneClock.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {
class Formats;
class Zone;
} // namespace tessarine

/// World-clock questions: "time in athens", "3pm et in athens", "athens vs et", "in 2 hours in
/// tokyo", or just "3pm". Each clock answers in a row of its own that says how far it is from home:
/// "10pm (+7h)". Pure but for tables that are built once; any thread.
namespace tessarine::TimeZones {

struct Context {
    ZoneClock home;                 ///< what offsets are counted from
    ZoneClock here;                 ///< where the computer is: the zone of a clock without one
    std::vector<ZoneClock> primary; ///< the watched clocks: who answers when no place is named
    double now = 0;                 ///< seconds since 1970, UTC
};

/// At most so many rows answer one question.
inline constexpr std::size_t mostAnswers = 20;

/// The longest question that is looked at, in bytes.
inline constexpr std::size_t longestQuestion = 200;

/// One row a clock, in the order asked for; empty for a text that asks no time.
std::vector<Answer> answers(std::string_view text, const Context& context, const Formats& formats);

/// The gate in front of all of it: whether a lower-case text has a word of time, or a digit with
/// something that makes it a clock.
bool mightBeAboutTime(std::string_view text);

/// The clock of a place as people write it: home, here, an offset, an abbreviation, a city, a
/// watched clock or a country. A country with several zones gives the one that most people mean.
std::optional<ZoneClock> resolvePlace(std::string_view word, const Context& context);

/// The fixed zone of "utc+5:30" or "gmt-3", below 15 hours; nothing for anything else.
std::optional<ZoneClock> offsetZone(std::string_view word);

/// How far the clocks of `zone` are ahead of those of `from` at a moment: "+7h", "-3h", "+5:30h",
/// or "same time".
std::string offsetText(const Zone& zone, const Zone& from, double at);

/// The clock on the wall, of twelve hours: "10pm", "3:30am".
std::string clockText(double at, const Zone& zone);

/// How a clock that is so many minutes ahead stands to another: "7 hours ahead of", "1 hour 30
/// minutes behind", "the same time as".
std::string differenceWords(int minutes);

/// The clock now and its distance from home: "10pm (+7h)"; with the weekday where that is another
/// day than at home: "3am Sat (+9h)".
std::string nowValue(const ZoneClock& clock, const Context& context, const Formats& formats);

/// The city that a zone is named after ("Buenos Aires" of "America/Argentina/Buenos_Aires").
std::string cityName(std::string_view identifier);

/// Builds the tables, some milliseconds of work that the first question would wait for otherwise.
void warm();

} // namespace tessarine::TimeZones
