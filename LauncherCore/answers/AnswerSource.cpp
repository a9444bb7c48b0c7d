#include "LauncherCore/answers/AnswerSource.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"

#include <fmt/format.h>

#include <algorithm>

namespace tessarine {

namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerHour = 3600;
constexpr double oldest = 1e15; ///< seconds; keeps a damaged time within an integer

} // namespace

std::string AnswerSource::line(double now, const Formats& formats) const {
    if (fetched == 0)
        return host;
    const auto& zone = formats.zone();
    const bool isToday = zone.civil(fetched).date == zone.civil(now).date;
    // The half of the day alone is put in lower case: the month keeps its capital.
    const auto half = Folding::lowercase(formats.date(fetched, "a"));
    return fmt::format("{} · {}{} {}",
                       host,
                       isToday ? "today at " : formats.date(fetched, "MMM d, "),
                       formats.date(fetched, "h:mm"),
                       half);
}

std::string Answers::ageText(double fetched, double now) {
    const double age = now - fetched > 0 ? std::min(now - fetched, oldest) : 0;
    if (age < secondsPerHour)
        return fmt::format("{} min ago", std::max(static_cast<long>(age / secondsPerMinute), 1L));
    return fmt::format("{} h ago", static_cast<long>(age / secondsPerHour));
}

} // namespace tessarine
