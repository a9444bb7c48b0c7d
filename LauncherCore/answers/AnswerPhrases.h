#pragma once

#include "LauncherCore/answers/Answer.h"
#include "LauncherCore/answers/Calc.h"

#include <optional>
#include <string_view>

/// Calculations asked in a phrase: "12% of 50", "half of 8", "square root of 16", "3 squared".
/// Texts are in lower case, without asking words and grouping. Pure; any thread.
namespace tessarine::AnswerPhrases {

/// With plain digits in every place; nothing for any other text.
std::optional<Answer> inDigits(std::string_view text, const Formats& formats);

/// With a number in words, a fraction, a constant or a saved name in any place ("half of twelve",
/// "20% of rent"). For a text that is no expression: `Calc` knows better what those mean.
std::optional<Answer>
inWords(std::string_view text, const Calc::Context& context, const Formats& formats);

} // namespace tessarine::AnswerPhrases
