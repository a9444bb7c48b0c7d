#include "LauncherCore/answers/AnswerPhrases.h"

#include "LauncherCore/answers/AmountWords.h"
#include "LauncherCore/answers/NumberPhrases.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace tessarine {

namespace {

using Match = Pattern::Match;

struct Figure {
    double value = 0;
    std::string detail;
    std::string unit; ///< behind the figure
};

/// What may stand in a phrase's places.
class Operands {
public:
    /// Digits and points alone.
    Operands() = default;

    /// Whatever has a value by itself.
    explicit Operands(const Calc::Context& context) : context_(&context) {}

    std::optional<double> value(const std::string& text) const {
        if (const auto value = digitsValue(text))
            return value;
        return context_ ? valueInWords(text) : std::nullopt;
    }

    /// The value of a function by its name, in the user's angles.
    std::optional<double> applied(std::string_view function, const std::string& argument) const {
        if (!context_)
            return std::nullopt;
        const auto result = Calc::evaluate(fmt::format("{}({})", function, argument), *context_);
        return result ? std::optional(result->value) : std::nullopt;
    }

    bool areWords() const { return context_ != nullptr; }

private:
    /// Nothing for a number with two points.
    static std::optional<double> digitsValue(const std::string& text) {
        if (text.find_first_not_of("0123456789.") != std::string::npos)
            return std::nullopt;
        double value = 0;
        const auto* const end = text.data() + text.size();
        const auto [stop, error] =
            std::from_chars(text.data(), end, value, std::chars_format::fixed);
        if (error != std::errc{} || stop != end)
            return std::nullopt;
        return value;
    }

    std::optional<double> valueInWords(const std::string& text) const {
        if (const auto fraction = AmountWords::vulgarFraction(text))
            return fraction;
        // One number, fraction or name: of a sum nobody could say how much of it the phrase means.
        static const Pattern single(R"(^(?:-?[\d.]+(?:\/\d+)?|[\p{L}][\p{L}\d]*|\(.+\))$)");
        const auto digits = NumberPhrases::inDigits(text);
        if (!single.match(digits))
            return std::nullopt;
        const auto result = Calc::evaluate("(" + digits + ")", *context_);
        return result ? std::optional(result->value) : std::nullopt;
    }

