#include "LauncherCore/answers/CurrencyReading.h"

#include "LauncherCore/answers/CurrencyWords.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

using Answers::MoneyText;
using Answers::ResolvedCurrency;

constexpr auto connectors = std::to_array<std::string_view>(
    {" in ", " to ", " as ", " into ", "=", "->", "→", "how many "});

/// Words that name money and are typed behind a figure for something else: "5 all", "3 split".
/// They are money to those who pay with it.
constexpr auto ordinaryWords =
    std::to_array<std::string_view>({"all", "java", "mad", "nice", "split", "states", "top"});

bool isOrdinary(std::string_view word) {
    return std::ranges::find(ordinaryWords, word) != ordinaryWords.end();
}

CurrencyReading reading(const MoneyText& money, const ResolvedCurrency& currency) {
    CurrencyReading result{
        .amount = money.amount, .code = currency.code, .typed = money.currency, .guessed = false};
    if (currency.place) {
        result.placeName = currency.place->name;
        result.flag = Places::flagOfRegion(currency.place->region);
    }
    return result;
}

std::optional<CurrencyReading> signReading(const MoneyText& money, std::string_view home) {
    if (Answers::goesBySign(home, money.currency))
        return CurrencyReading{.amount = money.amount,
                               .code = std::string(home),
                               .typed = money.currency,
                               .guessed = true};
    auto currency = Answers::resolveCurrency(money.currency);
    if (!currency)
        return std::nullopt;
    auto result = reading(money, *currency);
    result.guessed = true;
    return result;
}

/// Both sides of a conversion as they stand in the text.
struct TypedSides {
    std::string from;
    std::string to;
};

TypedSides sides(const std::string& from, const std::string& to) {
    return {.from = std::string(Folding::trimmed(from)), .to = std::string(Folding::trimmed(to))};
}

/// "100 usd in eur", "100 usd = eur", and the other way round: "how many euros is 100 usd".
std::optional<TypedSides> typedSides(std::string_view question) {
    static const std::string target = R"(([\p{L}€£¥$₹₩₽₺₫฿₪₴()& .'’-]+?))";
    static const Pattern counting(
        "^how many " + target +
        R"((?:\s+are)?(?:\s+there)?\s+(?:is|are|in|for|to|make|makes)\s+(.+)$)");
    static const Pattern counted("^(.+?)\\s+(?:is|are|makes?|=)\\s+how many " + target + "$");
    static const Pattern conversion(R"(^(.+?)(?:\s+(?:in|to|as|into)\s+|\s*(?:=|->|→)\s*))" +
                                    target + "$");
    if (const auto match = counting.match(question))
        return sides((*match)[2], (*match)[1]);
    if (const auto match = counted.match(question))
        return sides((*match)[1], (*match)[2]);
    if (const auto match = conversion.match(question))
        return sides((*match)[1], (*match)[2]);
    return std::nullopt;
}

/// "100 usd eur".
std::optional<TypedSides> twoCodes(std::string_view question) {
    if (question.find(' ') == std::string_view::npos)
        return std::nullopt;
    static const Pattern codes(R"(^([\d.,]+\s*\p{L}{3})\s+(\p{L}{3})$)");
    const auto match = codes.match(question);
    return match ? std::optional(sides((*match)[1], (*match)[2])) : std::nullopt;
}

} // namespace

std::string CurrencyReading::detail() const {
    auto text = fmt::format("{} ({})", Answers::currencyName(code), code);
    if (guessed)
        text += fmt::format(" · from “{}”", typed);
    if (!placeName.empty())
        text += " · " + placeName;
    return text;
}

std::optional<CurrencyReading>
Answers::amountReading(std::string_view text, std::string_view home, BareNumbers bareNumbers) {
    const auto question = tidied(text);
    if (!question)
        return std::nullopt;
    const auto money = moneyText(*question);
    if (!money)
        return std::nullopt;
    static const Pattern conversion(R"(\s+(?:in|to|as|into)\s+\S+$)");
    if (conversion.match(*question))
        return std::nullopt;
    switch (money->form) {
    case MoneyText::Form::amountAlone:
        if (bareNumbers == BareNumbers::ignored || home.empty())
            return std::nullopt;
        return CurrencyReading{.amount = money->amount,
                               .code = std::string(home),
                               .typed = money->figure,
                               .guessed = true};
    case MoneyText::Form::amountFirst:
    case MoneyText::Form::signFirst: {
        if (isCurrencySign(money->currency))
            return signReading(*money, home);
        const auto currency = resolveCurrency(money->currency);
        if (currency && currency->code != home && isOrdinary(money->currency))
            return std::nullopt;
        return currency ? std::optional(reading(*money, *currency)) : std::nullopt;
    }
    case MoneyText::Form::amountInWords: {
        // "an american" is a person.
        const auto currency = resolveCurrency(money->currency);
        return currency && !currency->place ? std::optional(reading(*money, *currency))
                                            : std::nullopt;
    }
    case MoneyText::Form::codeFirst: // "top 5", "all 3"
    case MoneyText::Form::noAmount:
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<CurrencyReading> Answers::currencyReading(std::string_view text,
                                                        std::string_view home) {
    return amountReading(text, home, BareNumbers::ignored);
}

std::optional<Answers::ConversionParts> Answers::conversionParts(std::string_view text) {
    const auto question = tidied(text);
    const auto isIn = [&](std::string_view word) {
        return question->find(word) != std::string::npos;
    };
    if (!question)
        return std::nullopt;
    const auto typed =
        std::ranges::any_of(connectors, isIn) ? typedSides(*question) : twoCodes(*question);
    if (!typed)
        return std::nullopt;
    auto money = moneyText(typed->from);
    if (!money)
        return std::nullopt;
    return ConversionParts{.from = *std::move(money), .to = typed->to};
}

} // namespace tessarine
