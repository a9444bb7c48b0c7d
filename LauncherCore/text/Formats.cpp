#include "LauncherCore/text/Formats.h"

#include "LauncherCore/text/UnicodeText.h"

#include <unicode/dcfmtsym.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>
#include <unicode/ucurr.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace tessarine {

namespace {

using UnicodeText::decoded;
using UnicodeText::encoded;

using icu::number::LocalizedNumberFormatter;
using icu::number::NumberFormatter;
using icu::number::Precision;

constexpr double millisecondsPerSecond = 1000;

/// "C" and "POSIX" say nothing of a language: plain English figures.
icu::Locale localeNamed(const std::string& name) {
    if (name.empty() || name == "C" || name == "POSIX" || name.starts_with("C."))
        return icu::Locale::getUS();
    return icu::Locale::createCanonical(name.c_str());
}

icu::DecimalFormatSymbols symbolsWithSmallExponent(const icu::Locale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    icu::DecimalFormatSymbols symbols(locale, error);
    symbols.setSymbol(icu::DecimalFormatSymbols::kExponentialSymbol, u"e");
    return symbols;
}

/// What a currency is called in English; its code when it isn't called anything.
std::string currencyText(std::string_view code, UCurrNameStyle style) {
    auto terminated = decoded(code);
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    const auto* name =
        ucurr_getName(terminated.getTerminatedBuffer(), "en_US", style, nullptr, &length, &error);
    return encoded(icu::UnicodeString(name, length));
}

/// Minus zero counts as zero.
std::string formatted(const LocalizedNumberFormatter& formatter, double value) {
    UErrorCode error = U_ZERO_ERROR;
    return encoded(formatter.formatDouble(value == 0 ? 0 : value, error).toString(error));
}

} // namespace

/// Formatters by what they write. Making one costs ten times what writing with it does, and a
/// list of answers writes dozens of figures; they change inside while they write, hence the lock.
struct Formats::State {
    explicit State(const Locales& locales)
        : numbers(localeNamed(locales.numbers)), money(localeNamed(locales.money)),
          dates(localeNamed(locales.dates)) {}

    const LocalizedNumberFormatter& decimal(int maximumFraction) {
        const auto [entry, isNew] = decimals.try_emplace(maximumFraction);
        if (isNew)
            entry->second = NumberFormatter::withLocale(numbers)
                                .roundingMode(UNUM_ROUND_HALFEVEN)
                                .precision(Precision::maxFraction(maximumFraction));
        return entry->second;
    }

    const LocalizedNumberFormatter& exponential(int maximumFraction) {
        const auto [entry, isNew] = exponentials.try_emplace(maximumFraction);
        if (isNew)
            entry->second = NumberFormatter::withLocale(numbers)
                                .roundingMode(UNUM_ROUND_HALFEVEN)
                                .precision(Precision::maxFraction(maximumFraction))
                                .notation(icu::number::Notation::scientific())
                                .symbols(symbolsWithSmallExponent(numbers));
        return entry->second;
    }

    /// Nothing for a text that is no currency's code.
    const LocalizedNumberFormatter* amount(std::string_view code, int maximumFraction) {
        const auto [entry, isNew] = amounts.try_emplace({std::string(code), maximumFraction});
        if (isNew) {
            UErrorCode error = U_ZERO_ERROR;
            const icu::CurrencyUnit unit(decoded(code).getTerminatedBuffer(), error);
            if (U_FAILURE(error)) {
                amounts.erase(entry);
                return nullptr;
            }
            const int least = std::min(fractionDigits(code), maximumFraction);
            entry->second = NumberFormatter::withLocale(money)
                                .roundingMode(UNUM_ROUND_HALFEVEN)
                                .unit(unit)
                                .precision(Precision::minMaxFraction(least, maximumFraction));
        }
        return &entry->second;
    }

    /// Nothing for a text that is no pattern.
    const icu::SimpleDateFormat* date(std::string_view pattern) {
        auto& format = dateFormats[std::string(pattern)];
        if (format)
            return format.get();
        UErrorCode error = U_ZERO_ERROR;
        auto made = std::make_unique<icu::SimpleDateFormat>(decoded(pattern), dates, error);
        made->adoptCalendar(
            std::make_unique<icu::GregorianCalendar>(*icu::TimeZone::getGMT(), error).release());
        if (U_FAILURE(error))
            return nullptr;
        format = std::move(made);
        return format.get();
    }

    const icu::Locale numbers;
    const icu::Locale money;
    const icu::Locale dates;
    std::mutex oneAtATime;
    std::map<int, LocalizedNumberFormatter> decimals; ///< by their most fraction digits
    std::map<int, LocalizedNumberFormatter> exponentials;
    std::map<std::pair<std::string, int>, LocalizedNumberFormatter> amounts;
    std::map<std::string, std::unique_ptr<icu::SimpleDateFormat>> dateFormats;
};

Formats::Formats(const Locales& locales, Zone zone)
    : state_(std::make_shared<State>(locales)), zone_(std::move(zone)) {}

Formats Formats::in(const Zone& zone) const {
    Formats elsewhere = *this;
    elsewhere.zone_ = zone;
    return elsewhere;
}

std::string Formats::dateLanguage() const {
    return state_->dates.getName();
}

std::string Formats::decimal(double value, int maximumFraction) const {
    const std::lock_guard lock(state_->oneAtATime);
    return formatted(state_->decimal(maximumFraction), value);
}

std::string Formats::whole(std::int64_t value) const {
    const std::lock_guard lock(state_->oneAtATime);
    UErrorCode error = U_ZERO_ERROR;
    return encoded(state_->decimal(0).formatInt(value, error).toString(error));
}

std::string Formats::scientific(double value, int maximumFraction) const {
    const std::lock_guard lock(state_->oneAtATime);
    return formatted(state_->exponential(maximumFraction), value);
}

std::string Formats::money(double value, std::string_view code, int maximumFraction) const {
    const std::lock_guard lock(state_->oneAtATime);
    if (const auto* format = state_->amount(code, maximumFraction))
        return formatted(*format, value);
    return formatted(state_->decimal(maximumFraction), value) + " " + std::string(code);
}

int Formats::fractionDigits(std::string_view code) {
    UErrorCode error = U_ZERO_ERROR;
    return ucurr_getDefaultFractionDigits(decoded(code).getTerminatedBuffer(), &error);
}

std::string Formats::currencyName(std::string_view code) {
    return currencyText(code, UCURR_LONG_NAME);
}

std::string Formats::currencySign(std::string_view code) {
    return currencyText(code, UCURR_NARROW_SYMBOL_NAME);
}

std::string Formats::date(double at, std::string_view pattern) const {
    return date(at, pattern, zone_);
}

std::string Formats::date(double at, std::string_view pattern, const Zone& zone) const {
    const std::lock_guard lock(state_->oneAtATime);
    const auto* format = state_->date(pattern);
    if (!format)
        return {};
    // The zone itself works out the clock on the wall; the formatter only writes it.
    const double wall = at + static_cast<double>(zone.offset(at).count());
    icu::UnicodeString text;
    format->format(wall * millisecondsPerSecond, text);
    return encoded(text);
}

} // namespace tessarine
