#include "launcherapp/query/rows/EngagedRows.h"

#include "launcherapp/query/rows/HintRows.h"

#include <fmt/format.h>

#include <utility>

namespace tessarine {

namespace {

/// A script's rows are told apart by what they stand for: learned positions stay with that.
std::string idOf(const CommandSpec& command, const ListRow& row) {
    return fmt::format("list:{}:{}", command.id, row.arg.value_or(row.title));
}

} // namespace

std::vector<ResultRow> listCommandRows(const CommandSpec& command,
                                       const std::vector<ListRow>* printed,
                                       const std::function<void(const ListRow& row)>& choose) {
    const auto hintID = "empty:list:" + command.id;
    if (!printed)
        return {readHint(hintID, command.name, "Its script is running", command.defaultSymbol())};
    if (printed->empty())
        return {
            readHint(hintID, command.name, "Its script found nothing", command.defaultSymbol())};
    const bool hasScript = command.onSelect && !command.onSelect->empty();
    std::vector<ResultRow> rows;
    rows.reserve(printed->size());
    for (const auto& each : *printed)
        rows.push_back({.id = idOf(command, each),
                        .kind = RowKind::command,
                        .title = each.title,
                        .subtitle = each.subtitle.value_or(""),
                        .symbol = each.icon.value_or(command.defaultSymbol()),
                        .primary = [choose, each] { choose(each); },
                        .primaryLabel = hasScript ? "run" : "open",
                        .group = std::string(RowGroup::commands)});
    return rows;
}

ResultRow emptyFileSearchRow(const CommandSpec& command, std::string_view query) {
    return readHint("empty:files:" + command.id,
                    command.name,
                    query.empty() ? std::string("Type a part of the name")
                                  : fmt::format("Nothing found for “{}”", query),
                    command.defaultSymbol());
}

} // namespace tessarine
