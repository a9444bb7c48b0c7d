#include "LauncherCore/text/CountedText.h"

#include <unicode/utf16.h>

#include <algorithm>

namespace tessarine {

namespace {

/// Of a piece. What is read within one isn't counted, and an expression may read it at each step.
constexpr std::int64_t pieceUnits = 64;
/// To go to a piece and read it: between a scan and a comparison that ignores case.
constexpr std::int64_t costOfAPiece = 320; // nanoseconds
/// To and fro over the seam of two pieces, which every expression does.
constexpr std::int64_t costOfASeam = 20;
/// What is given of a text whose budget is spent.
constexpr char16_t lineEnd[] = u"\n";

const icu::UnicodeString& textOf(const UText* text) {
    return *static_cast<const icu::UnicodeString*>(text->context);
}

CountedText& counter(const UText* text) {
    return *static_cast<CountedText*>(const_cast<void*>(text->p));
}

std::int64_t length(UText* text) {
    return textOf(text).length();
}

/// One line end stands for all that is left in the direction of reading, so that every scan is at
/// its end with it. Without native indexing, the functions below tell its two places.
void giveEnd(UText* text, std::int64_t index, bool forward) {
    text->chunkContents = lineEnd;
    text->chunkLength = 1;
    text->nativeIndexingLimit = 0;
    text->chunkNativeStart = forward ? index : 0;
    text->chunkNativeLimit = forward ? length(text) : index;
    text->chunkOffset = forward ? 0 : 1;
}

UBool access(UText* text, std::int64_t index, UBool forward) {
    const auto& all = textOf(text);
    const std::int64_t end = all.length();
    index = std::clamp<std::int64_t>(index, 0, end);
    const bool isInside = forward ? index < end : index > 0;
    // The piece that holds the unit to be read; no character is cut in two.
    const auto unit = forward ? std::min(index, std::max<std::int64_t>(end - 1, 0))
                              : std::max<std::int64_t>(index - 1, 0);
    if (isInside && !counter(text).spendOnPiece(unit / pieceUnits * pieceUnits)) {
        giveEnd(text, index, forward);
        return true;
    }
    const auto* units = all.getBuffer();
    auto first = unit / pieceUnits * pieceUnits;
    auto last = std::min(first + pieceUnits, end);
    const auto isPair = [&](std::int64_t at) {
        return at > 0 && at < end && U16_IS_LEAD(units[at - 1]) && U16_IS_TRAIL(units[at]);
    };
    if (isPair(first))
        ++first;
    if (isPair(last))
        ++last;
    if (unit < first) { // the second half of a pair, which belongs to the piece before
        last = first;
        first = std::max<std::int64_t>(first - pieceUnits, 0);
        if (isPair(first))
            ++first;
    }
    text->chunkContents = units + first;
    text->chunkNativeStart = first;
    text->chunkNativeLimit = last;
    text->chunkLength = static_cast<std::int32_t>(last - first);
    text->nativeIndexingLimit = text->chunkLength;
    text->chunkOffset = static_cast<std::int32_t>(index - first);
    return isInside;
}

std::int64_t nativeOffset(const UText* text) {
    return text->chunkOffset == 0 ? text->chunkNativeStart : text->chunkNativeLimit;
}

std::int32_t unitOffset(const UText* text, std::int64_t index) {
    return index < text->chunkNativeLimit ? 0 : 1;
}

UText* clone(UText* to, const UText* from, UBool, UErrorCode* error);

/// Matches are taken from the text itself.
std::int32_t
extract(UText*, std::int64_t, std::int64_t, char16_t*, std::int32_t, UErrorCode* error) {
    *error = U_UNSUPPORTED_ERROR;
    return 0;
}

constexpr UTextFuncs functions = {.tableSize = sizeof(UTextFuncs),
                                  .reserved1 = 0,
                                  .reserved2 = 0,
                                  .reserved3 = 0,
                                  .clone = clone,
                                  .nativeLength = length,
                                  .access = access,
                                  .extract = extract,
                                  .replace = nullptr,
                                  .copy = nullptr,
                                  .mapOffsetToNative = nativeOffset,
                                  .mapNativeIndexToUTF16 = unitOffset,
                                  .close = nullptr,
                                  .spare1 = nullptr,
                                  .spare2 = nullptr,
                                  .spare3 = nullptr};

UText* opened(UText* place, const void* text, const void* spending, UErrorCode* error) {
    auto* made = utext_setup(place, 0, error);
    if (U_FAILURE(*error))
        return nullptr;
    made->pFuncs = &functions;
    made->context = text;
    made->p = spending;
    return made;
}

UText* clone(UText* to, const UText* from, UBool, UErrorCode* error) {
    auto* made = opened(to, from->context, from->p, error);
    if (made)
        utext_setNativeIndex(made, utext_getNativeIndex(from));
    return made;
}

} // namespace

CountedText::CountedText(const icu::UnicodeString& text, std::int64_t nanoseconds)
    : left_(nanoseconds) {
    UErrorCode error = U_ZERO_ERROR;
    opened_ = opened(&storage_, &text, this, &error);
}

bool CountedText::spendOnPiece(std::int64_t first) {
    if (std::ranges::find(lastPieces_, first) != lastPieces_.end())
        return spend(costOfASeam);
    lastPieces_ = {first, lastPieces_.front()};
    return spend(costOfAPiece);
}

CountedText::~CountedText() {
    utext_close(&storage_);
}

} // namespace tessarine
