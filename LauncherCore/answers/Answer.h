#pragma once

#include "LauncherCore/answers/AnswerSource.h"

#include <optional>
#include <string>

namespace tessarine {

/// One computed figure. A value; any thread.
struct Answer {
    std::string value;  ///< the figure: the row's title, and what copying it copies
    std::string detail; ///< how the figure was read; may be empty
    std::string symbol; ///< name of a symbol
    std::optional<AnswerSource> source;
    std::optional<std::string> glyph; ///< a flag shown instead of the symbol

    bool operator==(const Answer&) const = default;
};

} // namespace tessarine
