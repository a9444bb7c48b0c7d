#include "launcherapp/query/rows/ClearClipRows.h"

#include "LauncherCore/text/Counted.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/query/rows/ClipRows.h"
#include "launcherapp/query/rows/HintRows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>

namespace tessarine {

namespace {

constexpr std::string_view symbol = "trash";
constexpr std::string_view nothingID = "none";
constexpr std::int64_t minutesPerHour = 60;
constexpr std::int64_t minutesPerDay = 24 * minutesPerHour;
constexpr auto offeredMinutes = std::to_array<std::int64_t>({5, 15, minutesPerHour});
/// Longer than anybody keeps copies, and far from what overflows.
constexpr std::int64_t mostMinutes = 1000 * minutesPerDay;

/// "10", "10 min", "2 h" or "1 day"; nothing for anything else.
std::optional<std::int64_t> minutesOf(std::string_view argument) {
    struct Unit {
        std::string_view word;
        std::int64_t minutes;
    };

    constexpr auto units = std::to_array<Unit>({{"", 1},
                                                {"m", 1},
                                                {"min", 1},
                                                {"mins", 1},
                                                {"minute", 1},
                                                {"minutes", 1},
                                                {"h", minutesPerHour},
                                                {"hour", minutesPerHour},
                                                {"hours", minutesPerHour},
                                                {"d", minutesPerDay},
                                                {"day", minutesPerDay},
                                                {"days", minutesPerDay}});
    const auto text = Folding::lowercase(Folding::trimmed(argument));
    std::int64_t amount = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), amount);
    const auto rest = std::string_view(text).substr(static_cast<std::size_t>(end - text.data()));
    const auto unit = std::ranges::find(units, Folding::trimmed(rest), &Unit::word);
    if (error != std::errc() || unit == units.end() || amount < 1 ||
        amount > mostMinutes / unit->minutes)
        return std::nullopt;
    return amount * unit->minutes;
}

std::string lastMinutes(std::int64_t minutes) {
    const bool isHours = minutes % minutesPerHour == 0;
    const auto count = isHours ? minutes / minutesPerHour : minutes;
    const std::string unit = isHours ? "hour" : "minute";
    return "the last " + (count == 1 ? unit : counted(count, unit));
}

/// What an age, or none, would take away.
std::int64_t goes(const ClipRowSources& sources,
                  std::optional<std::chrono::duration<double>> newerThan) {
    return std::ranges::count_if(sources.history.entries, [&](const ClipboardEntry& entry) {
        return ClipboardHistory::isCleared(entry, sources.now, newerThan);
    });
}

ResultRow nothingRow(std::string title, std::string reason) {
    return readHint(std::string(clearingRowPrefix) + std::string(nothingID),
                    std::move(title),
                    std::move(reason),
                    symbol);
}

ResultRow clearRow(const ClipRowSources& sources,
                   std::string id,
                   std::string title,
                   std::optional<std::chrono::duration<double>> newerThan) {
    const auto pinned = std::ranges::count(sources.history.entries, true, &ClipboardEntry::pinned);
    auto detail = counted(goes(sources, newerThan), "clipping");
    if (pinned > 0)
        detail += fmt::format(" · {} pinned {}", pinned, pinned == 1 ? "stays" : "stay");
    return {.id = std::string(clearingRowPrefix) + std::move(id),
            .kind = RowKind::command,
            .title = std::move(title),
            .subtitle = std::move(detail),
            .symbol = std::string(symbol),
            .primary =
                [clear = sources.clear, newerThan] {
                    if (clear)
                        clear(newerThan);
                },
            .primaryLabel = "clear",
            .group = std::string(RowGroup::commands)};
}

} // namespace

Rows clearClipboardRows(const ClipRowSources& sources, std::string_view argument) {
    if (goes(sources, std::nullopt) == 0)
        return {nothingRow("Nothing to clear",
                           sources.history.entries.empty() ? "The clipboard history is empty"
                                                           : "Only pinned clippings are left")};
    const auto secondsOf = [](std::int64_t minutes) {
        return std::chrono::duration<double>{std::chrono::minutes(minutes)};
    };
    const auto row = [&](std::int64_t minutes) {
        return clearRow(
            sources, std::to_string(minutes), "Clear " + lastMinutes(minutes), secondsOf(minutes));
    };
    Rows rows;
    const auto asked = minutesOf(argument);
    if (asked && goes(sources, secondsOf(*asked)) == 0)
        rows.push_back(nothingRow("Nothing was copied in " + lastMinutes(*asked),
                                  "Pinned clippings don't count; they stay"));
    else if (asked)
        rows.push_back(row(*asked));
    rows.push_back(clearRow(sources, "all", "Clear clipboard history", std::nullopt));
    for (const auto minutes : offeredMinutes) {
        if (minutes != asked && goes(sources, secondsOf(minutes)) > 0)
            rows.push_back(row(minutes));
    }
    return rows;
}

} // namespace tessarine
