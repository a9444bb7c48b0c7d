#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/text/Formats.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>

namespace tessarine {

namespace {

constexpr double scientificFrom = 1e15; ///< beyond it a double has no digit behind the point
constexpr double scientificBelow = 1e-6;
constexpr int decimals = 8;
constexpr int scientificDecimals = 6;
constexpr double wholeNumberLimit = 9e18; ///< below 2^63

std::string digits(std::uint64_t magnitude, int radix) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), magnitude, radix).ptr;
    return {text.data(), end};
}

std::string_view prefix(int radix) {
    switch (radix) {
    case 16:
        return "0x";
    case 8:
        return "0o";
    case 2:
        return "0b";
    default:
        return "";
    }
}

} // namespace

std::string Calc::format(double value, const Formats& formats) {
    const double magnitude = std::abs(value);
    if (magnitude >= scientificFrom || (magnitude < scientificBelow && value != 0))
        return formats.scientific(value, scientificDecimals);
    return formats.decimal(value, value == std::trunc(value) ? 0 : decimals);
}

std::string Calc::plain(double value) {
    // English whatever the user's language, so that the figures are read back as they were meant.
    static const Formats english(Formats::Locales{}, Zone::utc());
    auto text = format(value, english);
    std::erase(text, ',');
    return text;
}

std::optional<std::string> Calc::inBase(double value, int radix) {
    if (value != std::trunc(value) || !(std::abs(value) < wholeNumberLimit))
        return std::nullopt;
    return inBase(static_cast<std::int64_t>(value), radix);
}

std::string Calc::inBase(std::int64_t value, int radix) {
    const auto bits = static_cast<std::uint64_t>(value);
    const auto magnitude = value < 0 ? 0 - bits : bits;
    return fmt::format("{}{}{}", value < 0 ? "-" : "", prefix(radix), digits(magnitude, radix));
}

} // namespace tessarine
