#pragma once

#include "LauncherCore/text/Zone.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tessarine {

/// How the user's figures, money and dates are written: the locales and the time zone of one
/// computer at one time. A cheap value; any thread. Making one costs about a millisecond, each
/// text about a microsecond.
class Formats {
public:
    /// Locales as in "de_DE.UTF-8"; one that ICU doesn't know gives its root formats.
    struct Locales {
        std::string numbers = "en_US";
        std::string money = "en_US";
        std::string dates = "en_US";
    };

    Formats(const Locales& locales, Zone zone);

    /// The same formats elsewhere.
    Formats in(const Zone& zone) const;

    const Zone& zone() const { return zone_; }

    /// Grouped, at most so many fraction digits, no trailing zeros, halves to even.
    std::string decimal(double value, int maximumFraction) const;

    /// Grouped, with every digit of 64 bits.
    std::string whole(std::int64_t value) const;

    /// As in "1.5e15", at most so many fraction digits.
    std::string scientific(double value, int maximumFraction) const;

    /// An amount in the style of its currency ("$1,234.50", "¥120"), rounded to at most so many
    /// fraction digits and padded to what the currency always shows. `code` is of ISO 4217.
    std::string money(double value, std::string_view code, int maximumFraction) const;

    /// Fraction digits that the currency has (2 for EUR, 0 for JPY).
    static int fractionDigits(std::string_view code);

    /// The currency's English name ("Japanese Yen"); its code for one that has none.
    static std::string currencyName(std::string_view code);

    /// The sign it goes by at home ("$" for CAD); its code for one that has none.
    static std::string currencySign(std::string_view code);

    /// A time (seconds since 1970) in a Unicode date pattern ("EEEE, MMMM d, yyyy"), by the clocks
    /// of `zone`, or of the user's.
    std::string date(double at, std::string_view pattern) const;
    std::string date(double at, std::string_view pattern, const Zone& zone) const;

    /// ICU's name of the locale that dates are written in ("de_DE"): a key for what is made of it.
    std::string dateLanguage() const;

private:
    struct State;
    std::shared_ptr<State> state_;
    Zone zone_;
};

} // namespace tessarine
