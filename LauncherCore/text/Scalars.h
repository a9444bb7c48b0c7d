#pragma once

#include <cstddef>
#include <string_view>

/// Unicode scalars of UTF-8 text, one at a time. Pure; any thread.
namespace tessarine::Scalars {

struct Scalar {
    char32_t value = 0;    ///< U+FFFD for bytes that are no UTF-8
    std::size_t bytes = 0; ///< how many bytes it takes; at least 1
    bool wellFormed = true;
};

/// The scalar that begins at `offset`, which is below the text's length.
Scalar at(std::string_view text, std::size_t offset);

/// The scalar that ends before `end`, which is above 0.
Scalar before(std::string_view text, std::size_t end);

/// General category L.
bool isLetter(char32_t scalar);

/// General category Nd: the decimal digits of every script.
bool isDigit(char32_t scalar);

} // namespace tessarine::Scalars
