#pragma once

#include <string>

namespace tessarine {

/// What a self-test found out, and the exit status that says so.
struct SelftestResult {
    enum class Verdict {
        proved = 0,
        refuted = 1,
        notMeasured = 2, ///< the environment could show neither
    };

    Verdict verdict = Verdict::refuted;
    std::string report; ///< the lines to print, without a line end after the last
};

} // namespace tessarine
