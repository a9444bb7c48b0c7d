#include "LauncherCore/answers/AmountWords.h"
#include "LauncherCore/answers/Units.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Scalars.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tessarine {

namespace {

using Answers::LeadingAmount;
using Amount = std::optional<LeadingAmount>;

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

std::string_view leadingDigits(std::string_view text) {
    return text.substr(0, text.find_first_not_of("0123456789"));
}

/// Of digits with at most one point; nothing beyond what a double holds.
std::optional<double> parsed(std::string_view digits) {
    double value = 0;
    const auto* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, std::chars_format::fixed);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return value;
}

/// "1/2", with a solidus or U+2044.
Amount simpleFraction(std::string_view text) {
    const auto over = leadingDigits(text);
    auto rest = text.substr(over.size());
    const std::string_view slash = rest.starts_with("⁄") ? "⁄" : "/";
    if (over.empty() || !rest.starts_with(slash))
        return std::nullopt;
    rest.remove_prefix(slash.size());
    const auto under = leadingDigits(rest);
    const auto numerator = parsed(over);
    const auto denominator = parsed(under);
    if (!numerator || !denominator || *denominator == 0)
        return std::nullopt;
    return LeadingAmount{*numerator / *denominator, rest.substr(under.size())};
}

/// "1 1/2", and "1-1/2" as recipes have it.
Amount mixedFraction(std::string_view text) {
    const auto digits = leadingDigits(text);
    auto rest = text.substr(digits.size());
    if (rest.starts_with('-'))
        rest.remove_prefix(1);
    else if (Folding::trimmed(rest).size() < rest.size())
        rest = Folding::trimmed(rest);
    else
        return std::nullopt;
    const auto whole = parsed(digits);
    const auto fraction = simpleFraction(rest);
    if (!whole || !fraction)
        return std::nullopt;
    return LeadingAmount{*whole + fraction->value, fraction->rest};
}

/// "½", "1½", "1 ½".
Amount vulgarFraction(std::string_view text) {
    const auto digits = leadingDigits(text);
    const auto rest = Folding::trimmed(text.substr(digits.size()));
    if (rest.empty() || static_cast<unsigned char>(rest.front()) < 0x80)
        return std::nullopt;
    const auto character = rest.substr(0, Scalars::at(rest, 0).bytes);
    const auto fraction = AmountWords::vulgarFraction(character);
    const auto whole = digits.empty() ? 0 : parsed(digits);
    if (!fraction || !whole)
        return std::nullopt;
    return LeadingAmount{*whole + *fraction, rest.substr(character.size())};
}

/// Whether commas part the digits into thousands. "0,125" is a decimal comma: nobody groups a zero.
bool isGrouped(std::string_view digits) {
    const auto first = digits.find(',');
    if (first == 0 || first > 3 || digits.front() == '0')
        return false;
    for (auto groups = digits.substr(first); !groups.empty(); groups.remove_prefix(4))
        if (groups.front() != ',' || leadingDigits(groups.substr(1, 3)).size() != 3)
            return false;
    return true;
}

/// "e3" behind a number: the power of ten that it is taken times.
LeadingAmount raised(LeadingAmount amount) {
    auto rest = amount.rest;
    if (rest.empty() || (rest.front() | 0x20) != 'e')
        return amount;
    rest.remove_prefix(1);
    const bool isNegative = rest.starts_with('-');
    if (isNegative)
        rest.remove_prefix(1);
    const auto digits = leadingDigits(rest);
    constexpr std::size_t mostDigits = 2; // No measure has a hundred of them.
    if (digits.empty() || digits.size() > mostDigits)
        return amount;
    const auto power = std::pow(10, *parsed(digits));
    return {isNegative ? amount.value / power : amount.value * power, rest.substr(digits.size())};
}

/// "5", "1,000.5", ".5", "1e3", and "1,5" with a decimal comma.
Amount plainNumber(std::string_view text) {
    auto whole = text.substr(0, text.find_first_not_of("0123456789,"));
    if (whole.starts_with(','))
        return std::nullopt;
    while (whole.ends_with(','))
        whole.remove_suffix(1);
    auto rest = text.substr(whole.size());
    std::string_view fraction;
    if (rest.size() > 1 && rest.front() == '.' && isDigit(rest[1]))
        fraction = rest.substr(0, 1 + leadingDigits(rest.substr(1)).size());
    if (whole.empty() && fraction.empty())
        return std::nullopt;
    rest.remove_prefix(fraction.size());

    std::string digits(whole);
    if (whole.find(',') != std::string_view::npos) {
        const bool isDecimalComma = fraction.empty() && std::ranges::count(whole, ',') == 1;
        if (isGrouped(whole))
            std::erase(digits, ',');
        else if (isDecimalComma)
            std::ranges::replace(digits, ',', '.');
    }
    digits += fraction;
    const auto value = parsed(digits);
    return value ? Amount(raised({*value, rest})) : std::nullopt;
}

/// Up to a blank or a hyphen.
std::string_view firstWord(std::string_view text) {
    return text.substr(0, text.find_first_of(" \t-"));
}

