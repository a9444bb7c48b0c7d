#include "launcherapp/query/rows/FileRows.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/query/rows/HintRows.h"

#include <algorithm>
#include <map>

namespace tessarine {

namespace {

constexpr std::string_view folderSymbol = "folder";
constexpr std::string_view fileSymbol = "doc";

/// Files of one name, in the order in which they were found.
struct NameGroup {
    std::string key;
    std::vector<const NameIndex::Found*> files = {};
};

std::vector<NameGroup> grouped(std::span<const NameIndex::Found> found) {
    std::vector<NameGroup> groups;
    std::map<std::string, std::size_t> places;
    for (const auto& each : found) {
        auto key = Folding::lowercase(each.item.name);
        const auto [place, isNew] = places.emplace(key, groups.size());
        if (isNew)
            groups.push_back({.key = std::move(key)});
        groups[place->second].files.push_back(&each);
    }
    return groups;
}

/// For each entry of the folder that the query names, its place in the listing and its score.
std::vector<std::pair<std::int64_t, std::size_t>> named(const DirectoryListing& listing,
                                                        std::string_view query) {
    const Matcher::Query folded(query);
    std::vector<std::pair<std::int64_t, std::size_t>> result;
    for (std::size_t i = 0; i < listing.size(); ++i) {
        if (query.empty()) {
            result.emplace_back(listing.isDirectory(i) ? 1 : 0, i);
        } else if (const auto match = folded.score(listing.name(i))) {
            result.emplace_back(match->score, i);
        }
    }
    std::ranges::stable_sort(
        result, [](const auto& left, const auto& right) { return left.first > right.first; });
    return result;
}

} // namespace

ResultRow fileRow(const IndexedItem& item, const FileRowSources& sources) {
    const auto& verbs = sources.verbs;
    return {
        .id = item.id,
        .kind = RowKind::file,
        .title = Folding::repairedUtf8(item.name),
        .subtitle = Folding::repairedUtf8(Paths::shown(Paths::parent(item.id), sources.home)),
        .symbol = std::string(item.isFolder ? folderSymbol : fileSymbol),
        .primary =
            [open = verbs.openPath, path = item.id] {
                if (open)
                    open(path);
            },
        .secondary = verbs.revealPath
                         ? [reveal = verbs.revealPath, path = item.id] { reveal(path); }
                         : ResultRow::Action(),
        .secondaryLabel = verbs.revealPath ? "reveal" : "",
        .primaryLabel = item.isFolder ? "open folder" : "open",
        .url = Urls::fileUrl(item.id),
        .group = std::string(RowGroup::files),
    };
}

std::optional<std::string> folderOf(const ResultRow& row) {
    const bool isFolder = row.kind == RowKind::file && row.symbol == folderSymbol;
    return isFolder ? std::optional(row.id) : std::nullopt;
}

ResultRow unreadableFolderRow(const std::string& folder) {
    return {.id = "unreadable:" + folder,
            .kind = RowKind::hint,
            .title = "This folder can't be read",
            .subtitle = Folding::repairedUtf8(folder),
            .symbol = "exclamationmark.triangle.fill",
            .group = std::string(RowGroup::files)};
}

std::vector<ResultRow> collapseSameName(std::span<const NameIndex::Found> found,
                                        std::size_t keep,
                                        const FileRowSources& sources) {
    std::vector<ResultRow> rows;
    std::size_t kept = 0;
    for (auto& group : grouped(found)) {
        if (kept++ == keep)
            break;
        std::ranges::stable_sort(group.files, [](const auto* left, const auto* right) {
            return left->score > right->score;
        });
        const bool areTwins = group.files.size() > 1;
        if (!sources.expanded.contains(group.key))
            group.files.resize(1);
        for (const auto* file : group.files) {
            auto& row = rows.emplace_back(fileRow(file->item, sources));
            row.score = file->score;
            row.scoreIncludesUsage = true;
            if (areTwins)
                row.sameNameKey = group.key;
        }
    }
    return rows;
}

std::vector<ResultRow> browseRows(const std::string& folder,
                                  const DirectoryListing& listing,
                                  std::string_view query,
                                  const FileRowSources& sources) {
    std::vector<ResultRow> rows;
    const auto prefix = folder == "/" ? folder : folder + "/";
    for (const auto& [score, index] : named(listing, query)) {
        const std::string name(listing.name(index));
        rows.push_back(
            fileRow({.id = prefix + name,
                     .name = name,
                     .isFolder = listing.isDirectory(index) && !IndexRules::isPackage(name)},
                    sources));
        rows.back().subtitle.clear(); // the folder is what is browsed
        rows.back().score = score;
    }
    if (rows.empty())
        rows.push_back(emptyFolderRow(folder, query));
    return rows;
}

} // namespace tessarine
