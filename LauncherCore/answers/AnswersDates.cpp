#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/DateWords.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <string>

namespace tessarine {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::string_view longForm = "EEEE, MMMM d, yyyy";

/// Beyond it nobody counts days, and calendars end.
constexpr std::int64_t longestSpan = 100'000;
constexpr int firstYear = 1;
constexpr int lastYear = 9999;

std::optional<std::int64_t> count(const std::string& text) {
    std::int64_t value = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value > longestSpan)
        return std::nullopt;
    return value;
}

bool isInCalendar(const year_month_day& date) {
    return date.ok() && int(date.year()) >= firstYear && int(date.year()) <= lastYear;
}

/// The last day of the month for a day that the month doesn't have: a month after January 31 is
/// February 28.
year_month_day inItsMonth(const year_month_day& date) {
    return date.ok() ? date : date.year() / date.month() / std::chrono::last;
}

year_month_day later(const year_month_day& date, std::int64_t amount, std::string_view unit) {
    const auto steps = static_cast<int>(amount);
    if (unit.starts_with("day"))
        return sys_days(date) + days(steps);
    if (unit.starts_with("week"))
        return sys_days(date) + days(steps * 7);
    if (unit.starts_with("month"))
        return inItsMonth(date + std::chrono::months(steps));
    return inItsMonth(date + std::chrono::years(steps));
}

std::string written(const year_month_day& date, const Formats& formats) {
    // Noon, so that no clock change can move the day.
    const double noon = formats.zone().instant({.date = date, .timeOfDay = std::chrono::hours(12)});
    return formats.date(noon, longForm);
}

std::optional<Answer>
dateAnswer(const year_month_day& date, std::string detail, const Formats& formats) {
    if (!isInCalendar(date))
        return std::nullopt;
    return Answer{.value = written(date, formats),
                  .detail = std::move(detail),
                  .symbol = "calendar",
                  .kind = AnswerKind::date,
                  .number = formats.zone().instant({.date = date})};
}

std::string daysText(std::int64_t amount, const Formats& formats) {
    return fmt::format(
        "{} {}", formats.whole(amount), amount == 1 || amount == -1 ? "day" : "days");
}

std::optional<Answer>
fromNow(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern span(R"(^(\d+|an?)\s*(day|days|week|weeks|month|months|year|years)\s+)"
                              R"((from now|from today|ago)$)");
    static const Pattern ahead(
        R"(^in\s+(\d+|an?)\s*(day|days|week|weeks|month|months|year|years)$)");
    auto match = span.match(text);
    const bool isAhead = !match;
    if (isAhead)
        match = ahead.match(text);
    if (!match)
        return std::nullopt;
    const auto amount = (*match)[1].starts_with('a') ? 1 : count((*match)[1]);
    if (!amount)
        return std::nullopt;
    const auto direction = isAhead ? "from now" : (*match)[3];
    return dateAnswer(later(today, direction == "ago" ? -*amount : *amount, (*match)[2]),
                      fmt::format("{} {} {}", (*match)[1], (*match)[2], direction),
                      formats);
}

Answer daysAnswer(days distance,
                  std::string_view preposition,
                  const year_month_day& day,
                  const Formats& formats) {
    return {.value = daysText(distance.count(), formats),
            .detail = std::string(preposition) + written(day, formats),
            .symbol = "calendar",
            .kind = AnswerKind::date,
            .number = static_cast<double>(distance.count())};
}

std::optional<Answer>
untilOrSince(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern until(R"(^(?:days|how many days)\s+(?:until|till|to)\s+(.+)$)");
    static const Pattern since(R"(^(?:days|how many days)\s+since\s+(.+)$)");
    if (const auto match = until.match(text))
        if (const auto day = DateWords::date((*match)[1], today, DateWords::Year::coming, formats))
            return daysAnswer(sys_days(*day) - sys_days(today), "until ", *day, formats);
    if (const auto match = since.match(text))
        if (const auto day = DateWords::date((*match)[1], today, DateWords::Year::past, formats))
            return daysAnswer(sys_days(today) - sys_days(*day), "since ", *day, formats);
    return std::nullopt;
}

std::optional<Answer>
namedDay(const std::string& text, const year_month_day& today, const Formats& formats) {
    if (text == "today" || text == "date")
        return dateAnswer(today, {}, formats);
    if (text == "tomorrow")
        return dateAnswer(later(today, 1, "day"), "1 day from now", formats);
    if (text == "yesterday")
        return dateAnswer(later(today, -1, "day"), "1 day ago", formats);
    // A date with its year is a question; without one it may as well be the name of something.
    const auto date = DateWords::date(text, today, DateWords::Year::stated, formats);
    if (!date)
        return std::nullopt;
    const auto distance = (sys_days(*date) - sys_days(today)).count();
    if (distance == 0)
        return dateAnswer(*date, "today", formats);
    return dateAnswer(*date,
                      distance > 0 ? "in " + daysText(distance, formats)
                                   : daysText(-distance, formats) + " ago",
                      formats);
}

std::optional<Answer>
daysAfter(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern sum(
        R"(^(\d{1,2})\/(\d{1,2})(?:\/(\d{4}))?\s*(?:\+|plus)\s*(\d+)\s*(day|days)$)");
    const auto match = sum.match(text);
    if (!match)
        return std::nullopt;
    const auto month = count((*match)[1]);
    const auto day = count((*match)[2]);
    const auto year = match->has(3) ? count((*match)[3]) : std::int64_t{int(today.year())};
    const auto amount = count((*match)[4]);
    if (!month || !day || !year || !amount)
        return std::nullopt;
    const year_month_day from{std::chrono::year(static_cast<int>(*year)),
                              std::chrono::month(static_cast<unsigned>(*month)),
                              std::chrono::day(static_cast<unsigned>(*day))};
    if (!isInCalendar(from))
        return std::nullopt;
    return dateAnswer(later(from, *amount, "day"),
                      fmt::format("{}/{}{}{} + {} {}",
                                  (*match)[1],
                                  (*match)[2],
                                  match->has(3) ? "/" : "",
                                  (*match)[3],
                                  (*match)[4],
                                  (*match)[5]),
                      formats);
}

} // namespace

std::optional<Answer> Answers::dates(std::string_view text, double now, const Formats& formats) {
    const auto today = formats.zone().civil(now).date;
    const std::string typed(text);
    for (const auto family : {fromNow, untilOrSince, namedDay, daysAfter})
        if (auto answer = family(typed, today, formats))
            return answer;
    return std::nullopt;
}

} // namespace tessarine
