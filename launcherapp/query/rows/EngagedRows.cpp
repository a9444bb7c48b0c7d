#include "launcherapp/query/rows/EngagedRows.h"

#include "launcherapp/query/rows/HintRows.h"

#include <fmt/format.h>

#include <set>
#include <string>
#include <utility>

namespace tessarine {

namespace {

/// A script's rows are told apart by what they stand for, so that learned positions stay with that,
/// and those that stand for the same by their number.
class RowIDs {
public:
    explicit RowIDs(const CommandSpec& command) : beginning_("list:" + command.id + ":") {}

    std::string next(const ListRow& row) {
        const auto id = beginning_ + row.arg.value_or(row.title);
        auto own = id;
        for (int number = 2; !taken_.insert(own).second; ++number)
            own = fmt::format("{}#{}", id, number);
        return own;
    }

private:
    std::string beginning_;
    std::set<std::string> taken_;
};

} // namespace

std::vector<ResultRow> listCommandRows(const CommandSpec& command,
                                       const ListResult* result,
                                       const std::function<void(const ListRow& row)>& choose) {
    const auto symbol = command.defaultSymbol();
    if (!result || result->rows.empty())
        return {readHint("empty:list:" + command.id,
                         command.name,
                         !result ? "Its script is running"
                                 : result->problem.value_or("Its script found nothing"),
                         symbol)};
    const bool hasScript = command.onSelect && !command.onSelect->empty();
    RowIDs ids(command);
    std::vector<ResultRow> rows;
    rows.reserve(result->rows.size());
    for (const auto& each : result->rows) {
        const auto icon = each.icon.value_or("");
        rows.push_back({.id = ids.next(each),
                        .kind = RowKind::command,
                        .title = each.title,
                        .subtitle = each.subtitle.value_or(""),
                        .symbol = icon.empty() ? symbol : icon,
                        .primary = [choose, each] { choose(each); },
                        .primaryLabel = hasScript ? "run" : "open",
                        .group = std::string(RowGroup::commands)});
    }
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
