#pragma once

#include <optional>
#include <span>
#include <string_view>

/// Amounts given as words. Pure; any thread. Words are compared in lower case.
namespace tessarine::AmountWords {

struct NumberWord {
    std::string_view word;
    double value;
};

/// The 25 words that stand for a number in a calculation ("two", "half", "thousand").
std::span<const NumberWord> wordNumbers();

/// The value of a number word, or 1 for "a" and "an"; nothing for any other word.
std::optional<double> amount(std::string_view word);

/// The value of a character such as "½" (15 of them); nothing for any other.
std::optional<double> vulgarFraction(std::string_view character);

} // namespace tessarine::AmountWords
