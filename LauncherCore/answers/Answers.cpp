#include "LauncherCore/answers/Answers.h"

#include "LauncherCore/answers/AmountWords.h"
#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/answers/Currency.h"
#include "LauncherCore/answers/Units.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/Pattern.h"
#include "LauncherCore/text/Scalars.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

namespace tessarine {

namespace {

constexpr std::string_view keywords[] = {
    "half",
    "third",
    "quarter",
    "double",
    "triple",
    "sqrt",
    "square",
    "cubed",
    "times",
    "plus",
    "minus",
    "today",
    "date",
    "from now",
    "ago",
    "days",
    "until",
    "one",
    "two",
    "three",
    "four",
    "five",
    "six",
    "seven",
    "eight",
    "nine",
    "ten",
    "twelve",
    "twenty",
    "hundred",
    "thousand",
    "million",
    // Beyond the calculator's own: days that people name.
    "tomorrow",
    "yesterday",
};
constexpr std::string_view connectors[] = {" in ", " to ", " as ", " into "};
constexpr std::string_view askingWords[] = {
    "how many ", "how much ", "what is ", "what's ", "what day ", "convert ", "in a ", "in an "};
constexpr std::string_view moneySigns[] = {"$", "€", "£", "¥"};

bool holds(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

template <typename Parts> bool holdsAny(std::string_view text, const Parts& parts) {
    return std::ranges::any_of(parts, [&](std::string_view part) { return holds(text, part); });
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isWordCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || c == '_';
}

bool hasDigit(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        if (isDigit(text[at]))
            return true;
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            ++at;
            continue;
        }
        const auto scalar = Scalars::at(text, at);
        if (Scalars::isDigit(scalar.value))
            return true;
        at += scalar.bytes;
    }
    return false;
}

template <typename IsPart, typename Check>
bool anyWord(std::string_view text, IsPart isPart, Check check) {
    for (std::size_t begin = 0; begin < text.size();) {
        const auto* const first = std::find_if(text.begin() + begin, text.end(), isPart);
        const auto* const last = std::find_if_not(first, text.end(), isPart);
        if (first != last && check(std::string_view(first, static_cast<std::size_t>(last - first))))
            return true;
        begin = static_cast<std::size_t>(last - text.begin()) + 1;
    }
    return false;
}

/// Whether a calculation speaks of something by name: a function, a constant, a saved figure.
bool namesCalculation(std::string_view text, const Calc::Variables& variables) {
    if (anyWord(
            text, [](char c) { return c != ' '; }, Calc::isVocabulary))
        return true;
    return text.find_first_of("+-*/^(%=&|<>!~") != std::string_view::npos &&
           anyWord(text, isWordCharacter, [&](std::string_view word) {
               return Calc::isVocabulary(word) || variables.contains(word);
           });
}

int radixNamed(std::string_view word) {
    if (word.starts_with("hex"))
        return 16;
    if (word.starts_with('b'))
        return 2;
    return word.starts_with('o') ? 8 : 10;
}

/// "2^8 in hex": a calculation where `baseConversion` reads a number alone.
std::optional<Answer> resultInBase(std::string_view text, const Answers::Given& given) {
    static const Pattern asked(
        R"(^(.+?)\s+(?:in|to|as|into)\s+(hex|hexadecimal|binary|bin|octal|oct)$)");
    const auto match = asked.match(text);
    const auto result = match ? Calc::evaluate((*match)[1], given.calculator) : std::nullopt;
    if (!result || result->assignedName)
        return std::nullopt;
    const auto written = Calc::inBase(result->value, radixNamed((*match)[2]));
    if (!written)
        return std::nullopt;
    return Answer{.value = *written,
                  .detail = fmt::format("{} → {}", (*match)[1], (*match)[2]),
                  .symbol = "number",
                  .number = result->value};
}

std::optional<Answer> askedOf(std::string_view typed, const Answers::Given& given) {
    const auto lowered = Folding::lowercase(typed);
    if (typed.size() > Answers::maximumQuestion)
        return Answers::math(lowered, given.calculator, given.formats);
    // What both money and measures could mean ("70 kgs in pounds") is measures: they read both
    // sides by names of their own, where money also reads every code of three letters.
    const auto areMeasures = [&](std::string_view from, std::string_view to) {
        return Answers::readUnit(from, given.measure) && Answers::readUnit(to, given.measure);
    };
    if (auto answer = Answers::currency(
            lowered, given.rates, given.now, given.homeCurrency, given.formats, areMeasures))
        return answer;
    if (auto answer = Cooking::answer(typed, given.measure, given.formats))
        return answer;
    if (auto answer = Answers::units(typed, given.measure, given.formats))
        return answer;
    if (auto answer = Answers::baseConversion(lowered, given.formats))
        return answer;
    if (auto answer = resultInBase(lowered, given))
        return answer;
    if (auto answer = Answers::dates(lowered, given.now, given.formats))
        return answer;
    return Answers::math(lowered, given.calculator, given.formats);
}

/// The text without what people put around a question; nothing when there is nothing around it.
std::optional<std::string> bareQuestion(std::string_view typed) {
    static const Pattern asking(
        R"(^(?:=\s*)?(?:(?:what(?:'s|’s| is|s| are)|how much (?:is|are)|calculate|compute|convert)\s+)?)"
        R"((.+?)\s*(?:\bequals\s*)?(?:[=?]\s*)*$)",
        Pattern::Case::ignored);
    auto match = asking.match(typed);
    if (!match || (*match)[1] == typed)
        return std::nullopt;
    return std::move(match->groups[1]);
}

/// Figures copied from a program that groups with a blank that doesn't break lose it; elsewhere
/// such a blank is one like any other.
std::string withPlainBlanks(std::string_view text) {
    constexpr std::string_view blanks[] = {"\u00a0", "\u202f", "\u2009"};
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const bool isAscii = static_cast<unsigned char>(text[at]) < 0x80;
        const auto* const blank =
            isAscii ? std::end(blanks) : std::ranges::find_if(blanks, [&](auto each) {
                return text.substr(at).starts_with(each);
            });
        if (blank == std::end(blanks)) {
            result += text[at++];
            continue;
        }
        at += blank->size();
        const bool isInNumber =
            !result.empty() && isDigit(result.back()) && at < text.size() && isDigit(text[at]);
        if (!isInNumber)
            result += ' ';
    }
    return result;
}

