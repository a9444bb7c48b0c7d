#include "LauncherCore/text/Folding.h"

#include "LauncherCore/text/Scalars.h"
#include "LauncherCore/text/UnicodeText.h"

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace tessarine {

namespace {

using UnicodeText::decoded;
using UnicodeText::encoded;

constexpr std::string_view replacementCharacter = "\xef\xbf\xbd"; // U+FFFD
constexpr UChar32 ideographicSpace = 0x3000;
constexpr UChar32 firstHalfwidthOrFullwidth = 0xff00; // the block that holds all other such forms
constexpr UChar32 lastHalfwidthOrFullwidth = 0xffef;

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string loweredAscii(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), lowerAscii);
    return result;
}

const icu::Normalizer2& decomposition() {
    UErrorCode error = U_ZERO_ERROR;
    return *icu::Normalizer2::getNFDInstance(error);
}

const icu::Normalizer2& composition() {
    UErrorCode error = U_ZERO_ERROR;
    return *icu::Normalizer2::getNFCInstance(error);
}

/// The ordinary form of a character from the block of wide and narrow ones; itself when it has
/// none.
UChar32 ordinaryWidth(UChar32 c) {
    const auto type = u_getIntPropertyValue(c, UCHAR_DECOMPOSITION_TYPE);
    if (type != U_DT_WIDE && type != U_DT_NARROW)
        return c;
    UErrorCode error = U_ZERO_ERROR;
    icu::UnicodeString form;
    icu::Normalizer2::getNFKDInstance(error)->getRawDecomposition(c, form);
    return form.char32At(0);
}

bool mayHaveWidth(char16_t unit) {
    return unit == ideographicSpace ||
           (unit >= firstHalfwidthOrFullwidth && unit <= lastHalfwidthOrFullwidth);
}

void foldWidth(icu::UnicodeString& text) {
    static const auto table = [] {
        std::array<char16_t, lastHalfwidthOrFullwidth - firstHalfwidthOrFullwidth + 1> forms{};
        for (std::size_t i = 0; i < forms.size(); ++i)
            forms[i] = static_cast<char16_t>(
                ordinaryWidth(firstHalfwidthOrFullwidth + static_cast<UChar32>(i)));
        return forms;
    }();
    for (std::int32_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text.charAt(i);
        if (unit == ideographicSpace)
            text.setCharAt(i, u' ');
        else if (mayHaveWidth(unit))
            text.setCharAt(i, table[static_cast<std::size_t>(unit - firstHalfwidthOrFullwidth)]);
    }
}

icu::UnicodeString withoutMarks(const icu::UnicodeString& text) {
    UErrorCode error = U_ZERO_ERROR;
    // Most names that aren't ASCII are of scripts that neither decompose nor carry marks.
    const bool decomposed = decomposition().quickCheck(text, error) == UNORM_YES;
    const auto parts = decomposed ? text : decomposition().normalize(text, error);
    icu::UnicodeString bare;
    for (std::int32_t i = 0; i < parts.length(); i = parts.moveIndex32(i, 1)) {
        const UChar32 c = parts.char32At(i);
        if (u_charType(c) != U_NON_SPACING_MARK)
            bare.append(c);
    }
    if (composition().quickCheck(bare, error) == UNORM_YES)
        return bare;
    return composition().normalize(bare, error);
}

icu::UnicodeString widthAndMarksFolded(std::string_view text) {
    auto folded = decoded(text);
    foldWidth(folded);
    return withoutMarks(folded);
}

} // namespace

std::string Folding::fold(std::string_view text) {
    if (isAscii(text))
        return loweredAscii(text);
    return encoded(widthAndMarksFolded(text).foldCase(U_FOLD_CASE_DEFAULT));
}

std::string Folding::foldKeepingCase(std::string_view text) {
    if (isAscii(text))
        return std::string(text);
    return encoded(widthAndMarksFolded(text));
}

std::string Folding::foldCase(std::string_view text) {
    if (isAscii(text))
        return loweredAscii(text);
    return encoded(decoded(text).foldCase(U_FOLD_CASE_DEFAULT));
}

std::string Folding::lowercase(std::string_view text) {
    if (isAscii(text))
        return loweredAscii(text);
    return encoded(decoded(text).toLower(icu::Locale::getRoot()));
}

std::string Folding::withoutControlAndFormat(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto scalar = Scalars::at(text, i);
        const auto type = u_charType(static_cast<UChar32>(scalar.value));
        if (!scalar.wellFormed)
            result += replacementCharacter;
        else if (type != U_CONTROL_CHAR && type != U_FORMAT_CHAR)
            result.append(text, i, scalar.bytes);
        i += scalar.bytes;
    }
    return result;
}

std::string Folding::repairedUtf8(std::string_view text) {
    return isUtf8(text) ? std::string(text) : encoded(decoded(text));
}

bool Folding::isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto scalar = Scalars::at(text, i);
        if (!scalar.wellFormed)
            return false;
        i += scalar.bytes;
    }
    return true;
}

bool Folding::isAscii(std::string_view text) {
    // Without an early end the compiler looks at sixteen bytes at a time.
    unsigned char all = 0;
    for (const char c : text)
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    return all < 0x80;
}

bool Folding::equalIgnoringCase(std::string_view left, std::string_view right) {
    if (isAscii(left) && isAscii(right))
        return std::ranges::equal(left, right, {}, lowerAscii, lowerAscii);
    return decoded(left).caseCompare(decoded(right), U_FOLD_CASE_DEFAULT) == 0;
}

std::string_view Folding::trimmed(std::string_view text) {
    const auto isSpace = [](const Scalars::Scalar& scalar) {
        return scalar.wellFormed && u_isUWhiteSpace(static_cast<UChar32>(scalar.value));
    };
    while (!text.empty()) {
        const auto first = Scalars::at(text, 0);
        if (!isSpace(first))
            break;
        text.remove_prefix(first.bytes);
    }
    while (!text.empty()) {
        const auto last = Scalars::before(text, text.size());
        if (!isSpace(last))
            break;
        text.remove_suffix(last.bytes);
    }
    return text;
}

} // namespace tessarine
