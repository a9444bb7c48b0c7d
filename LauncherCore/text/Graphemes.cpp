#include "LauncherCore/text/Graphemes.h"

#include "LauncherCore/text/Scalars.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

#include <memory>

namespace tessarine {

namespace {

struct CloseText {
    void operator()(UText* text) const { utext_close(text); }
};

/// Whether characters of this property, following each other, are always apart: most letters,
/// ideographs, whole Hangul syllables, lone emoji. What joins is left to ICU's rules.
bool standsAlone(UChar32 c) {
    switch (u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_OTHER:
    case U_GCB_LV:
    case U_GCB_LVT:
        return true;
    default:
        return false;
    }
}

/// Calls `visit` with each boundary behind the first while it gives true; false when a character
/// may join another and the rules are needed.
template <typename Visit> bool visitSimple(std::string_view text, Visit visit) {
    for (std::size_t i = 0; i < text.size();) {
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            i += text.substr(i).starts_with("\r\n") ? 2u : 1u;
        } else {
            const auto scalar = Scalars::at(text, i);
            if (!standsAlone(static_cast<UChar32>(scalar.value)))
                return false;
            i += scalar.bytes;
        }
        if (!visit(static_cast<std::uint32_t>(i)))
            return true;
    }
    return true;
}

template <typename Visit> void visitByRules(std::string_view text, Visit visit) {
    thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode error = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    }();
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UText, CloseText> source(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &error));
    iterator->setText(source.get(), error);
    iterator->first();
    for (auto at = iterator->next(); at != icu::BreakIterator::DONE; at = iterator->next()) {
        if (!visit(static_cast<std::uint32_t>(at)))
            return;
    }
}

/// Calls `visit` with the byte offset behind each character while it gives true; begins anew, after
/// `reset`, when it finds that the rules are needed.
template <typename Visit, typename Reset>
void visitBoundaries(std::string_view text, Visit visit, Reset reset) {
    if (visitSimple(text, visit))
        return;
    reset();
    visitByRules(text, visit);
}

} // namespace

std::vector<std::uint32_t> Graphemes::boundaries(std::string_view text) {
    std::vector<std::uint32_t> result;
    result.reserve(text.size() + 1);
    result.push_back(0);
    visitBoundaries(
        text,
        [&](std::uint32_t behind) {
            result.push_back(behind);
            return true;
        },
        [&] { result.resize(1); });
    return result;
}

std::size_t Graphemes::count(std::string_view text) {
    std::size_t characters = 0;
    visitBoundaries(
        text,
        [&](std::uint32_t) {
            ++characters;
            return true;
        },
        [&] { characters = 0; });
    return characters;
}

bool Graphemes::hasAtLeast(std::string_view text, std::size_t characters) {
    return characters == 0 || prefix(text, characters - 1).size() < text.size();
}

std::string_view Graphemes::prefix(std::string_view text, std::size_t maximum) {
    std::size_t characters = 0;
    std::size_t bytes = 0;
    visitBoundaries(
        text,
        [&](std::uint32_t behind) {
            // Only the next character tells that nothing joins the last one.
            if (characters++ == maximum)
                return false;
            bytes = behind;
            return true;
        },
        [&] { characters = bytes = 0; });
    return text.substr(0, bytes);
}

} // namespace tessarine
