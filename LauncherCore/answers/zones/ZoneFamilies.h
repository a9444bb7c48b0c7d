#pragma once

#include "LauncherCore/answers/TimeZones.h"

#include <string_view>
#include <vector>

/// The four shapes of a question about time, each a reader that gives rows or none. Texts are as
/// `ZoneWords::normalized` leaves them. Pure; any thread.
namespace tessarine::ZoneFamilies {

/// "athens vs et", "time difference between paris and tokyo": how far apart two clocks are.
std::vector<Answer>
difference(std::string_view text, const TimeZones::Context& context, const Formats& formats);

/// "in 2 hours in tokyo": clocks some time from now.
std::vector<Answer>
relative(std::string_view text, const TimeZones::Context& context, const Formats& formats);

/// "3pm et in athens": a stated time on other clocks.
std::vector<Answer>
conversion(std::string_view text, const TimeZones::Context& context, const Formats& formats);

/// "time in athens": clocks now.
std::vector<Answer>
current(std::string_view text, const TimeZones::Context& context, const Formats& formats);

} // namespace tessarine::ZoneFamilies