bool isArticle(std::string_view word) {
    return Folding::equalIgnoringCase(word, "a") || Folding::equalIgnoringCase(word, "an");
}

/// A word of a number; also the plurals in "two thirds".
std::optional<double> valueOf(std::string_view word) {
    constexpr std::size_t longest = 8; // "thousand", "quarters"
    if (word.empty() || word.size() > longest)
        return std::nullopt;
    const auto lower = Folding::lowercase(word);
    if (const auto value = AmountWords::amount(lower))
        return value;
    if (lower == "halves")
        return 0.5;
    if (lower == "thirds" || lower == "quarters")
        return AmountWords::amount(std::string_view(lower).substr(0, lower.size() - 1));
    return std::nullopt;
}

/// The value of "two" and "hundred" together; nothing for two words that are no one number.
std::optional<double> joined(double before, double next) {
    const bool isWhole = before >= 1 && before == std::trunc(before);
    if (next >= 100 || (next > 0 && next < 1 && isWhole))
        return before * next; // "two hundred", "three quarters"
    const bool isRound = isWhole && (std::fmod(before, 100) == 0 ||
                                     (std::fmod(before, 10) == 0 && before > 10 && next < 10));
    if (isRound && next >= 1)
        return before + next; // "twenty five", "one hundred fifty"
    return std::nullopt;
}

/// Further words of a number behind its beginning: "million", "five".
LeadingAmount continued(LeadingAmount amount) {
    while (true) {
        const auto rest = Folding::trimmed(amount.rest);
        const auto blank = rest.starts_with('-') ? rest.substr(1) : rest;
        const auto word = firstWord(blank);
        const auto next = isArticle(word) ? std::nullopt : valueOf(word);
        const auto value = next ? joined(amount.value, *next) : std::nullopt;
        if (!value)
            return amount;
        amount = {*value, blank.substr(word.size())};
    }
}

Amount inWords(std::string_view text) {
    const auto word = firstWord(text);
    const auto value = valueOf(word);
    if (!value)
        return std::nullopt;
    return LeadingAmount{*value, text.substr(word.size())};
}

/// "5 hundred" is a number, but "5 two" isn't.
LeadingAmount multiplied(LeadingAmount amount) {
    const auto rest = Folding::trimmed(amount.rest);
    const auto word = firstWord(rest);
    const auto value = isDigit(rest.empty() ? ' ' : rest.front()) ? std::nullopt : valueOf(word);
    if (!value || *value < 100)
        return amount;
    return {amount.value * *value, rest.substr(word.size())};
}

Amount magnitude(std::string_view text) {
    for (const auto read : {mixedFraction, vulgarFraction, simpleFraction, plainNumber})
        if (const auto amount = read(text))
            return multiplied(*amount);
    if (const auto amount = inWords(text))
        return continued(*amount);
    return std::nullopt;
}

/// "2 and a half".
LeadingAmount withFraction(LeadingAmount amount) {
    constexpr std::string_view conjunction = "and ";
    const auto rest = Folding::trimmed(amount.rest);
    if (!Folding::equalIgnoringCase(rest.substr(0, conjunction.size()), conjunction))
        return amount;
    const auto fraction = magnitude(Folding::trimmed(rest.substr(conjunction.size())));
    if (!fraction || fraction->value <= 0 || fraction->value >= 1 || amount.value < 1)
        return amount;
    return {amount.value + fraction->value, fraction->rest};
}

/// What follows "half" in "half a cup" and "half of a cup".
std::string_view withoutArticle(std::string_view text) {
    auto rest = Folding::trimmed(text);
    if (Folding::equalIgnoringCase(firstWord(rest), "of"))
        rest = Folding::trimmed(rest.substr(2));
    const auto word = firstWord(rest);
    return isArticle(word) ? rest.substr(word.size()) : text;
}

/// -1 or 1 as its value, and what follows the sign.
LeadingAmount sign(std::string_view text) {
    constexpr std::string_view marks[] = {"-", "−", "–"};
    for (const auto mark : marks)
        if (text.starts_with(mark))
            return {-1, Folding::trimmed(text.substr(mark.size()))};
    const auto word = firstWord(text);
    if (Folding::equalIgnoringCase(word, "minus") || Folding::equalIgnoringCase(word, "negative"))
        return {-1, Folding::trimmed(text.substr(word.size()))};
    return {1, text};
}

} // namespace

Amount Answers::leadingAmount(std::string_view text) {
    constexpr std::size_t longest = 256; // Nobody types more of a quantity.
    if (text.size() > longest)
        return std::nullopt;
    const auto [sign, unsignedText] = tessarine::sign(Folding::trimmed(text));
    auto amount = magnitude(unsignedText);
    if (!amount)
        return std::nullopt;
    amount = withFraction(*amount);
    if (amount->value > 0 && amount->value < 1)
        amount->rest = withoutArticle(amount->rest);
    if (!std::isfinite(amount->value))
        return std::nullopt;
    return LeadingAmount{sign * amount->value, Folding::trimmed(amount->rest)};
}

} // namespace tessarine
