#include "LauncherCore/answers/Places.h"

#include "LauncherCore/text/Folding.h"

#include <array>

// A stand-in of a dozen countries until the table of all is there.
namespace tessarine {

namespace {

const std::array<Places::Place, 12> countries{{{"FR", "EUR", "France"},
                                               {"GR", "EUR", "Greece"},
                                               {"TH", "THB", "Thailand"},
                                               {"AU", "AUD", "Australia"},
                                               {"US", "USD", "United States"},
                                               {"KR", "KRW", "South Korea"},
                                               {"GB", "GBP", "United Kingdom"},
                                               {"DE", "EUR", "Germany"},
                                               {"IN", "INR", "India"},
                                               {"NP", "NPR", "Nepal"},
                                               {"TT", "TTD", "Trinidad & Tobago"},
                                               {"GE", "GEL", "Georgia"}}};

} // namespace

std::string Places::key(std::string_view word) {
    auto text = Folding::fold(word);
    if (const auto at = text.find('&'); at != std::string::npos)
        text.replace(at, 1, "and");
    return text.starts_with("the ") ? text.substr(4) : text;
}

std::optional<Places::Place> Places::resolve(std::string_view word) {
    for (const auto& place : countries)
        if (key(place.name) == key(word))
            return place;
    return std::nullopt;
}

std::string Places::flagOfRegion(std::string_view region) {
    if (region.size() != 2)
        return {};
    std::string flag;
    for (const char c : region)
        (flag += "\xf0\x9f\x87") += static_cast<char>(0xa6 + (c - 'A'));
    return flag;
}

} // namespace tessarine
