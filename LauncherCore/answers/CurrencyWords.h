#pragma once

#include "LauncherCore/answers/Places.h"

#include <optional>
#include <string>
#include <string_view>

/// What people call currencies, from the tables currency-words.txt and currency-names.txt.
/// Pure; any thread.
namespace tessarine::Answers {

struct ResolvedCurrency {
    std::string code;                   ///< of ISO 4217
    std::optional<Places::Place> place; ///< when the word named a place, whose currency it is

    bool operator==(const ResolvedCurrency&) const = default;
};

/// The currency that a word, a sign, an ISO code, a place or a full name ("canadian dollars")
/// stands for, in whatever case; nothing for any other word.
std::optional<ResolvedCurrency> resolveCurrency(std::string_view word);

/// Whether the text is one of "$", "€", "£" and "¥".
bool isCurrencySign(std::string_view text);

/// Whether the sign is what the currency goes by at home: "$" for CAD.
bool goesBySign(std::string_view code, std::string_view sign);

/// The currency's English name ("Japanese Yen"); its code for one that has none.
std::string currencyName(std::string_view code);

} // namespace tessarine::Answers
