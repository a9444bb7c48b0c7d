#pragma once

#include "LauncherCore/answers/Answer.h"
#include "LauncherCore/answers/CurrencyReading.h"
#include "LauncherCore/answers/CurrencyWords.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {
class Formats;
struct RateTable;
} // namespace tessarine

/// Money converted by a table of rates. Pure; any thread. `rates` is null while there is no table,
/// `now` is seconds since 1970, `home` the code of the user's currency, or empty.
namespace tessarine::Answers {

/// Whether both sides, as typed, are measures ("70 kgs in pounds"). Those are no money.
using AreMeasures = std::function<bool(std::string_view from, std::string_view to)>;

/// The answer to "20 eur in yen", which without a table, or with a side that the table lacks, says
/// so; nothing for any other text. `areMeasures` is asked only of what could be money.
std::optional<Answer> currency(std::string_view text,
                               const RateTable* rates,
                               double now,
                               std::string_view home,
                               const Formats& formats,
                               const AreMeasures& areMeasures);

/// An amount of money in each of the user's currencies but its own; the home currency comes last,
/// unless it is one of the favorites. Empty for any other text.
std::vector<Answer> currencyFan(std::string_view text,
                                const RateTable* rates,
                                std::span<const std::string> favorites,
                                std::string_view home,
                                double now,
                                BareNumbers bareNumbers,
                                const Formats& formats);

/// An amount in the style of its currency, with the fraction digits that it has: at most two, or
/// four below 1, or eight of what would otherwise show as nothing.
std::string money(double value, std::string_view code, const Formats& formats);

} // namespace tessarine::Answers
