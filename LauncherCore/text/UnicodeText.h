#pragma once

#include <unicode/unistr.h>

#include <cstdint>
#include <string>
#include <string_view>

/// Between our UTF-8 and ICU's UTF-16; for the files that call ICU, never for another header.
/// Any thread.
namespace tessarine::UnicodeText {

/// Bytes that are no UTF-8 become U+FFFD.
inline icu::UnicodeString decoded(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

inline std::string encoded(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

} // namespace tessarine::UnicodeText