std::optional<std::int64_t> wholeNumber(std::string text, int base) {
    std::erase(text, ',');
    std::int64_t value = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> writtenNumber(const std::string& text) {
    const std::string sign = text.starts_with('-') ? "-" : "";
    const auto magnitude = text.substr(sign.size());
    if (magnitude.starts_with("0x"))
        return wholeNumber(sign + magnitude.substr(2), 16);
    if (magnitude.starts_with("0b"))
        return wholeNumber(sign + magnitude.substr(2), 2);
    if (magnitude.starts_with("0o"))
        return wholeNumber(sign + magnitude.substr(2), 8);
    return wholeNumber(text, 10);
}

} // namespace

std::optional<Answer> Answers::answer(std::string_view text, const Given& given) {
    text = Folding::trimmed(text);
    if (text.empty() || text.size() > Calc::maximumLength)
        return std::nullopt;
    const auto typed = withPlainBlanks(text);
    if (!couldBeAnAnswer(Folding::lowercase(typed), given.calculator.variables))
        return std::nullopt;
    if (auto answer = askedOf(typed, given))
        return answer;
    if (typed.size() > maximumQuestion)
        return std::nullopt;
    const auto bare = bareQuestion(typed);
    return bare ? askedOf(*bare, given) : std::nullopt;
}

bool Answers::couldBeAnAnswer(std::string_view text, const Calc::Variables& variables) {
    if (text.empty())
        return false;
    if (hasDigit(text) || AmountWords::vulgarFraction(Graphemes::prefix(text, 1)) ||
        holdsAny(text, moneySigns))
        return true;
    if (std::ranges::any_of(askingWords, [&](auto words) { return text.starts_with(words); }))
        return true;
    if (holdsAny(text, connectors)) {
        const auto first = text.substr(0, text.find(' '));
        if (AmountWords::amount(first) || readUnit(first, MeasureSystem::usCustomary) ||
            resolveCurrency(first))
            return true;
    }
    return holdsAny(text, keywords) || namesCalculation(text, variables);
}

std::optional<Answer> Answers::baseConversion(std::string_view text, const Formats& formats) {
    static const Pattern conversion(
        R"(^(-?(?:0x[0-9a-f]+|0b[01]+|0o[0-7]+|[\d,]+))\s+(?:in|to|as|into)\s+)"
        R"((hex|hexadecimal|binary|bin|decimal|dec|octal|oct)$)");
    const auto match = conversion.match(text);
    if (!match)
        return std::nullopt;
    const auto number = writtenNumber((*match)[1]);
    if (!number)
        return std::nullopt;
    const int radix = radixNamed((*match)[2]);
    return Answer{.value = radix == 10 ? formats.whole(*number) : Calc::inBase(*number, radix),
                  .detail = fmt::format("{} → {}", (*match)[1], (*match)[2]),
                  .symbol = "number",
                  .number = static_cast<double>(*number)};
}

} // namespace tessarine
