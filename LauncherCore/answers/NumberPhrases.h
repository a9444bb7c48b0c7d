#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Numbers written as words inside a calculation. Pure; any thread.
namespace tessarine::NumberPhrases {

/// The text, in lower case, with each run of number words as digits: "two plus twenty-five" is
/// "2 plus 25", "two million" is "2000000", and a word behind digits multiplies them ("2.5
/// million"). Only whole words count: "weight" keeps its "eight". The "and" of "two hundred and
/// five" is of the number; between digits it stays the calculator's.
std::string inDigits(std::string_view text);

/// The number that the whole text is, in lower case, written in at least two words, or in digits
/// and words; nothing for a single word, which may be a name as well, and for any other text.
std::optional<double> wholeText(std::string_view text);

} // namespace tessarine::NumberPhrases
