#include "LauncherCore/answers/RateTable.h"

#include <algorithm>

namespace tessarine {

std::vector<std::string> RateTable::available() const {
    std::vector<std::string> codes;
    codes.reserve(rates.size() + 1);
    for (const auto& [code, rate] : rates)
        codes.push_back(code);
    if (!rates.contains(base))
        codes.insert(std::ranges::lower_bound(codes, base), base);
    return codes;
}

std::optional<double> RateTable::rate(std::string_view code) const {
    if (code == base)
        return 1;
    const auto found = rates.find(code);
    if (found == rates.end())
        return std::nullopt;
    return found->second;
}

} // namespace tessarine
