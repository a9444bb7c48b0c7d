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

constexpr auto connectors = std::to_array<std::string_view>({" in ", " to ", " as ", " into "});

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
    if (!question || std::ranges::none_of(connectors, isIn))
        return std::nullopt;
    static const Pattern conversion(R"(^(.+?)\s+(?:in|to|as|into)\s+([\p{L}€£¥$& .'’-]+)$)");
    const auto match = conversion.match(*question);
    if (!match)
        return std::nullopt;
    auto money = moneyText(Folding::trimmed((*match)[1]));
    if (!money)
        return std::nullopt;
    return ConversionParts{.from = *std::move(money),
                           .to = std::string(Folding::trimmed((*match)[2]))};
}

} // namespace tessarine
