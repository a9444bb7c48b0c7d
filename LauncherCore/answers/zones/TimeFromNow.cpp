#include "LauncherCore/answers/zones/ZoneFamilies.h"
#include "LauncherCore/answers/zones/ZonePlaces.h"
#include "LauncherCore/answers/zones/ZoneText.h"
#include "LauncherCore/answers/zones/ZoneWords.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <optional>

namespace tessarine {

namespace {

using TimeZones::Context;
using ZonePlaces::Unknown;

constexpr double secondsOfMinute = 60;
constexpr double secondsOfHour = 3600;
/// Ten years: whoever asks for a clock beyond that mistyped a figure.
constexpr double longestSpanSeconds = 10 * 366 * 24 * secondsOfHour;

/// A text's span and its place, both as typed.
struct Asked {
    std::string count;
    std::string unit;
    std::string place; ///< empty for home
};

struct Shape {
    Pattern pattern;
    std::size_t count; ///< its group; the unit's is the next
    std::size_t place; ///< its group; 0 for none
};

const std::array<Shape, 6>& shapes() {
    static const std::string span =
        R"((\d+(?:\.\d+)?)\s*(h|hr|hrs|hour|hours|m|min|mins|minute|minutes))";
    static const std::array<Shape, 6> all{
        Shape{Pattern(R"(^now\s*\+\s*)" + span + "$"), 1, 0},
        Shape{Pattern(R"(^(?:in\s+)?)" + span + R"(\s+from\s+now$)"), 1, 0},
        Shape{Pattern(R"(^in\s+)" + span + "$"), 1, 0},
        Shape{Pattern(R"(^(?:in\s+)?)" + span + R"((?:\s+from\s+now)?\s+(?:in|at)\s+(.+)$)"), 1, 3},
        Shape{Pattern(R"(^now\s*\+\s*)" + span + R"(\s+(?:in\s+)?(.+)$)"), 1, 3},
        Shape{Pattern(R"(^(.+?)\s+(?:in\s+|\+\s*))" + span + R"((?:\s+from\s+now)?$)"), 2, 1},
    };
    return all;
}

std::optional<Asked> asked(std::string_view text) {
    for (const auto& shape : shapes())
        if (const auto match = shape.pattern.match(text))
            return Asked{.count = (*match)[shape.count],
                         .unit = (*match)[shape.count + 1],
                         .place = shape.place == 0 ? "" : (*match)[shape.place]};
    return std::nullopt;
}

bool isHours(const Asked& asked) {
    return asked.unit.front() == 'h';
}

/// Nothing for a span beyond all use.
std::optional<double> seconds(const Asked& asked) {
    double count = 0;
    const auto* end = asked.count.data() + asked.count.size();
    if (std::from_chars(asked.count.data(), end, count).ec != std::errc())
        return std::nullopt;
    const double span = count * (isHours(asked) ? secondsOfHour : secondsOfMinute);
    return span <= longestSpanSeconds ? std::optional(span) : std::nullopt;
}

std::string words(const Asked& asked) {
    return fmt::format("in {} {}{}",
                       asked.count,
                       isHours(asked) ? "hour" : "minute",
                       asked.count == "1" ? "" : "s");
}

/// A span in words, and one of hours and minutes, as the figure and unit that the shapes have.
std::string inFigures(std::string_view text) {
    static const Pattern worded(R"(^(|.*?\s)(half an?|an?|one|two|three|four|five|six|seven|eight)"
                                R"(|nine|ten|eleven|twelve)\s+((?:hour|minute)s?)(|\s.*)$)");
    static const Pattern parted(
        R"(^(|.*?[\s+])(\d{1,3})\s*(?:h|hrs?|hours?)\s*(?:and\s+)?(\d{1,2}))"
        R"(\s*(?:m|mins?|minutes?)(|\s.*)$)");
    if (const auto match = worded.match(text)) {
        const auto& groups = *match;
        if (groups[2].starts_with("half"))
            return groups[3] == "hour" ? groups[1] + "30 minutes" + groups[4] : std::string(text);
        const int count = ZoneWords::clockNumber(groups[2]).value_or(1);
        return fmt::format("{}{} {}{}", groups[1], count, groups[3], groups[4]);
    }
    if (const auto match = parted.match(text)) {
        const auto& groups = *match;
        const auto value = [](const std::string& digits) {
            int number = 0;
            std::from_chars(digits.data(), digits.data() + digits.size(), number);
            return number;
        };
        constexpr int minutesOfHour = 60;
        return fmt::format("{}{} minutes{}",
                           groups[1],
                           value(groups[2]) * minutesOfHour + value(groups[3]),
                           groups[4]);
    }
    return std::string(text);
}

/// A digit comes with every span.
bool holdsDigit(std::string_view text) {
    return text.find_first_of("0123456789") != std::string_view::npos;
}

/// The question with "time in" and the like before it taken off: then a span alone will do.
std::optional<Asked> ofAsk(std::string_view text) {
    static const Pattern span(R"(^(?:in\s+)?(\d+(?:\.\d+)?)\s*(h|hr|hrs|hour|hours|m|min|mins)"
                              R"(|minute|minutes)$)");
    const auto ask = ZoneWords::stripped(text, ZoneWords::askPrefixes());
    if (!ask)
        return asked(text);
    if (const auto match = span.match(ask->rest))
        return Asked{.count = (*match)[1], .unit = (*match)[2]};
    return asked(ask->rest);
}

std::vector<ZonePlaces::Place> places(const Asked& asked, const Context& context) {
    if (asked.place.empty())
        return {{.clock = context.home}};
    return ZonePlaces::resolveAll(asked.place, context, Unknown::refused);
}

} // namespace

std::vector<Answer>
ZoneFamilies::relative(std::string_view text, const Context& context, const Formats& formats) {
    const auto figures = inFigures(text);
    if (!holdsDigit(figures))
        return {};
    const auto question = ofAsk(figures);
    const auto span = question ? seconds(*question) : std::nullopt;
    if (!span)
        return {};
    const double at = context.now + *span;
    std::vector<Answer> rows;
    for (const auto& place : places(*question, context))
        rows.push_back(ZoneText::row(place.clock,
                                     ZoneText::value(place.clock, at, context, formats),
                                     fmt::format("{} · {}", words(*question), place.label())));
    return rows;
}

} // namespace tessarine
