#pragma once

#include "LauncherCore/answers/AnswerSource.h"

#include <optional>
#include <string>

namespace tessarine {

/// What kind of calculation gave a figure.
enum class AnswerKind { math, unit, currency, date };

/// One computed figure. A value; any thread.
struct Answer {
    std::string value;  ///< the figure: the row's title, and what copying it copies
    std::string detail; ///< how the figure was read; may be empty
    std::string symbol; ///< name of a symbol
    std::optional<AnswerSource> source;
    std::optional<std::string> glyph; ///< a flag shown instead of the symbol
    AnswerKind kind = AnswerKind::math;
    /// The figure as a number; of a date its day in seconds since 1970. Nothing when the answer is
    /// no figure ("Which ingredient?").
    std::optional<double> number;
    std::optional<std::string> name; ///< what the figure is called from now on: "rent = 1200"

    bool operator==(const Answer&) const = default;
};

} // namespace tessarine
