#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tessarine {

/// Lets a look-up by `std::string_view` make no string.
struct TextHash {
    using is_transparent = void;

    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>{}(text);
    }
};

/// Values by a text, in no order.
template <typename Value>
using TextTable = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

} // namespace tessarine
