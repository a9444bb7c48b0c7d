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

/// What a list command's script came to.
struct ListResult {
    std::vector<ListRow> rows;
    std::optional<std::string> problem; ///< why there are no rows, in words for the user

    bool operator==(const ListResult&) const = default;
};

/// The rows in a script's output: a JSON array of them, or an object that has one under "items".
/// Each is an object with a title; null counts as absent, and keys that no row has are passed over.
/// Nothing when it is neither, isn't UTF-8, or when any row is wrong: one without a title, with a
/// value that is no text, or with a NUL in one. Pure; any thread.
std::optional<std::vector<ListRow>> parseListRows(std::string_view output);

} // namespace tessarine
