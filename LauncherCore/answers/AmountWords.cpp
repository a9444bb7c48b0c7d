#include "LauncherCore/answers/AmountWords.h"

#include <algorithm>

namespace tessarine {

namespace {

using AmountWords::NumberWord;

constexpr NumberWord numbers[] = {
    {"zero", 0},    {"one", 1},        {"two", 2},         {"three", 3},
    {"four", 4},    {"five", 5},       {"six", 6},         {"seven", 7},
    {"eight", 8},   {"nine", 9},       {"ten", 10},        {"eleven", 11},
    {"twelve", 12}, {"twenty", 20},    {"thirty", 30},     {"forty", 40},
    {"fifty", 50},  {"hundred", 100},  {"thousand", 1000}, {"million", 1'000'000},
    {"half", 0.5},  {"quarter", 0.25}, {"third", 1.0 / 3}, {"double", 2},
    {"triple", 3},
};

constexpr NumberWord vulgarFractions[] = {
    {"½", 1.0 / 2},
    {"⅓", 1.0 / 3},
    {"⅔", 2.0 / 3},
    {"¼", 1.0 / 4},
    {"¾", 3.0 / 4},
    {"⅕", 1.0 / 5},
    {"⅖", 2.0 / 5},
    {"⅗", 3.0 / 5},
    {"⅘", 4.0 / 5},
    {"⅙", 1.0 / 6},
    {"⅚", 5.0 / 6},
    {"⅛", 1.0 / 8},
    {"⅜", 3.0 / 8},
    {"⅝", 5.0 / 8},
    {"⅞", 7.0 / 8},
};

std::optional<double> valueOf(std::span<const NumberWord> words, std::string_view word) {
    const auto found = std::ranges::find(words, word, &NumberWord::word);
    if (found == words.end())
        return std::nullopt;
    return found->value;
}

} // namespace

std::span<const NumberWord> AmountWords::wordNumbers() {
    return numbers;
}

std::optional<double> AmountWords::amount(std::string_view word) {
    if (word == "a" || word == "an")
        return 1;
    return valueOf(numbers, word);
}

std::optional<double> AmountWords::vulgarFraction(std::string_view character) {
    return valueOf(vulgarFractions, character);
}

} // namespace tessarine
