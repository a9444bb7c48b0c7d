#include "LauncherCore/answers/Currency.h"

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/RateTable.h"
#include "LauncherCore/text/Formats.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Answers::MoneyText;
using Answers::ResolvedCurrency;

constexpr std::string_view symbol = "dollarsign.circle";
constexpr int usualDigits = 2;
constexpr int smallDigits = 4;         ///< below 1
constexpr int vanishingDigits = 8;     ///< of what would show as 0
constexpr double leastShown = 0.00005; ///< rounds up in the fourth digit
constexpr double lastHour = 12; ///< that is read without saying which half of the day it means

struct Sides {
    ResolvedCurrency from;
    ResolvedCurrency to;
};

/// A figure that a clock shows and that stands before a place: "8 in paris" asks for the time.
bool isHour(const MoneyText& from, const ResolvedCurrency& to) {
    return to.place && from.amount >= 1 && from.amount <= lastHour &&
           from.figure.find('.') == std::string::npos;
}

/// What a word stands for; a sign that home's currency goes by means that currency, as it does in
/// an amount alone.
std::optional<ResolvedCurrency> named(std::string_view word, std::string_view home) {
    if (!home.empty() && Answers::isCurrencySign(word) && Answers::goesBySign(home, word))
        return ResolvedCurrency{.code = std::string(home), .place = std::nullopt};
    return Answers::resolveCurrency(word);
}

/// Names of currencies that are English words first: two of them without a figure, as in "all to
/// try", are a search.
bool isOrdinary(std::string_view word) {
    constexpr std::string_view words[] = {"all",
                                          "bam",
                                          "bob",
                                          "cop",
                                          "cup",
                                          "gel",
                                          "mad",
                                          "mop",
                                          "pen",
                                          "rand",
                                          "real",
                                          "sos",
                                          "top",
                                          "try",
                                          "won"};
    return std::ranges::find(words, word) != std::end(words);
}

/// What both sides stand for; nothing when one stands for no money, or when it says more of
/// something else than of money.
std::optional<Sides> resolved(const Answers::ConversionParts& parts, std::string_view home) {
    auto to = named(parts.to, home);
    if (!to)
        return std::nullopt;
    if (parts.from.form == MoneyText::Form::amountAlone) {
        if (home.empty() || home == to->code || isHour(parts.from, *to))
            return std::nullopt;
        return Sides{.from = {.code = std::string(home), .place = std::nullopt},
                     .to = *std::move(to)};
    }
    auto from = named(parts.from.currency, home);
    // "$5 in cad" of a Canadian asks about another dollar.
    if (from && from->code == to->code && Answers::isCurrencySign(parts.from.currency))
        from = Answers::resolveCurrency(parts.from.currency);
    if (!from)
        return std::nullopt;
    switch (parts.from.form) {
    case MoneyText::Form::amountAlone:
    case MoneyText::Form::amountFirst:
    case MoneyText::Form::signFirst:
        break;
    case MoneyText::Form::amountInWords: // "an american in paris"
        if (from->place)
            return std::nullopt;
        break;
    case MoneyText::Form::codeFirst: // "top 5 in paris"
        if (from->place || to->place)
            return std::nullopt;
        break;
    case MoneyText::Form::noAmount: // "all in all", "london to paris"
        if (from->place || to->place || from->code == to->code ||
            (isOrdinary(parts.from.currency) && isOrdinary(parts.to)))
            return std::nullopt;
        break;
    }
    return Sides{.from = *std::move(from), .to = *std::move(to)};
}

/// "France spends the Euro (EUR)".
std::string spends(std::string_view place, std::string_view code) {
    return fmt::format("{} spends the {} ({})", place, Answers::currencyName(code), code);
}

Answer withoutTable(std::string_view code, std::string_view place) {
    auto detail =
        place.empty()
            ? fmt::format("{}: the table is fetched once and cached; check the connection", code)
            : spends(place, code) +
                  "; the table is fetched once and cached, so check the connection";
    return {.value = "Rates have not loaded yet",
            .detail = std::move(detail),
            .symbol = std::string(symbol),
            .kind = AnswerKind::currency};
}

Answer withoutRate(std::string_view code, std::string_view place) {
    constexpr std::string_view wider =
        "Settings › Calculator has a wider one, about 160 currencies.";
    auto detail =
        place.empty()
            ? fmt::format("This table does not carry {}. {}", code, wider)
            : fmt::format("{}, which this table does not carry. {}", spends(place, code), wider);
    return {.value = "No rate for the " + Answers::currencyName(code),
            .detail = std::move(detail),
            .symbol = std::string(symbol),
            .kind = AnswerKind::currency};
}

std::string placeName(const ResolvedCurrency& currency) {
    return currency.place ? currency.place->name : std::string();
}

