#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace tessarine {
class Formats;
} // namespace tessarine

/// Dates as people write them. Pure; any thread.
namespace tessarine::DateWords {

/// Which year a date without one means.
enum class Year {
    coming, ///< this year's, or next year's when it has passed
    past,   ///< this year's, or last year's when it is still to come
    stated, ///< none: such a text is no date
};

/// Reads "december 25", "dec 25, 2027", "25 december 2027" and "2027-12-25", in lower case, with
/// month names in English or in the user's language. Nothing for a day that no calendar has.
std::optional<std::chrono::year_month_day> date(std::string_view text,
                                                const std::chrono::year_month_day& today,
                                                Year missing,
                                                const Formats& formats);

/// Reads what `date` reads and, in lower case, "12/25", "1/15/2028", "today", "tomorrow",
/// "yesterday", a weekday's English name (the nearest one that isn't today) and the fixed feasts
/// that people count days to ("christmas", "new year's eve").
std::optional<std::chrono::year_month_day> day(std::string_view text,
                                               const std::chrono::year_month_day& today,
                                               Year missing,
                                               const Formats& formats);

} // namespace tessarine::DateWords
