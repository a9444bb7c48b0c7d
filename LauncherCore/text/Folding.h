#pragma once

#include <string>
#include <string_view>

/// The one folding of text for comparison: width, then marks, then case, with no locale.
///
/// A fold first gives every wide and narrow form (U+3000 and the half-width kana included) its
/// ordinary form, then decomposes, drops nonspacing marks and composes again, then case-folds in
/// full ("ß" meets "ss"). Results are UTF-8 in composed form, so equal text is equal bytes.
/// Bytes that are not UTF-8 count as U+FFFD each. Pure; any thread. An ASCII text costs no
/// allocation beyond its result.
namespace tessarine::Folding {

/// Folds case, diacritics and width.
std::string fold(std::string_view text);

/// Folds diacritics and width, and keeps case.
std::string foldKeepingCase(std::string_view text);

/// Folds case alone: `foldCase(foldKeepingCase(text))` is `fold(text)`.
std::string foldCase(std::string_view text);

/// Lower case by the full Unicode mapping with no locale.
std::string lowercase(std::string_view text);

/// Without control characters (category Cc) and format characters (Cf): zero-width joiners,
/// directional marks and soft hyphens pasted into a name.
std::string withoutControlAndFormat(std::string_view text);

/// The text itself if it is UTF-8; otherwise with each bad byte sequence replaced by U+FFFD.
std::string repairedUtf8(std::string_view text);

bool isUtf8(std::string_view text);
bool isAscii(std::string_view text);

/// Whether two texts are equal when case alone is ignored (full case folding, no locale).
bool equalIgnoringCase(std::string_view left, std::string_view right);

/// Without white space (property White_Space) at both ends; a view into `text`.
std::string_view trimmed(std::string_view text);

} // namespace tessarine::Folding
