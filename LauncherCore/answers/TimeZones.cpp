#include "LauncherCore/answers/TimeZones.h"

#include "LauncherCore/answers/zones/ZoneFamilies.h"
#include "LauncherCore/answers/zones/ZonePlaces.h"
#include "LauncherCore/answers/zones/ZoneWords.h"
#include "LauncherCore/text/Formats.h"

#include <array>
#include <cmath>

namespace tessarine {

namespace {

/// Some three thousand years: beyond it a calendar says nothing, and far beyond its figures end.
constexpr double farthestSeconds = 1e11;

constexpr std::array families{ZoneFamilies::difference,
                              ZoneFamilies::relative,
                              ZoneFamilies::conversion,
                              ZoneFamilies::current};

} // namespace

std::vector<Answer>
TimeZones::answers(std::string_view text, const Context& context, const Formats& formats) {
    if (text.size() > longestQuestion || !(std::abs(context.now) < farthestSeconds))
        return {};
    const auto question = ZoneWords::normalized(text);
    if (question.empty() || !mightBeAboutTime(question))
        return {};
    for (const auto family : families) {
        auto rows = family(question, context, formats);
        if (rows.size() > mostAnswers)
            rows.resize(mostAnswers);
        if (!rows.empty())
            return rows;
    }
    return {};
}

void TimeZones::warm() {
    ZonePlaces::prepare();
    // A question of each family compiles its patterns.
    const ZoneClock clock{.name = "UTC", .identifier = "Etc/UTC"};
    const Context context{.home = clock, .here = clock, .primary = {clock}};
    const Formats formats({}, Zone::utc());
    for (const auto* question : {"how many hours ahead of utc is gmt+1",
                                 "utc in 2 hours",
                                 "9:15 utc in gmt",
                                 "9 in utc",
                                 "time in utc"})
        answers(question, context, formats);
}

} // namespace tessarine
