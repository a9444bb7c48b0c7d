#include "launcherapp/query/rows/ClipRows.h"

#include "LauncherCore/answers/AnswerSource.h"
#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Printable.h"
#include "LauncherCore/text/Urls.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <map>

namespace tessarine {

namespace {

constexpr std::size_t longestList = 60; ///< as the panel shows at most
/// More than the largest preview has room for, and little enough to copy for each key.
constexpr std::size_t longestPreviewBytes = 20000;
constexpr std::size_t mostCountedBytes = 1000000; ///< its lines are counted for each key
constexpr std::size_t mostPreviewFiles = 200;     ///< as the preview's bytes
constexpr std::string_view groupToken = "group:";

constexpr double secondsPerMinute = 60;
constexpr double secondsPerDay = 86400;

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string ago(double at, double now) {
    const double age = now - at;
    if (age < secondsPerMinute)
        return "just now";
    if (age < secondsPerDay)
        return Answers::ageText(at, now);
    return counted(static_cast<std::int64_t>(age / secondsPerDay), "day", "days") + " ago";
}

/// The clipping that a row stands for; null for a row of another source and for one that is gone.
const ClipboardEntry* entryOf(const ClipRowSources& sources, const ResultRow& row) {
    if (!row.id.starts_with(clippingRowPrefix))
        return nullptr;
    return sources.history.entry(std::string_view(row.id).substr(clippingRowPrefix.size()));
}

/// Where it came from; nothing when nobody knows.
std::optional<std::string> origin(const ClipboardEntry& entry) {
    return entry.fromOtherDevice.value_or(false) ? "another device" : entry.sourceApp;
}

std::int64_t fileCount(const ClipboardEntry& entry) {
    return std::ranges::count(entry.text.string(), '\n') + 1;
}

std::string_view firstFile(const ClipboardEntry& entry) {
    const std::string_view paths = entry.text.string();
    return Paths::withoutEndSlashes(paths.substr(0, paths.find('\n')));
}

std::string title(const ClipboardEntry& entry) {
    if (entry.kind != ClipKind::file)
        return entry.preview;
    const auto path = firstFile(entry);
    const auto name = path == "/" ? path : Paths::lastPart(path);
    const auto others = fileCount(entry) - 1;
    return others == 0 ? std::string(name) : fmt::format("{} and {} more", name, others);
}

/// The folder of a single file, as its name alone may not tell it from another.
std::optional<std::string> folder(const ClipboardEntry& entry, const std::string& home) {
    if (entry.kind != ClipKind::file || fileCount(entry) != 1 || firstFile(entry).empty())
        return std::nullopt;
    const auto parent = Paths::parent(firstFile(entry));
    return !home.empty() && Paths::isAtOrBelow(parent, home)
               ? "~" + std::string(parent.substr(Paths::withoutEndSlashes(home).size()))
               : std::string(parent);
}

std::string subtitle(const ClipboardEntry& entry, const ClipRowSources& sources) {
    std::string text;
    if (const auto from = origin(entry))
        text = (entry.fromOtherDevice.value_or(false) ? "from " : "") + *from + " · ";
    text += ago(entry.lastSeen, sources.now);
    if (const auto where = folder(entry, sources.home))
        text += " · " + *where;
    return entry.pinned ? text + " · pinned" : text;
}

ResultRow::Action doing(const std::function<void(const std::string&)>& verb,
                        const std::string& id) {
    return [verb, id] {
        if (verb)
            verb(id);
    };
}

ResultRow clippingRow(const ClipboardEntry& entry, const ClipRowSources& sources) {
    ResultRow row{.id = std::string(clippingRowPrefix) + entry.id,
                  .kind = RowKind::command,
                  .title = title(entry),
                  .subtitle = subtitle(entry, sources),
                  .symbol = sources.groups.symbol(entry),
                  .primary = doing(sources.paste, entry.id),
                  .primaryLabel = sources.pastes ? "paste" : "copy",
                  .pasteCount = static_cast<std::int64_t>(entry.pasteCount())};
    if (entry.kind == ClipKind::image && sources.thumbnail)
        row.image = sources.thumbnail(entry);
    if (entry.kind == ClipKind::file) {
        const auto count = fileCount(entry);
        if (count == 1)
            row.url = Urls::fileUrl(firstFile(entry));
        else
            row.glyph = std::to_string(count);
    }
    return row;
}

RowPreview::Text shownText(const ClipboardEntry& entry) {
    return {.text = std::string(Printable::beginning(entry.text.string(), longestPreviewBytes))};
}

RowPreview::Files shownFiles(const ClipboardEntry& entry) {
    RowPreview::Files files;
    std::string_view rest = entry.text.string();
    while (!rest.empty() && files.paths.size() < mostPreviewFiles) {
        const auto end = std::min(rest.find('\n'), rest.size());
        files.paths.emplace_back(Paths::withoutEndSlashes(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return files;
}

std::variant<RowPreview::Text, RowPreview::Picture, RowPreview::Files>
shownContent(const ClipboardEntry& entry, const ClipRowSources& sources) {
    if (entry.kind == ClipKind::file)
        return shownFiles(entry);
    if (entry.kind == ClipKind::image) {
        auto image = sources.picture ? sources.picture(entry) : std::nullopt;
        if (!image && sources.thumbnail)
            image = sources.thumbnail(entry);
        if (image)
            return RowPreview::Picture{*std::move(image)};
    }
    return shownText(entry);
}

/// How much it is.
std::vector<std::string> measures(const ClipboardEntry& entry) {
    const auto& text = entry.text.string();
    switch (entry.kind) {
    case ClipKind::image:
        return {entry.text.string()};
    case ClipKind::file:
        return {counted(fileCount(entry), "file", "files")};
    case ClipKind::text:
        break;
    }
    std::vector<std::string> facts{
        counted(static_cast<std::int64_t>(entry.characterCount()), "character", "characters")};
    if (text.size() <= mostCountedBytes && entry.isMultiline()) {
        // A break at the very end begins no line.
        const auto lines = std::ranges::count(text, '\n') + (text.ends_with('\n') ? 0 : 1);
        facts.push_back(counted(lines, "line", "lines"));
    }
    if (text.size() > longestPreviewBytes)
        facts.emplace_back("only the beginning is shown");
    return facts;
}

} // namespace

Rows clippingRows(const ClipRowSources& sources,
                  std::string_view query,
                  const std::optional<ClipFilterKey>& filter) {
    Rows rows;
    for (const auto& entry : sources.history.search(query, longestList, filter, sources.groups))
        rows.push_back(clippingRow(entry, sources));
    return rows;
}

std::vector<FilterMenuItem> clipFilterMenu(const ClipRowSources& sources) {
    const auto counts = sources.history.counts(sources.groups);
    const auto groups = sources.groups.current();
    std::vector<FilterMenuItem> items{{std::string(FilterMenuItem::everything),
                                       "Everything",
                                       static_cast<std::int64_t>(sources.history.entries.size())}};
    const auto add = [&](const ClipFilterKey& key) {
        if (const auto found = counts.find(key); found != counts.end())
            items.push_back({clipFilterToken(key), key.label(*groups), found->second});
    };
    for (const auto category : ClipKinds::allCategories)
        add(ClipFilterKey::builtin(category));
    for (const auto& group : groups->groups)
        add(ClipFilterKey::group(group.name));
    return items;
}

std::string clipFilterToken(const ClipFilterKey& key) {
    if (const auto* category = std::get_if<ClipCategory>(&key.value))
        return std::string(ClipKinds::rawValue(*category));
    return std::string(groupToken) + std::get<ClipFilterKey::Group>(key.value).name;
}

std::optional<ClipFilterKey> clipFilterOfToken(std::string_view token) {
    if (token.starts_with(groupToken))
        return ClipFilterKey::group(std::string(token.substr(groupToken.size())));
    const auto category = ClipKinds::category(token);
    return category ? std::optional(ClipFilterKey::builtin(*category)) : std::nullopt;
}

std::string clipFilterTitle(const ClipRowSources& sources, std::string_view token) {
    const auto key = clipFilterOfToken(token);
    return key ? key->label(*sources.groups.current()) : std::string(token);
}

std::vector<std::string> partialClipFilters(const ClipRowSources& sources, std::string_view word) {
    const auto groups = sources.groups.current();
    std::vector<std::string> tokens;
    for (const auto* group : groups->partialMatches(Folding::fold(word)))
        tokens.push_back(clipFilterToken(ClipFilterKey::group(group->name)));
    return tokens;
}

std::optional<RowPreview> clippingPreview(const ClipRowSources& sources, const ResultRow& row) {
    const auto* entry = entryOf(sources, row);
    if (!entry)
        return std::nullopt;
    RowPreview preview{.content = shownContent(*entry, sources), .facts = measures(*entry)};
    const auto from = origin(*entry);
    preview.facts.push_back((from ? "copied from " + *from + " " : "copied ") +
                            ago(entry->lastSeen, sources.now));
    if (entry->count > 1)
        preview.facts.push_back(fmt::format("copied {} times", entry->count));
    preview.facts.push_back(entry->pasteCount() == 0
                                ? "not pasted yet"
                                : fmt::format("pasted: {}", fmt::join(*entry->pastedInto, ", ")));
    return preview;
}

std::vector<RowAction> clippingActions(const ClipRowSources& sources, const ResultRow& row) {
    const auto* entry = entryOf(sources, row);
    if (!entry)
        return {};
    std::vector<RowAction> actions;
    const auto add = [&](std::string title,
                         std::string symbol,
                         const std::function<void(const std::string&)>& verb) {
        if (!verb)
            return;
        actions.push_back(RowAction::make(std::move(title), doing(verb, entry->id)));
        actions.back().symbol = std::move(symbol);
        actions.back().destructive = actions.back().symbol == "trash";
    };
    add("Copy back to the top", "arrow.up.to.line", sources.copyToTop);
    if (entry->pinned)
        add("Unpin this clipping", "pin.slash", sources.togglePin);
    else
        add("Pin this clipping", "pin", sources.togglePin);
    add("Delete this clipping", "trash", sources.remove);
    return actions;
}

} // namespace tessarine
