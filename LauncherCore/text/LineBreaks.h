#pragma once

#include <cstddef>
#include <string_view>

/// Where the lines of a copied text end: U+000A to U+000D, U+0085, U+2028 and U+2029. Pure; any
/// thread.
namespace tessarine::LineBreaks {

/// The bytes of the line break that begins at `offset`; 0 when none does.
std::size_t lengthAt(std::string_view text, std::size_t offset);

/// The text up to its first line break; all of it when there is none. A view into `text`.
std::string_view firstLine(std::string_view text);

bool hasAny(std::string_view text);

} // namespace tessarine::LineBreaks
