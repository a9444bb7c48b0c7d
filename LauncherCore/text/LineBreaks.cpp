#include "LauncherCore/text/LineBreaks.h"

namespace tessarine {

std::size_t LineBreaks::lengthAt(std::string_view text, std::size_t offset) {
    const auto rest = text.substr(offset);
    if (rest.empty())
        return 0;
    if (rest.front() >= '\n' && rest.front() <= '\r')
        return 1;
    constexpr std::string_view nextLine = "\u0085";
    constexpr std::string_view lineSeparator = "\u2028";
    constexpr std::string_view paragraphSeparator = "\u2029";
    for (const auto lineBreak : {nextLine, lineSeparator, paragraphSeparator}) {
        if (rest.starts_with(lineBreak))
            return lineBreak.size();
    }
    return 0;
}

std::string_view LineBreaks::firstLine(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Every line break begins with a control character or with one of two bytes of UTF-8.
        const char c = text[i];
        const bool mayBreak = (c >= '\n' && c <= '\r') || c == '\xc2' || c == '\xe2';
        if (mayBreak && lengthAt(text, i) > 0)
            return text.substr(0, i);
    }
    return text;
}

bool LineBreaks::hasAny(std::string_view text) {
    return firstLine(text).size() < text.size();
}

} // namespace tessarine