std::string rateText(double rate) {
    return fmt::format("{:.{}f}", rate, rate < leastShown ? vanishingDigits : smallDigits);
}

std::optional<std::string> flag(const ResolvedCurrency& currency) {
    auto flag = currency.place ? Places::flagOfRegion(currency.place->region)
                               : Places::flagOfCurrency(currency.code);
    return flag.empty() ? std::nullopt : std::optional(std::move(flag));
}

AnswerSource source(const RateTable& rates) {
    return {.host = rates.host, .url = rates.checkURL, .fetched = rates.fetched};
}

struct Converted {
    double amount = 0;
    double rate = 0; ///< of the target, for one of the source
};

/// Nothing beyond what a double holds.
std::optional<Converted> converted(double amount, double from, double to) {
    const Converted result{.amount = amount / from * to, .rate = to / from};
    if (!std::isfinite(result.amount) || !std::isfinite(result.rate))
        return std::nullopt;
    return result;
}

std::optional<Answer> conversion(
    double amount, const Sides& sides, const RateTable& rates, double now, const Formats& formats) {
    const auto from = rates.rate(sides.from.code);
    if (!from)
        return withoutRate(sides.from.code, placeName(sides.from));
    const auto to = rates.rate(sides.to.code);
    if (!to)
        return withoutRate(sides.to.code, placeName(sides.to));
    const auto result = converted(amount, *from, *to);
    if (!result)
        return std::nullopt;
    const auto place = placeName(sides.to);
    return Answer{.value = Answers::money(result->amount, sides.to.code, formats),
                  .detail = fmt::format("{} ({}) · {}{}{} {} at {} · {}",
                                        Answers::currencyName(sides.to.code),
                                        sides.to.code,
                                        place,
                                        place.empty() ? "" : " · ",
                                        Calc::format(amount, formats),
                                        sides.from.code,
                                        rateText(result->rate),
                                        Answers::ageText(rates.fetched, now)),
                  .symbol = std::string(symbol),
                  .source = source(rates),
                  .glyph = flag(sides.to),
                  .kind = AnswerKind::currency,
                  .number = result->amount};
}

} // namespace

std::optional<Answer> Answers::currency(std::string_view text,
                                        const RateTable* rates,
                                        double now,
                                        std::string_view home,
                                        const Formats& formats,
                                        const AreMeasures& areMeasures) {
    const auto parts = conversionParts(text);
    if (!parts)
        return std::nullopt;
    const auto sides = resolved(*parts, home);
    if (!sides || (areMeasures && areMeasures(parts->from.currency, parts->to)))
        return std::nullopt;
    if (rates)
        return conversion(parts->from.amount, *sides, *rates, now, formats);
    const auto& named = !sides->to.place && sides->from.place ? sides->from : sides->to;
    return withoutTable(named.code, placeName(named));
}

std::vector<Answer> Answers::currencyFan(std::string_view text,
                                         const RateTable* rates,
                                         std::span<const std::string> favorites,
                                         std::string_view home,
                                         double now,
                                         BareNumbers bareNumbers,
                                         const Formats& formats) {
    const auto reading = amountReading(text, home, bareNumbers);
    if (!reading)
        return {};
    if (!rates)
        return {withoutTable(reading->code, reading->placeName)};
    const auto from = rates->rate(reading->code);
    if (!from)
        return {withoutRate(reading->code, reading->placeName)};

    std::vector<std::string_view> codes(favorites.begin(), favorites.end());
    if (!home.empty() && std::ranges::find(codes, home) == codes.end())
        codes.push_back(home);
    std::vector<Answer> rows;
    for (const auto code : codes) {
        const auto to = code == reading->code ? std::nullopt : rates->rate(code);
        const auto result = to ? converted(reading->amount, *from, *to) : std::nullopt;
        if (!result)
            continue;
        rows.push_back({.value = money(result->amount, code, formats),
                        .detail = fmt::format("{} at {} · {}",
                                              reading->detail(),
                                              rateText(result->rate),
                                              ageText(rates->fetched, now)),
                        .symbol = std::string(symbol),
                        .source = source(*rates),
                        .glyph = flag({.code = std::string(code), .place = std::nullopt}),
                        .kind = AnswerKind::currency,
                        .number = result->amount});
    }
    return rows;
}

std::string Answers::money(double value, std::string_view code, const Formats& formats) {
    const double magnitude = std::abs(value);
    if (magnitude >= 1)
        return formats.money(value, code, std::min(Formats::fractionDigits(code), usualDigits));
    const bool vanishes = value != 0 && magnitude < leastShown;
    return formats.money(value, code, vanishes ? vanishingDigits : smallDigits);
}

} // namespace tessarine
