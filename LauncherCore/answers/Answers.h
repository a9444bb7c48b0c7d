#pragma once

#include "LauncherCore/answers/Answer.h"
#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/MeasureSystem.h"
#include "LauncherCore/answers/RateTable.h"
#include "LauncherCore/text/Formats.h"

#include <cstddef>
#include <optional>
#include <string_view>

/// Turns a typed query into at most one computed figure: a chain of families, each a small reader,
/// behind a gate that keeps ordinary words from paying for any of them. The first family that
/// recognizes the text answers. Pure; any thread.
namespace tessarine::Answers {

/// What an answer is worked out with. Borrowed for the length of one call.
struct Given {
    const RateTable* rates = nullptr; ///< null until a table was fetched
    double now = 0;                   ///< seconds since 1970
    const Calc::Context& calculator;
    MeasureSystem measure = MeasureSystem::usCustomary;
    std::string_view homeCurrency{}; ///< ISO 4217; empty for a user without one
    const Formats& formats;
};

/// The longest text that is read as a question, in bytes. A longer one can only be a calculation.
inline constexpr std::size_t maximumQuestion = 256;

/// The answer to the raw text of the field; nothing when no family recognizes it.
std::optional<Answer> answer(std::string_view text, const Given& given);

/// The gate: whether the text, in lower case, holds anything that a family would look at.
bool couldBeAnAnswer(std::string_view text, const Calc::Variables& variables = {});

// The families of this file's own, on trimmed text in lower case.

/// "255 in hex", exact for every 64-bit number.
std::optional<Answer> baseConversion(std::string_view text, const Formats& formats);

/// "3 days from now", "days until dec 25", "today", "1/15 + 30 days", by the calendar of the zone
/// of `formats`.
std::optional<Answer> dates(std::string_view text, double now, const Formats& formats);

/// Percentages, roots and powers in words, and every expression that `Calc` evaluates.
std::optional<Answer>
math(std::string_view text, const Calc::Context& context, const Formats& formats);

} // namespace tessarine::Answers
