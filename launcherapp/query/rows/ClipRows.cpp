#include "launcherapp/query/rows/ClipRows.h"

#include "LauncherCore/answers/AnswerSource.h"
#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/text/Counted.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Printable.h"
#include "LauncherCore/text/Urls.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <variant>

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

std::string ago(double at, double now) {
    const double age = now - at;
    if (age < secondsPerMinute)
        return "just now";
    if (age < secondsPerDay)
        return Answers::ageText(at, now);
    return counted(static_cast<std::int64_t>(age / secondsPerDay), "day") + " ago";
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

/// The files of a clipping; none for one of another kind.
std::vector<std::string_view> filesOf(const ClipboardEntry& entry) {
    auto paths = entry.kind == ClipKind::file ? entry.paths() : std::vector<std::string_view>();
    std::ranges::transform(paths, paths.begin(), Paths::withoutEndSlashes);
    return paths;
}

std::string title(const ClipboardEntry& entry, std::span<const std::string_view> files) {
    if (files.empty())
        return entry.preview;
    const auto name = files[0] == "/" ? files[0] : Paths::lastPart(files[0]);
    return files.size() == 1 ? std::string(name)
                             : fmt::format("{} and {} more", name, files.size() - 1);
}

std::string subtitle(const ClipboardEntry& entry,
                     std::span<const std::string_view> files,
                     const ClipRowSources& sources) {
    if (!sources.unusable.empty())
        return "can't be copied: " + sources.unusable;
    std::string text;
    if (const auto from = origin(entry))
        text = (entry.fromOtherDevice.value_or(false) ? "from " : "") + *from + " · ";
    text += ago(entry.lastSeen, sources.now);
    // The name of a single file may not tell it from another.
    if (files.size() == 1)
        text += " · " + Paths::shown(Paths::parent(files[0]), sources.home);
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
    const auto files = filesOf(entry);
    ResultRow row{.id = std::string(clippingRowPrefix) + entry.id,
                  .kind = RowKind::command,
                  .title = title(entry, files),
                  .subtitle = subtitle(entry, files, sources),
                  .symbol = sources.groups.symbol(entry),
                  .primary = doing(sources.paste, entry.id),
                  .primaryLabel = sources.pastes ? "paste" : "copy",
                  .pasteCount = static_cast<std::int64_t>(entry.pasteCount())};
    if (entry.kind == ClipKind::image && sources.thumbnail)
        row.image = sources.thumbnail(entry);
    if (files.size() == 1)
        row.url = Urls::fileUrl(files[0]);
    else if (!files.empty())
        row.glyph = std::to_string(files.size());
    return row;
}

RowPreview::Text shownText(const ClipboardEntry& entry) {
    return {.text = std::string(Printable::beginning(entry.text.string(), longestPreviewBytes))};
}

RowPreview::Files shownFiles(const ClipboardEntry& entry) {
    auto files = filesOf(entry);
    files.resize(std::min(files.size(), mostPreviewFiles));
    return {.paths = {files.begin(), files.end()}};
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
        return {counted(filesOf(entry).size(), "file")};
    case ClipKind::text:
        break;
    }
    std::vector<std::string> facts{counted(entry.characterCount(), "character")};
    if (text.size() <= mostCountedBytes && entry.isMultiline()) {
        // A break at the very end begins no line.
        const auto lines = std::ranges::count(text, '\n') + (text.ends_with('\n') ? 0 : 1);
        facts.push_back(counted(lines, "line"));
    }
    if (text.size() > longestPreviewBytes)
        facts.emplace_back("only the beginning is shown");
    return facts;
}

/// What has become of it.
std::vector<std::string> uses(const ClipboardEntry& entry) {
    std::vector<std::string> facts;
    if (entry.count > 1)
        facts.push_back(fmt::format("copied {} times", entry.count));
    facts.push_back(entry.pasteCount() == 0
                        ? "not pasted yet"
                        : fmt::format("pasted: {}", fmt::join(*entry.pastedInto, ", ")));
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
    if (!sources.onlyCopies.empty())
        preview.facts.push_back(sources.onlyCopies);
    // Last, since the list of applications is what may grow too long to be shown.
    std::ranges::move(uses(*entry), std::back_inserter(preview.facts));
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
    };
    add("Copy back to the top", "arrow.up.to.line", sources.copyToTop);
    if (entry->pinned)
        add("Unpin this clipping", "pin.slash", sources.togglePin);
    else
        add("Pin this clipping", "pin", sources.togglePin);
    add("Delete this clipping", "trash", sources.remove);
    if (sources.remove)
        actions.back().destructive = true;
    actions.push_back(RowAction::separator());
    std::ranges::transform(uses(*entry), std::back_inserter(actions), RowAction::note);
    return actions;
}

} // namespace tessarine