    const Calc::Context* context_ = nullptr; ///< null for digits alone
};

/// A question in words and how it is worked out.
struct Phrase {
    Pattern pattern;
    std::string_view symbol;
    std::optional<Figure> (*figure)(const Match& match, const Operands& operands);
};

std::optional<Figure> percentOf(const Match& match, const Operands& operands) {
    const auto share = operands.value(match[1]);
    const auto whole = operands.value(match[2]);
    if (!share || !whole)
        return std::nullopt;
    return Figure{*share / 100 * *whole, fmt::format("{}% of {}", match[1], match[2]), {}};
}

std::optional<Figure> changeByPercent(const Match& match, const Operands& operands) {
    const auto whole = operands.value(match[1]);
    const auto percent = operands.value(match[3]);
    if (!whole || !percent)
        return std::nullopt;
    const double share = *percent / 100;
    return Figure{(match[2] == "+" ? 1 + share : 1 - share) * *whole,
                  fmt::format("{} {} {}%", match[1], match[2], match[3]),
                  {}};
}

std::optional<Figure>
share(const std::string& part, const std::string& whole, const Operands& operands) {
    const auto a = operands.value(part);
    const auto b = operands.value(whole);
    if (!a || !b || *b == 0)
        return std::nullopt;
    return Figure{*a / *b * 100, fmt::format("{} of {}", part, whole), "%"};
}

std::optional<Figure> whatPercentOf(const Match& match, const Operands& operands) {
    return share(match[1], match[2], operands);
}

std::optional<Figure> whatPercentIs(const Match& match, const Operands& operands) {
    return share(match[2], match[1], operands);
}

std::optional<Figure> wordOf(const Match& match, const Operands& operands) {
    const auto factor = AmountWords::amount(match[1]);
    const auto whole = operands.value(match[2]);
    if (!factor || !whole)
        return std::nullopt;
    return Figure{*factor * *whole, fmt::format("{} of {}", match[1], match[2]), {}};
}

/// "1/2 of 8" and "½ of 8". A whole number "of" another asks for nothing that can be worked out.
std::optional<Figure> fractionOf(const Match& match, const Operands& operands) {
    const auto fraction = operands.areWords() ? operands.value(match[1]) : std::nullopt;
    const auto whole = operands.value(match[2]);
    if (!fraction || !whole)
        return std::nullopt;
    return Figure{*fraction * *whole, fmt::format("{} of {}", match[1], match[2]), {}};
}

/// "two thirds of 9".
std::optional<Figure> partsOf(const Match& match, const Operands& operands) {
    const auto count = AmountWords::amount(match[1]);
    const auto part = AmountWords::amount(match[2]);
    const auto whole = operands.value(match[3]);
    if (!count || !part || !whole)
        return std::nullopt;
    return Figure{*count * *part * *whole, match[0], {}};
}

std::optional<Figure> percentOff(const Match& match, const Operands& operands) {
    const auto percent = operands.value(match[1]);
    const auto price = operands.value(match[2]);
    if (!percent || !price)
        return std::nullopt;
    return Figure{(1 - *percent / 100) * *price, fmt::format("{}% off {}", match[1], match[2]), {}};
}

std::optional<Figure> squareRoot(const Match& match, const Operands& operands) {
    const auto a = operands.value(match[1]);
    return a ? std::optional(Figure{std::sqrt(*a), "√" + match[1], {}}) : std::nullopt;
}

std::optional<Figure> cubeRoot(const Match& match, const Operands& operands) {
    const auto a = operands.value(match[1]);
    return a ? std::optional(Figure{std::cbrt(*a), "∛" + match[1], {}}) : std::nullopt;
}

std::optional<Figure> squared(const Match& match, const Operands& operands) {
    const auto a = operands.value(match[1]);
    return a ? std::optional(Figure{*a * *a, match[1] + "²", {}}) : std::nullopt;
}

std::optional<Figure> cubed(const Match& match, const Operands& operands) {
    const auto a = operands.value(match[1]);
    return a ? std::optional(Figure{*a * *a * *a, match[1] + "³", {}}) : std::nullopt;
}

/// "sin 30", where the user's angles are known.
std::optional<Figure> functionOf(const Match& match, const Operands& operands) {
    const auto value = operands.applied(match[1], match[2]);
    return value ? std::optional(Figure{*value, fmt::format("{}({})", match[1], match[2]), {}})
                 : std::nullopt;
}

const auto& phrases() {
    static const std::array all{
        Phrase{Pattern(R"(^(\S.*?)\s*(?:%|percent)\s*of\s*(.+)$)"), "percent", percentOf},
        Phrase{Pattern(R"(^([\d.]+)\s*([+\-])\s*([\d.]+)\s*%$)"), "percent", changeByPercent},
        Phrase{Pattern(R"(^(\S.*?)\s*(?:is what|as a)\s*(?:%|percent(?:age)?)\s*of\s*(.+)$)"),
               "percent",
               whatPercentOf},
        Phrase{Pattern(R"(^what\s*(?:%|percent(?:age)?)\s*of\s*(.+?)\s+is\s+(.+)$)"),
               "percent",
               whatPercentIs},
        Phrase{Pattern(R"(^(?:an?\s+)?(half|third|quarter|double|triple)\s+(?:of\s+)?(.+)$)"),
               "divide",
               wordOf},
        Phrase{Pattern(R"(^(\d+\/\d+|[½⅓⅔¼¾⅕⅖⅗⅘⅙⅚⅛⅜⅝⅞])\s*of\s+(.+)$)"), "divide", fractionOf},
        Phrase{Pattern(R"(^(one|two|three)\s+(half|third|quarter)s?\s+of\s+(.+)$)"),
               "divide",
               partsOf},
        Phrase{Pattern(R"(^(?:sqrt(?:\s+of\s)?|square root of|√)\s*\(?(.+?)\)?$)"),
               "x.squareroot",
               squareRoot},
        Phrase{
            Pattern(R"(^(?:cbrt\s+of|cube root of|∛)\s*\(?(.+?)\)?$)"), "x.squareroot", cubeRoot},
        Phrase{Pattern(R"(^(\S.*?)\s*(?:squared|\^2)$)"), "function", squared},
        Phrase{Pattern(R"(^(\S.*?)\s*cubed$)"), "function", cubed},
        Phrase{
            Pattern(R"(^(\S.*?)\s*(?:%|percent)\s*off\s*(?:of\s*)?(.+)$)"), "percent", percentOff},
        Phrase{Pattern(R"(^(sin|cos|tan|asin|acos|atan|ln|log|log2|log10|exp|abs)\s+(-?[\d.]+)$)"),
               "function",
               functionOf},
    };
    return all;
}

std::optional<Answer>
phraseAnswer(std::string_view text, const Operands& operands, const Formats& formats) {
    for (const auto& phrase : phrases()) {
        const auto match = phrase.pattern.match(text);
        if (!match)
            continue;
        auto figure = phrase.figure(*match, operands);
        if (!figure || !std::isfinite(figure->value))
            continue;
        return Answer{.value = Calc::format(figure->value, formats) + figure->unit,
                      .detail = std::move(figure->detail),
                      .symbol = std::string(phrase.symbol),
                      .number = figure->value};
    }
    return std::nullopt;
}

} // namespace

std::optional<Answer> AnswerPhrases::inDigits(std::string_view text, const Formats& formats) {
    return phraseAnswer(text, Operands(), formats);
}

std::optional<Answer> AnswerPhrases::inWords(std::string_view text,
                                             const Calc::Context& context,
                                             const Formats& formats) {
    return phraseAnswer(text, Operands(context), formats);
}

} // namespace tessarine
