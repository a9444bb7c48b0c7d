#pragma once

#include "LauncherCore/index/DirectoryListing.h"
#include "LauncherCore/index/NameIndex.h"
#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What the rows of files are made of.
struct FileRowSources {
    const RowVerbs& verbs;
    std::string_view home;                 ///< shown as "~" in paths
    const std::set<std::string>& expanded; ///< keys of the groups that show every file
};

/// The row of one file or folder. Its icon is drawn when the row is, not here.
ResultRow fileRow(const IndexedItem& item, const FileRowSources& sources);

/// The path of the folder that a file's row stands for; nothing for any other row.
std::optional<std::string> folderOf(const ResultRow& row);

/// Says that a folder can't be read.
ResultRow unreadableFolderRow(const std::string& folder);

/// Rows of the files found, which come best first. Files of one name, whatever its case, are one
/// group and take one place of the `keep`: the best of them stands for all, until the group is
/// opened.
std::vector<ResultRow> collapseSameName(std::span<const NameIndex::Found> found,
                                        std::size_t keep,
                                        const FileRowSources& sources);

/// What a folder holds, folders first, each by name; with a query only what it names, best first.
/// A hint when that is nothing.
std::vector<ResultRow> browseRows(const std::string& folder,
                                  const DirectoryListing& listing,
                                  std::string_view query,
                                  const FileRowSources& sources);

} // namespace tessarine
