#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/DateWords.h"
#include "LauncherCore/answers/NumberPhrases.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <string>

namespace tessarine {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::string_view longForm = "EEEE, MMMM d, yyyy";

constexpr std::int64_t daysOfWeek = 7;

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

/// A count, or the article of "a week".
std::optional<std::int64_t> countOrOne(const std::string& text) {
    return text.starts_with('a') ? 1 : count(text);
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
    static const Pattern span(
        R"(^(\d+|an?)\s*(days?|weeks?|months?|years?)\s+(from now|from today|ago)$)");
    static const Pattern ahead(R"(^in\s+(\d+|an?)\s*(days?|weeks?|months?|years?)$)");
    auto match = span.match(text);
    const bool isAhead = !match;
    if (isAhead)
        match = ahead.match(text);
    if (!match)
        return std::nullopt;
    const auto amount = countOrOne((*match)[1]);
    if (!amount)
        return std::nullopt;
    const auto direction = isAhead ? "from now" : (*match)[3];
    return dateAnswer(later(today, direction == "ago" ? -*amount : *amount, (*match)[2]),
                      fmt::format("{} {} {}", (*match)[1], (*match)[2], direction),
                      formats);
}

/// "5 weeks", "5 weeks 2 days".
std::string weeksText(std::int64_t distance, const Formats& formats) {
    const auto weeks = distance / daysOfWeek;
    const auto rest = distance % daysOfWeek;
    if (weeks == 0)
        return daysText(rest, formats);
    const auto text = fmt::format("{} {}", formats.whole(weeks), weeks == 1 ? "week" : "weeks");
    return rest == 0 ? text : fmt::format("{} {}", text, daysText(rest, formats));
}

/// How far a day is, never below zero. A day on the other side than was asked for says so.
Answer distanceAnswer(std::string_view unit,
                      std::string_view asked,
                      const year_month_day& day,
                      const year_month_day& today,
                      const Formats& formats) {
    const auto ahead = (sys_days(day) - sys_days(today)).count();
    const auto distance = std::abs(ahead);
    const bool isUntil = asked != "since";
    auto value = unit == "weeks" ? weeksText(distance, formats) : daysText(distance, formats);
    if (isUntil && ahead < 0)
        value += " ago";
    if (!isUntil && ahead > 0)
        value = "in " + value;
    const bool saysUntil = ahead > 0 || (isUntil && ahead == 0);
    return {.value = std::move(value),
            .detail = (saysUntil ? "until " : "since ") + written(day, formats),
            .symbol = "calendar",
            .kind = AnswerKind::date,
            .number = static_cast<double>(distance) /
                      static_cast<double>(unit == "weeks" ? daysOfWeek : 1)};
}

std::optional<Answer>
untilOrSince(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern distance(
        R"(^(?:how many\s+)?(days|weeks)\s+(until|till|to|since)\s+(.+)$)");
    const auto match = distance.match(text);
    if (!match)
        return std::nullopt;
    const auto missing = (*match)[2] == "since" ? DateWords::Year::past : DateWords::Year::coming;
    const auto day = DateWords::day((*match)[3], today, missing, formats);
    if (!day)
        return std::nullopt;
    return distanceAnswer((*match)[1], (*match)[2], *day, today, formats);
}

std::string
distanceFrom(const year_month_day& today, const year_month_day& date, const Formats& formats) {
    const auto ahead = (sys_days(date) - sys_days(today)).count();
    if (ahead == 0)
        return "today";
    return ahead > 0 ? "in " + daysText(ahead, formats) : daysText(-ahead, formats) + " ago";
}

/// "what day is december 25", "what's the date".
std::optional<Answer>
whatDay(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern whatToday(
        R"(^what(?:'s|’s| is|s)?\s+(?:the date|today's date|(?:the )?(?:day|date) is (?:it|today)))"
        R"((?: today)?\s*\??$)");
    static const Pattern what(R"(^what (?:day|date|weekday)(?: of the week)? )"
                              R"((is|was|will be|falls on)\s+(.+?)\s*\??$)");
    if (whatToday.match(text))
        return dateAnswer(today, {}, formats);
    const auto match = what.match(text);
    if (!match)
        return std::nullopt;
    const auto missing = (*match)[1] == "was" ? DateWords::Year::past : DateWords::Year::coming;
    const auto day = DateWords::day((*match)[2], today, missing, formats);
    return day ? dateAnswer(*day, distanceFrom(today, *day, formats), formats) : std::nullopt;
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
    return dateAnswer(*date, distanceFrom(today, *date, formats), formats);
}

/// The day that a sum begins at. Without its year a date in figures is this year's, since its
/// steps may lead either way; one in words is the next, as everywhere else.
std::optional<year_month_day>
sumStart(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern slashed(R"(^\d{1,2}\/\d{1,2}$)");
    const bool isOfThisYear = slashed.match(text).has_value();
    const auto whole = isOfThisYear ? fmt::format("{}/{:04}", text, int(today.year())) : text;
    const auto day = DateWords::day(whole, today, DateWords::Year::coming, formats);
    return day && isInCalendar(*day) ? day : std::nullopt;
}

/// "1/15 + 30 days", "today - 2 weeks", "3 days after dec 25".
std::optional<Answer>
sum(const std::string& text, const year_month_day& today, const Formats& formats) {
    static const Pattern signedSteps(
        R"(^(\S.*?)\s*(\+|-|−|\bplus\b|\bminus\b)\s*(\d+|an?)\s*(days?|weeks?|months?|years?)$)");
    static const Pattern stepsFrom(
        R"(^(\d+|an?)\s*(days?|weeks?|months?|years?)\s+(after|from|before)\s+(.+)$)");
    if (const auto match = signedSteps.match(text)) {
        const auto from = sumStart((*match)[1], today, formats);
        const auto amount = countOrOne((*match)[3]);
        if (!from || !amount)
            return std::nullopt;
        const bool isLater = (*match)[2] == "+" || (*match)[2] == "plus";
        return dateAnswer(
            later(*from, isLater ? *amount : -*amount, (*match)[4]),
            fmt::format("{} {} {} {}", (*match)[1], isLater ? "+" : "-", (*match)[3], (*match)[4]),
            formats);
    }
    if (const auto match = stepsFrom.match(text)) {
        const auto amount = countOrOne((*match)[1]);
        const auto from = sumStart((*match)[4], today, formats);
        if (!from || !amount)
            return std::nullopt;
        return dateAnswer(
            later(*from, (*match)[3] == "before" ? -*amount : *amount, (*match)[2]),
            fmt::format(
                "{} {} {} {}", (*match)[1], (*match)[2], (*match)[3], written(*from, formats)),
            formats);
    }
    return std::nullopt;
}

} // namespace

std::optional<Answer> Answers::dates(std::string_view text, double now, const Formats& formats) {
    const auto today = formats.zone().civil(now).date;
    const auto typed = NumberPhrases::inDigits(text);
    for (const auto family : {fromNow, untilOrSince, whatDay, namedDay, sum})
        if (auto answer = family(typed, today, formats))
            return answer;
    return std::nullopt;
}

} // namespace tessarine
