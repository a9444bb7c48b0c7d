#include "launcherapp/query/rows/CalcHistoryRows.h"

#include "LauncherCore/text/Folding.h"
#include "launcherapp/query/rows/CopyingRows.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view entryPrefix = "calc:";
constexpr std::string_view earlierPrefix = "calcrecent:";
constexpr std::string_view historySymbol = "equal.circle";
constexpr std::size_t longestList = 60;          ///< as the panel shows at most
constexpr std::int64_t firstEarlierScore = 9000; ///< the next ones one less each

std::string_view symbol(CalcEntry::Kind kind) {
    switch (kind) {
    case CalcEntry::Kind::math:
        return "equal.circle";
    case CalcEntry::Kind::unit:
        return "arrow.left.arrow.right";
    case CalcEntry::Kind::currency:
        return "dollarsign.circle";
    case CalcEntry::Kind::date:
        return "calendar";
    }
    return historySymbol;
}

std::string earlierID(const CalcEntry& entry) {
    return std::string(earlierPrefix) + entry.expression + entry.formatted;
}

/// What was typed, then what the answer said of it unless that repeats it, then the pin.
std::string subtitle(const CalcEntry& entry) {
    std::string text = entry.expression;
    if (entry.detail && !entry.detail->empty()) {
        const bool repeats =
            Folding::fold(*entry.detail).find(Folding::fold(entry.expression)) != std::string::npos;
        text = repeats ? *entry.detail : text + " · " + *entry.detail;
    }
    return entry.pinned ? text + " · pinned" : text;
}

/// A row of either list, but for its id, its texts and its rank.
ResultRow entryRow(const CalcEntry& entry, const CalcHistoryRowSources& sources) {
    ResultRow row{.kind = RowKind::calc,
                  .symbol = std::string(symbol(entry.kind)),
                  .primary =
                      [copy = sources.verbs.copyText, result = entry.formatted] {
                          if (copy)
                              copy(result);
                      },
                  .primaryLabel = "copy",
                  .group = std::string(RowGroup::answers)};
    if (sources.calculations.typeText) {
        row.secondary = [type = sources.calculations.typeText, number = Calc::plain(entry.value)] {
            type(number);
        };
        row.secondaryLabel = "use this number";
    }
    return row;
}

ResultRow hint(std::string id, std::string title, std::string subtitle) {
    return {.id = "calchint:" + std::move(id),
            .kind = RowKind::hint,
            .title = std::move(title),
            .subtitle = std::move(subtitle),
            .symbol = std::string(historySymbol),
            .primary = [] {},
            .group = std::string(RowGroup::answers)};
}

ResultRow switchedOffHint(const RowVerbs& verbs) {
    auto row =
        hint("off", "Calculator history is switched off", "Settings › Calculator turns it back on");
    if (verbs.openSettings) {
        row.primary = verbs.openSettings;
        row.primaryLabel = "open Settings";
    }
    return row;
}

/// The entry that a row stands for; null for a row of another source and for an entry that is gone.
const CalcEntry* entryOf(const ResultRow& row, const CalcHistoryStore& history) {
    if (row.id.starts_with(entryPrefix))
        return history.entry(std::string_view(row.id).substr(entryPrefix.size()));
    if (!row.id.starts_with(earlierPrefix))
        return nullptr;
    const auto found = std::ranges::find(history.entries(), row.id, earlierID);
    return found == history.entries().end() ? nullptr : &*found;
}

} // namespace

std::vector<ResultRow> calcHistoryRows(const CalcHistoryRowSources& sources,
                                       std::string_view argument) {
    if (!sources.isEnabled)
        return {switchedOffHint(sources.verbs)};
    if (sources.history.entries().empty())
        return {hint("empty",
                     "Nothing calculated yet",
                     "Type a sum in the panel and press Return; it is filed here.")};
    std::vector<ResultRow> rows;
    for (const auto& entry : sources.history.search(argument, longestList)) {
        auto& row = rows.emplace_back(entryRow(entry, sources));
        row.id = std::string(entryPrefix) + entry.id;
        row.title = entry.formatted;
        row.subtitle = copyingSubtitle(subtitle(entry), sources.verbs);
    }
    if (rows.empty()) {
        const std::string query(Folding::trimmed(argument));
        rows.push_back(hint("none", "No calculation matches “" + query + "”", ""));
    }
    return rows;
}

std::vector<ResultRow> earlierCalculationRows(const CalcHistoryRowSources& sources,
                                              std::string_view query,
                                              std::size_t count) {
    if (!sources.isEnabled || query.starts_with(':'))
        return {};
    std::vector<ResultRow> rows;
    for (const auto& entry : sources.history.entries()) {
        if (rows.size() == count)
            break;
        if (entry.expression == query)
            continue;
        auto row = entryRow(entry, sources);
        row.id = earlierID(entry);
        // The second line has no room for what was typed.
        row.title = entry.name.value_or(entry.expression) + " = " + entry.formatted;
        row.subtitle = copyingSubtitle(entry.name ? "earlier · saved as " + *entry.name : "earlier",
                                       sources.verbs);
        row.score = firstEarlierScore - static_cast<std::int64_t>(rows.size());
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<RowAction> calcHistoryActions(const ResultRow& row,
                                          const CalcHistoryRowSources& sources) {
    const auto* const entry = entryOf(row, sources.history);
    if (!entry)
        return {};
    std::vector<RowAction> actions;
    const auto add = [&](std::string title,
                         std::string symbol,
                         const std::function<void(const std::string&)>& verb,
                         const std::string& argument) {
        if (!verb)
            return;
        actions.push_back(RowAction::make(std::move(title), [verb, argument] { verb(argument); }));
        actions.back().symbol = std::move(symbol);
    };
    const auto& verbs = sources.calculations;
    if (entry->pinned)
        add("Unpin this calculation", "pin.slash", verbs.unpin, entry->id);
    else
        add("Pin this calculation", "pin", verbs.pin, entry->id);
    add("Edit this calculation", "pencil", verbs.typeText, entry->expression);
    add("Copy the expression", "doc.on.doc", sources.verbs.copyText, entry->expression);
    const auto harmless = actions.size();
    add("Remove from history", "trash", verbs.remove, entry->id);
    if (actions.size() > harmless)
        actions.back().destructive = true;
    return actions;
}

std::optional<std::string> calcHistoryCopyText(const ResultRow& row,
                                               const CalcHistoryStore& history) {
    const auto* const entry = entryOf(row, history);
    return entry ? std::optional(entry->formatted) : std::nullopt;
}

} // namespace tessarine
