#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Emoji by their English names and keywords, as the Unicode CLDR annotations give them (tables
/// emoji.txt and emoticons.txt). Pure; any thread; the first call builds the table.
namespace tessarine::Emoji {

/// One of the table; views of the program's own data.
struct Entry {
    std::string_view emoji;
    std::string_view name;     ///< "grinning face"
    std::string_view keywords; ///< parted by commas; may be empty

    bool operator==(const Entry&) const = default;
};

/// At most `limit`, the best first: by name before by keyword, whole words before beginnings, then
/// those that hold every word in any order, and among equals Unicode's order. `text` is what
/// follows the colon that asks for emoji, with or without a closing one, words parted by blanks or
/// "_"; an empty text gives the table's first.
std::vector<Entry> search(std::string_view text, std::size_t limit);

/// Builds the table, some milliseconds, so that the first search need not.
void warm();

} // namespace tessarine::Emoji
