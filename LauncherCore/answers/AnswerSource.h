#pragma once

#include <string>

namespace tessarine {

/// Where a computed figure came from, for the credit under it.
struct AnswerSource {
    std::string host;   ///< the data provider's host name, for display
    std::string url;    ///< a page that shows the same figure
    double fetched = 0; ///< seconds since 1970, UTC

    bool operator==(const AnswerSource&) const = default;
};

} // namespace tessarine
