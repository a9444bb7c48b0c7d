#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Foreign text as one line that can't harm what stands around it. Pure; any thread.
namespace tessarine::ShownText {

/// No more characters of a text than this are ever laid out; nobody's screen shows as many.
inline constexpr std::size_t mostCharacters = 400;

/// Bytes of a text, from `begin` up to `end`.
struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;

    bool operator==(const Range&) const = default;
};

/// Where a text that has no room is cut.
enum class Cut { end, middle };

struct Line {
    std::string text;
    std::vector<Range> matched; ///< ascending, never touching each other; empty for no match

    bool operator==(const Line&) const = default;
};

/// One line: breaks and tabs are blanks, other control characters U+FFFD, and what is invisible or
/// turns the direction of text is left out, so that the end of a name stays its end. Joiners stay,
/// since scripts and emoji are written with them. Ends in "…" when there was more.
std::string harmless(std::string_view text);

/// The same with its lines kept, their tabs as four blanks, for a part that has room for more than
/// one line. At most ten times as many characters.
std::string harmlessLines(std::string_view text);

/// One line, with the characters marked that the query names.
Line matching(std::string_view text, std::string_view query);

/// The text with at most so many of its characters, and an ellipsis where the others were. A
/// character is never parted from its marks.
std::string shortened(std::string_view text, std::size_t characters, Cut cut);

} // namespace tessarine::ShownText
