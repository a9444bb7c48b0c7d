#include "LauncherCore/answers/AmountWords.h"
#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/NumberPhrases.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Match = Pattern::Match;

std::string replacingAll(std::string text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

/// Without the commas that group thousands: one to three digits, then groups of exactly three. All
/// others part arguments.
std::string withoutGrouping(std::string_view text) {
    static const Pattern grouped(R"((?<![\d.])(?<!\d,)\d{1,3}(?:,\d{3})+(?!\d|,\d))");
    std::string result;
    while (const auto match = grouped.match(text)) {
        const auto& number = (*match)[0];
        result.append(text.substr(0, match->end - number.size()));
        result += replacingAll(number, ",", "");
        text.remove_prefix(match->end);
    }
    return result.append(text);
}

/// What is left when asking words, grouping and a currency's sign are gone.
std::string bareCalculation(std::string_view text) {
    std::string bare(text);
    for (const auto* const asking : {"what is ", "what's ", "calculate "})
        bare = replacingAll(std::move(bare), asking, "");
    if (bare.find(',') != std::string::npos)
        bare = withoutGrouping(bare);
    return replacingAll(std::move(bare), "$", "");
}

/// A number as digits and points were typed; nothing for one with two points.
std::optional<double> number(const std::string& text) {
    double value = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

struct Figure {
    double value = 0;
    std::string detail;
    std::string unit; ///< behind the figure
};

/// A question in words and how it is worked out.
struct Phrase {
    Pattern pattern;
    std::string_view symbol;
    std::optional<Figure> (*figure)(const Match& match);
};

std::optional<Figure> percentOf(const Match& match) {
    const auto a = number(match[1]);
    const auto b = number(match[3]);
    if (!a || !b)
        return std::nullopt;
    return Figure{*a / 100 * *b, fmt::format("{}% of {}", match[1], match[3]), {}};
}

std::optional<Figure> changeByPercent(const Match& match) {
    const auto a = number(match[1]);
    const auto b = number(match[3]);
    if (!a || !b)
        return std::nullopt;
    const double share = *b / 100;
    return Figure{(match[2] == "+" ? 1 + share : 1 - share) * *a,
                  fmt::format("{} {} {}%", match[1], match[2], match[3]),
                  {}};
}

std::optional<Figure> whatPercentOf(const Match& match) {
    const auto a = number(match[1]);
    const auto b = number(match[2]);
    if (!a || !b || *b == 0)
        return std::nullopt;
    return Figure{*a / *b * 100, fmt::format("{} of {}", match[1], match[2]), "%"};
}

std::optional<Figure> wordOf(const Match& match) {
    const auto share = AmountWords::amount(match[1]);
    const auto whole = number(match[2]);
    if (!share || !whole)
        return std::nullopt;
    return Figure{*share * *whole, fmt::format("{} of {}", match[1], match[2]), {}};
}

std::optional<Figure> percentOff(const Match& match) {
    const auto share = number(match[1]);
    const auto price = number(match[2]);
    if (!share || !price)
        return std::nullopt;
    return Figure{(1 - *share / 100) * *price, fmt::format("{}% off {}", match[1], match[2]), {}};
}

std::optional<Figure> squareRoot(const Match& match) {
    const auto a = number(match[1]);
    return a ? std::optional(Figure{std::sqrt(*a), "√" + match[1], {}}) : std::nullopt;
}

std::optional<Figure> squared(const Match& match) {
    const auto a = number(match[1]);
    return a ? std::optional(Figure{*a * *a, match[1] + "²", {}}) : std::nullopt;
}

std::optional<Figure> cubed(const Match& match) {
    const auto a = number(match[1]);
    return a ? std::optional(Figure{*a * *a * *a, match[1] + "³", {}}) : std::nullopt;
}

const std::array<Phrase, 8>& phrases() {
    static const std::array<Phrase, 8> all{{
        {Pattern(R"(^([\d.]+)\s*(%|percent)\s*of\s*([\d.]+)$)"), "percent", percentOf},
        {Pattern(R"(^([\d.]+)\s*([+\-])\s*([\d.]+)\s*%$)"), "percent", changeByPercent},
        {Pattern(R"(^([\d.]+)\s*(?:is what|as a)\s*(?:%|percent)\s*of\s*([\d.]+)$)"),
         "percent",
         whatPercentOf},
        {Pattern(R"(^(half|third|quarter|double|triple)\s+(?:of\s+)?([\d.]+)$)"), "divide", wordOf},
        {Pattern(R"(^(?:sqrt|square root of)\s*\(?([\d.]+)\)?$)"), "x.squareroot", squareRoot},
        {Pattern(R"(^([\d.]+)\s*(?:squared|\^2)$)"), "function", squared},
        {Pattern(R"(^([\d.]+)\s*cubed$)"), "function", cubed},
        {Pattern(R"(^([\d.]+)\s*(?:%|percent)\s*off\s*(?:of\s*)?([\d.]+)$)"),
         "percent",
         percentOff},
    }};
    return all;
}

std::optional<Answer> phraseAnswer(const std::string& text, const Formats& formats) {
    for (const auto& phrase : phrases()) {
        const auto match = phrase.pattern.match(text);
        if (!match)
            continue;
        auto figure = phrase.figure(*match);
        if (!figure || !std::isfinite(figure->value))
            continue;
        return Answer{.value = Calc::format(figure->value, formats) + figure->unit,
                      .detail = std::move(figure->detail),
                      .symbol = std::string(phrase.symbol),
                      .number = figure->value};
    }
    return std::nullopt;
}

std::string withOperators(std::string text) {
    constexpr std::pair<std::string_view, std::string_view> operators[] = {
        {" times ", "*"},
        {" multiplied by ", "*"},
        {" x ", "*"},
        {" plus ", "+"},
        {" minus ", "-"},
        {" divided by ", "/"},
        {" over ", "/"},
        {" to the power of ", "^"},
        {" mod ", "%"}, // the sign, not the operator: "7 mod 3" is 7% times 3
    };
    for (const auto& [words, sign] : operators)
        text = replacingAll(std::move(text), words, sign);
    return text;
}

/// "2x3" as people write a multiplication. "0x3" is hexadecimal and was read before.
std::string withCrosses(std::string text) {
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        const auto isDigitAt = [&](std::size_t at) { return text[at] >= '0' && text[at] <= '9'; };
        if (text[i] == 'x' && isDigitAt(i - 1) && isDigitAt(i + 1))
            text[i] = '*';
    }
    return text;
}

bool isInBaseTwoOrSixteen(std::string_view typed) {
    return typed.find("0x") != std::string_view::npos || typed.find("0b") != std::string_view::npos;
}

std::string
detailOf(std::string_view typed, const Calc::Evaluation& result, const std::string& figure) {
    constexpr double longestInHexadecimal = 1e12;
    std::string detail = fmt::format("= {}", typed);
    if (result.assignedName)
        detail = fmt::format("{} is now {}", *result.assignedName, figure);
    else if (result.usedMemory)
        detail = fmt::format("{}, using your last answer", typed);
    if (std::abs(result.value) < longestInHexadecimal && isInBaseTwoOrSixteen(typed))
        if (const auto hexadecimal = Calc::inBase(result.value, 16))
            detail += "  ·  " + *hexadecimal;
    return detail;
}

} // namespace

std::optional<Answer>
Answers::math(std::string_view text, const Calc::Context& context, const Formats& formats) {
    const auto bare = bareCalculation(text);
    if (bare.size() <= maximumQuestion)
        if (auto answer = phraseAnswer(bare, formats))
            return answer;
    const auto expression = NumberPhrases::inDigits(withOperators(bare));
    auto result = Calc::evaluate(expression, context);
    if (!result)
        result = Calc::evaluate(withCrosses(expression), context);
    if (!result)
        return std::nullopt;
    const auto figure = Calc::format(result->value, formats);
    return Answer{.value = figure,
                  .detail = detailOf(text, *result, figure),
                  .symbol = "equal.circle",
                  .number = result->value,
                  .name = result->assignedName};
}

} // namespace tessarine
