#include "LauncherCore/answers/AmountWords.h"
#include "LauncherCore/answers/AnswerPhrases.h"
#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/NumberPhrases.h"
#include "LauncherCore/text/Pattern.h"
#include "LauncherCore/text/Scalars.h"

#include <fmt/format.h>

#include <cmath>
#include <string>
#include <utility>

namespace tessarine {

namespace {

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

/// Amounts of one other currency count like plain numbers; those of two can't be reckoned together.
std::string withoutMoneySigns(std::string text) {
    text = replacingAll(std::move(text), "$", "");
    for (const std::string_view sign : {"€", "£", "¥"})
        if (text.find(sign) != std::string::npos)
            return replacingAll(std::move(text), sign, "");
    return text;
}

enum class Commas { group, part };

/// What is left when asking words, grouping and a currency's sign are gone.
std::string bareCalculation(std::string_view text, Commas commas) {
    std::string bare(text);
    for (const auto* const asking : {"what is ", "what's ", "calculate "})
        bare = replacingAll(std::move(bare), asking, "");
    if (bare.starts_with("the "))
        bare.erase(0, std::string_view("the ").size());
    if (commas == Commas::group && bare.find(',') != std::string::npos)
        bare = withoutGrouping(bare);
    return withoutMoneySigns(std::move(bare));
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
        {"²", "^2"},
        {"³", "^3"},
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

/// "½" as "0.5", and "1½" as "1.5".
std::string withDecimalFractions(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const auto bytes = Scalars::at(text, at).bytes;
        const auto character = text.substr(at, bytes);
        at += bytes;
        const auto fraction =
            bytes > 1 ? AmountWords::vulgarFraction(character) : std::optional<double>();
        if (!fraction) {
            result += character;
            continue;
        }
        const auto decimals = fmt::format("{}", *fraction);
        const bool isBehindDigit = !result.empty() && result.back() >= '0' && result.back() <= '9';
        result += isBehindDigit ? decimals.substr(1) : decimals;
    }
    return result;
}

std::optional<Calc::Evaluation> evaluated(const std::string& bare, const Calc::Context& context) {
    const auto expression = withDecimalFractions(NumberPhrases::inDigits(withOperators(bare)));
    if (auto result = Calc::evaluate(expression, context))
        return result;
    if (auto result = Calc::evaluate(withCrosses(expression), context))
        return result;
    if (const auto number = NumberPhrases::wholeText(bare))
        return Calc::Evaluation{.value = *number};
    return std::nullopt;
}

} // namespace

std::optional<Answer>
Answers::math(std::string_view text, const Calc::Context& context, const Formats& formats) {
    const auto bare = bareCalculation(text, Commas::group);
    const bool mayBeQuestion = bare.size() <= maximumQuestion;
    if (mayBeQuestion)
        if (auto answer = AnswerPhrases::inDigits(bare, formats))
            return answer;
    auto result = evaluated(bare, context);
    // "gcd(100,250)" has no value as one grouped number, but it has one as two.
    if (!result && bare.find('(') != std::string::npos)
        if (const auto parted = bareCalculation(text, Commas::part); parted != bare)
            result = evaluated(parted, context);
    if (!result)
        return mayBeQuestion ? AnswerPhrases::inWords(bare, context, formats) : std::nullopt;
    const auto figure = Calc::format(result->value, formats);
    return Answer{.value = figure,
                  .detail = detailOf(text, *result, figure),
                  .symbol = "equal.circle",
                  .number = result->value,
                  .name = result->assignedName};
}

} // namespace tessarine
