#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// One row that a list command's script printed.
struct ListRow {
    std::string title;
    std::optional<std::string> subtitle;
    std::optional<std::string> arg;  ///< what the row stands for; the title without one
    std::optional<std::string> icon; ///< a symbol's name

    bool operator==(const ListRow&) const = default;
};

/// The rows in a script's output: a JSON array of them, or an object that has one under "items".
/// Nothing when it is neither. Pure; any thread.
std::optional<std::vector<ListRow>> parseListRows(std::string_view output);

} // namespace tessarine
