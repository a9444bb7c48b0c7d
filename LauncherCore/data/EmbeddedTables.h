#pragma once

#include <span>
#include <string_view>

namespace tessarine {

/// A text file of this folder as the build compiled it in.
struct EmbeddedTable {
    std::string_view name; ///< of the file, without ".txt"
    std::string_view text;
};

/// All of them; the build writes this function's body.
std::span<const EmbeddedTable> embeddedTables();

} // namespace tessarine
