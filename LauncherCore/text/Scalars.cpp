#include "LauncherCore/text/Scalars.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace tessarine {

namespace {

constexpr char32_t replacementCharacter = 0xfffd;
constexpr std::size_t longestScalar = 4; // bytes of UTF-8

const std::uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

Scalars::Scalar scalar(UChar32 value, std::size_t bytes) {
    if (value < 0)
        return {.value = replacementCharacter, .bytes = bytes, .wellFormed = false};
    return {.value = static_cast<char32_t>(value), .bytes = bytes};
}

} // namespace

Scalars::Scalar Scalars::at(std::string_view text, std::size_t offset) {
    const auto* bytes = bytesOf(text);
    std::size_t next = offset;
    UChar32 value = 0;
    U8_NEXT(bytes, next, text.size(), value);
    return scalar(value, next - offset);
}

Scalars::Scalar Scalars::before(std::string_view text, std::size_t end) {
    // A scalar takes at most four bytes; a window keeps the index small enough for ICU's macro.
    const auto window = text.substr(0, end).substr(end - std::min(end, longestScalar));
    const auto* bytes = bytesOf(window);
    auto start = static_cast<std::int32_t>(window.size());
    UChar32 value = 0;
    U8_PREV(bytes, 0, start, value);
    return scalar(value, window.size() - static_cast<std::size_t>(start));
}

bool Scalars::isLetter(char32_t scalar) {
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & U_GC_L_MASK) != 0;
}

bool Scalars::isDigit(char32_t scalar) {
    return u_isdigit(static_cast<UChar32>(scalar)) != 0;
}

} // namespace tessarine
