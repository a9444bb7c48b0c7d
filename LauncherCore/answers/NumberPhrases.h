#pragma once

#include <string>
#include <string_view>

/// Numbers written as words inside a calculation. Pure; any thread.
namespace tessarine::NumberPhrases {

/// The text, in lower case, with each run of number words as digits: "two plus twenty-five" is
/// "2 plus 25", "two million" is "2000000", and a word behind digits multiplies them ("2.5
/// million"). Only whole words count: "weight" keeps its "eight".
std::string inDigits(std::string_view text);

} // namespace tessarine::NumberPhrases
