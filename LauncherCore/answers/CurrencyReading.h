#pragma once

#include "LauncherCore/answers/MoneyText.h"

#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// A typed amount of money as understood. A value; any thread.
struct CurrencyReading {
    double amount = 0;
    std::string code;      ///< of ISO 4217
    std::string typed;     ///< what was typed for the currency; the figure, when nothing was
    bool guessed = false;  ///< a sign that several share, or no currency at all
    std::string placeName; ///< the place that was typed for its currency; empty for none
    std::string flag;      ///< of that place; empty for none

    /// How it was read, as in "Canadian Dollar (CAD) · from “$”".
    std::string detail() const;

    bool operator==(const CurrencyReading&) const = default;
};

/// The readers of typed money. Pure; any thread.
namespace Answers {

/// Whether an amount without a currency is money.
enum class BareNumbers { ignored, read };

/// An amount of money and nothing else; nothing for any other text. `home` is the code of the
/// user's currency: an amount alone is read in it, and so is a sign that it goes by.
std::optional<CurrencyReading>
amountReading(std::string_view text, std::string_view home, BareNumbers bareNumbers);

/// The same without amounts alone.
std::optional<CurrencyReading> currencyReading(std::string_view text, std::string_view home);

/// The two sides of "20 eur in yen", before anybody knows what their words mean.
struct ConversionParts {
    MoneyText from;
    std::string to;

    bool operator==(const ConversionParts&) const = default;
};

std::optional<ConversionParts> conversionParts(std::string_view text);

} // namespace Answers
} // namespace tessarine
