#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// User-perceived characters (extended grapheme clusters, Unicode Standard Annex 29) of UTF-8 text.
/// Pure; any thread.
namespace tessarine::Graphemes {

/// Byte offset at which each character begins, and the text's length at the end: one more entry
/// than there are characters, and a single 0 for an empty text.
std::vector<std::uint32_t> boundaries(std::string_view text);

/// How many characters the text has.
std::size_t count(std::string_view text);

/// Whether it has that many. Looks no further than it must, so that millions need not be counted.
bool hasAtLeast(std::string_view text, std::size_t characters);

/// The first `maximum` characters; the whole text when it has no more. A view into `text`. Looks no
/// further than it must.
std::string_view prefix(std::string_view text, std::size_t maximum);

} // namespace tessarine::Graphemes
