#include "LauncherCore/text/LocaleFacts.h"

#include <unicode/locid.h>
#include <unicode/ucurr.h>
#include <unicode/unistr.h>

#include <array>

namespace tessarine {

std::optional<std::string> LocaleFacts::currency(std::string_view locale) {
    const auto named = icu::Locale::createCanonical(std::string(locale).c_str());
    // ICU reads "C" as an English of the United States, which says nothing about the user.
    if (locale.starts_with("C.") || locale == "C" || locale == "POSIX" ||
        std::string_view(named.getCountry()).empty())
        return std::nullopt;
    std::array<char16_t, 4> code{};
    UErrorCode error = U_ZERO_ERROR;
    ucurr_forLocale(named.getName(), code.data(), code.size(), &error);
    if (U_FAILURE(error))
        return std::nullopt;
    std::string result;
    icu::UnicodeString(code.data()).toUTF8String(result);
    return result;
}

} // namespace tessarine
