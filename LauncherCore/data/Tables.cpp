#include "LauncherCore/data/Tables.h"

#include "LauncherCore/data/EmbeddedTables.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <cassert>

namespace tessarine {

namespace {

std::vector<std::string_view> parted(std::string_view text, char divider) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find(divider);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

/// Not every line that begins with the sign: a keycap may be a row's first character.
bool isComment(std::string_view line) {
    return line == "#" || line.starts_with("# ");
}

} // namespace

std::vector<Tables::Row> Tables::rows(std::string_view name) {
    const auto tables = embeddedTables();
    const auto table = std::ranges::find(tables, name, &EmbeddedTable::name);
    assert(table != tables.end() && "the table lies in LauncherCore/data");
    if (table == tables.end())
        return {};
    std::vector<Row> rows;
    for (const auto line : parted(table->text, '\n'))
        if (!line.empty() && !isComment(line))
            rows.push_back(parted(line, '|'));
    return rows;
}

std::vector<std::string_view> Tables::list(std::string_view field) {
    auto parts = parted(field, ',');
    std::ranges::transform(parts, parts.begin(), Folding::trimmed);
    std::erase(parts, "");
    return parts;
}

} // namespace tessarine
