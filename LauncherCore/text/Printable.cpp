#include "LauncherCore/text/Printable.h"

#include "LauncherCore/text/Folding.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

constexpr std::string_view lineSeparator = "\u2028";
constexpr std::string_view paragraphSeparator = "\u2029";

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
}

/// How an ASCII character is shown.
std::string shown(char c) {
    switch (c) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f ? fmt::format("\\x{:02x}", byte) : std::string(1, c);
}

} // namespace

std::string_view Printable::beginning(std::string_view bytes, std::size_t most) {
    constexpr std::size_t longestCharacter = 4;
    if (bytes.size() <= most)
        return bytes;
    auto end = most;
    while (end > 0 && most - end < longestCharacter && isContinuation(bytes[end]))
        --end;
    // So many in a row are no character.
    return bytes.substr(0, isContinuation(bytes[end]) ? most : end);
}

std::string Printable::line(std::string_view bytes) {
    std::string escaped;
    escaped.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto rest = bytes.substr(i);
        if (rest.starts_with(lineSeparator) || rest.starts_with(paragraphSeparator)) {
            escaped += "\\n";
            i += lineSeparator.size() - 1;
        } else {
            escaped += shown(bytes[i]);
        }
    }
    return Folding::withoutControlAndFormat(Folding::repairedUtf8(escaped));
}

} // namespace tessarine
