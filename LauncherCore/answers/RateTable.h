#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What one unit of a currency is worth in all others, as one provider said at one time. A value,
/// and the shape of the cache file.
struct RateTable {
    std::string base; ///< ISO 4217 code that all rates are relative to
    std::map<std::string, double, std::less<>> rates; ///< by code: units for one of `base`
    double fetched = 0;                               ///< seconds since 1970
    std::string host;                                 ///< the provider's, for display
    std::string checkURL;                             ///< its public page, to check a figure

    /// All codes, the base among them, sorted.
    std::vector<std::string> available() const;

    /// Units for one of `base`, 1 for the base itself; nothing for a currency it doesn't carry.
    std::optional<double> rate(std::string_view code) const;

    bool operator==(const RateTable&) const = default;
};

} // namespace tessarine
