#include "LauncherCore/answers/DateWords.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"
#include "LauncherCore/text/Pattern.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string>

namespace tessarine {

namespace {

using std::chrono::year_month_day;

constexpr std::array<std::string_view, 12> englishMonths{"january",
                                                         "february",
                                                         "march",
                                                         "april",
                                                         "may",
                                                         "june",
                                                         "july",
                                                         "august",
                                                         "september",
                                                         "october",
                                                         "november",
                                                         "december"};
constexpr std::size_t shortMonth = 3; ///< letters of "Jan", "Feb", …

int number(const std::string& text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string withoutStop(std::string_view text) {
    if (text.ends_with('.'))
        text.remove_suffix(1);
    return Folding::fold(text);
}

constexpr const char* monthForms[] = {"MMMM", "MMM", "LLLL", "LLL"};
using MonthNames = std::array<std::array<std::string, std::size(monthForms)>, 12>;

MonthNames monthNames(const Formats& formats) {
    MonthNames result;
    for (unsigned month = 0; month < result.size(); ++month) {
        const auto middle = std::chrono::year(2000) / static_cast<int>(month + 1) / 15;
        const auto at = static_cast<double>(
            std::chrono::sys_seconds(std::chrono::sys_days(middle)).time_since_epoch().count());
        for (std::size_t form = 0; form < std::size(monthForms); ++form)
            result[month][form] = withoutStop(formats.date(at, monthForms[form], Zone::utc()));
    }
    return result;
}

/// The names are formatted once a language: 48 texts for each keystroke of a word that is no month
/// would cost more than all other families together.
std::optional<unsigned> monthInLanguage(std::string_view name, const Formats& formats) {
    thread_local std::map<std::string, MonthNames> names;
    auto found = names.find(formats.dateLanguage());
    if (found == names.end())
        found = names.emplace(formats.dateLanguage(), monthNames(formats)).first;
    for (unsigned month = 0; month < found->second.size(); ++month)
        if (std::ranges::find(found->second[month], name) != found->second[month].end())
            return month + 1;
    return std::nullopt;
}

/// 1 to 12 for a name; a number as it stands.
std::optional<unsigned> monthOf(const std::string& word, const Formats& formats) {
    if (word.front() >= '0' && word.front() <= '9')
        return static_cast<unsigned>(number(word));
    const auto name = withoutStop(word);
    for (unsigned month = 0; month < englishMonths.size(); ++month)
        if (name == englishMonths[month] || name == englishMonths[month].substr(0, shortMonth))
            return month + 1;
    if (name == "sept")
        return 9;
    return monthInLanguage(name, formats);
}

struct Written {
    std::string year;  ///< empty when it was left out
    std::string month; ///< its name or number
    std::string day;
};

std::optional<Written> read(std::string_view text) {
    static const Pattern monthFirst(
        R"(^(\p{L}+\.?)\s+(\d{1,2})(?:st|nd|rd|th)?(?:(?:\s*,\s*|\s+)(\d{4}))?$)");
    static const Pattern dayFirst(
        R"(^(\d{1,2})(?:st|nd|rd|th|\.)?\s+(?:of\s+)?(\p{L}+\.?)(?:(?:\s*,\s*|\s+)(\d{4}))?$)");
    static const Pattern numbers(R"(^(\d{4})-(\d{1,2})-(\d{1,2})$)");
    if (const auto match = monthFirst.match(text))
        return Written{(*match)[3], (*match)[1], (*match)[2]};
    if (const auto match = dayFirst.match(text))
        return Written{(*match)[3], (*match)[2], (*match)[1]};
    if (const auto match = numbers.match(text))
        return Written{(*match)[1], (*match)[2], (*match)[3]};
    return std::nullopt;
}

/// The date without a stated year that comes next, or was last. February 29 is looked for until a
/// leap year has it.
std::optional<year_month_day>
nearest(std::chrono::month_day wanted, const year_month_day& today, DateWords::Year missing) {
    constexpr int leapYearsApart = 8; // over a century that has none
    const int step = missing == DateWords::Year::coming ? 1 : -1;
    for (int years = 0; years <= leapYearsApart; ++years) {
        const auto date = (today.year() + std::chrono::years(step * years)) / wanted;
        const bool isThere = missing == DateWords::Year::coming ? date >= today : date <= today;
        if (date.ok() && isThere)
            return date;
    }
    return std::nullopt;
}

std::optional<std::chrono::weekday> weekdayNamed(std::string_view text) {
    constexpr std::string_view names[] = {
        "sunday", "monday", "tuesday", "wednesday", "thursday", "friday", "saturday"};
    const auto* const found = std::ranges::find(names, text);
    if (found == std::end(names))
        return std::nullopt;
    return std::chrono::weekday(static_cast<unsigned>(found - std::begin(names)));
}

/// A week away rather than today: who asks for Friday on a Friday knows what day it is.
year_month_day
nearest(std::chrono::weekday wanted, const year_month_day& today, DateWords::Year missing) {
    const auto from = std::chrono::sys_days(today);
    if (missing == DateWords::Year::past) {
        const auto back = std::chrono::weekday(from) - wanted;
        return from - (back.count() == 0 ? std::chrono::days(7) : back);
    }
    const auto ahead = wanted - std::chrono::weekday(from);
    return from + (ahead.count() == 0 ? std::chrono::days(7) : ahead);
}

std::optional<std::chrono::month_day> feastNamed(std::string_view text) {
    using std::chrono::day;
    using std::chrono::month;

    static constexpr struct {
        std::string_view name;
        std::chrono::month_day date;
    } feasts[] = {
        {"new year", month(1) / day(1)},
        {"new years", month(1) / day(1)},
        {"new year's", month(1) / day(1)},
        {"new year's day", month(1) / day(1)},
        {"valentine's day", month(2) / day(14)},
        {"valentines day", month(2) / day(14)},
        {"halloween", month(10) / day(31)},
        {"christmas eve", month(12) / day(24)},
        {"christmas", month(12) / day(25)},
        {"xmas", month(12) / day(25)},
        {"christmas day", month(12) / day(25)},
        {"new year's eve", month(12) / day(31)},
        {"new years eve", month(12) / day(31)},
    };

    for (const auto& feast : feasts)
        if (text == feast.name)
            return feast.date;
    return std::nullopt;
}

/// "12/25" and "1/15/2028", the month first.
std::optional<year_month_day>
readSlashed(std::string_view text, const year_month_day& today, DateWords::Year missing) {
    static const Pattern slashed(R"(^(\d{1,2})\/(\d{1,2})(?:\/(\d{4}))?$)");
    const auto match = slashed.match(text);
    if (!match)
        return std::nullopt;
    const std::chrono::month_day day{std::chrono::month(static_cast<unsigned>(number((*match)[1]))),
                                     std::chrono::day(static_cast<unsigned>(number((*match)[2])))};
    if (!match->has(3))
        return day.ok() ? nearest(day, today, missing) : std::nullopt;
    const auto date = std::chrono::year(number((*match)[3])) / day;
    return date.ok() ? std::optional(date) : std::nullopt;
}

} // namespace

std::optional<year_month_day> DateWords::date(std::string_view text,
                                              const year_month_day& today,
                                              Year missing,
                                              const Formats& formats) {
    const auto written = read(text);
    if (!written || (written->year.empty() && missing == Year::stated))
        return std::nullopt;
    const auto month = monthOf(written->month, formats);
    if (!month)
        return std::nullopt;
    const std::chrono::month_day day{std::chrono::month(*month),
                                     std::chrono::day(static_cast<unsigned>(number(written->day)))};
    if (written->year.empty())
        return day.ok() ? nearest(day, today, missing) : std::nullopt;
    const auto date = std::chrono::year(number(written->year)) / day;
    return date.ok() ? std::optional(date) : std::nullopt;
}

std::optional<year_month_day> DateWords::day(std::string_view text,
                                             const year_month_day& today,
                                             Year missing,
                                             const Formats& formats) {
    if (text == "today")
        return today;
    if (text == "tomorrow")
        return std::chrono::sys_days(today) + std::chrono::days(1);
    if (text == "yesterday")
        return std::chrono::sys_days(today) - std::chrono::days(1);
    if (const auto weekday = weekdayNamed(text))
        return nearest(*weekday, today, missing);
    if (const auto feast = feastNamed(text))
        return nearest(*feast, today, missing);
    if (const auto slashed = readSlashed(text, today, missing))
        return slashed;
    return date(text, today, missing, formats);
}

} // namespace tessarine
