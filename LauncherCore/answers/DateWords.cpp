#include "LauncherCore/answers/DateWords.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"
#include "LauncherCore/text/Pattern.h"

#include <array>
#include <charconv>
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
    for (unsigned month = 1; month <= englishMonths.size(); ++month) {
        const auto middle = std::chrono::year(2000) / static_cast<int>(month) / 15;
        const auto at = static_cast<double>(
            std::chrono::sys_seconds(std::chrono::sys_days(middle)).time_since_epoch().count());
        for (const auto* const form : {"MMMM", "MMM", "LLLL", "LLL"})
            if (name == withoutStop(formats.date(at, form, Zone::utc())))
                return month;
    }
    return std::nullopt;
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

} // namespace tessarine
