#pragma once

#include "LauncherCore/answers/zones/ZonePlaces.h"

#include <string>

namespace tessarine {
class Formats;
} // namespace tessarine

/// How the rows of clocks are worded. Pure; any thread.
namespace tessarine::ZoneText {

/// The clock at a moment and its distance from home: "10pm (+7h)", "3am Sat (+9h)".
std::string
value(const ZoneClock& clock, double at, const TimeZones::Context& context, const Formats& formats);

/// The same with the weekday also where it isn't the day on the clock that the time was stated by.
std::string value(const ZoneClock& clock,
                  const ZoneClock& stated,
                  double at,
                  const TimeZones::Context& context,
                  const Formats& formats);

/// The day there, as in "Fri, Jul 10".
std::string day(const ZoneClock& clock, double at, const Formats& formats);

/// A row with the clock's symbol and its country's flag.
Answer row(const ZoneClock& clock, std::string value, std::string detail);

} // namespace tessarine::ZoneText
