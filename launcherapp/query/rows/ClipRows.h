#pragma once

#include "LauncherCore/clipboard/ClipboardHistory.h"
#include "launcherapp/query/RowAction.h"
#include "launcherapp/query/RowFamilies.h"
#include "launcherapp/query/RowPreview.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class ClipGroupsRuntime;

/// What rows of clippings are made of and do. A function that is empty is not offered; what is
/// seen goes by the values alone. Main thread only.
struct ClipRowSources {
    const ClipboardHistory& history;
    ClipGroupsRuntime& groups;
    double now = 0;   ///< seconds since 1970
    std::string home; ///< shown as "~" in paths
    /// A picture that is read already; nothing starts its reading for the next time.
    std::function<std::optional<Image>(const ClipboardEntry& entry)> thumbnail;
    std::function<std::optional<Image>(const ClipboardEntry& entry)> picture;
    std::function<void(const std::string& id)> paste; ///< or copy, as `pastes` says
    std::function<void(const std::string& id)> copyToTop;
    std::function<void(const std::string& id)> togglePin;
    std::function<void(const std::string& id)> remove;
    std::function<void(std::optional<std::chrono::duration<double>> newerThan)>
        clear;          ///< nothing: all of it
    bool pastes = true; ///< Return will paste; else it copies
    /// Why it does less than it could, a phrase for the user; empty where nothing hinders it.
    std::string onlyCopies = {}; ///< the desktop lets it paste nothing; beside the list
    std::string unusable = {};   ///< nothing can be copied either; on each row
};

/// How the ids of these rows begin; the id of the clipping follows.
inline constexpr std::string_view clippingRowPrefix = "clip:";

/// The clippings that a query and a filter find, the newest first, at most 60. Fast enough to be
/// built for each key: beyond the search, nothing in it grows with the length of a text.
Rows clippingRows(const ClipRowSources& sources,
                  std::string_view query,
                  const std::optional<ClipFilterKey>& filter);

/// Everything, then the categories and groups that have clippings, with how many.
std::vector<FilterMenuItem> clipFilterMenu(const ClipRowSources& sources);

/// The key of a menu item, and back; nothing for `FilterMenuItem::everything` and unknown ones.
std::string clipFilterToken(const ClipFilterKey& key);
std::optional<ClipFilterKey> clipFilterOfToken(std::string_view token);

/// What the filter of a token is called, also when its clippings or its group are gone.
std::string clipFilterTitle(const ClipRowSources& sources, std::string_view token);

/// The tokens of the taught groups whose names hold the word, whether or not they have clippings.
std::vector<std::string> partialClipFilters(const ClipRowSources& sources, std::string_view word);

/// What a selected row of a clipping shows beside the list; nothing for any other row. Of a long
/// text only the beginning, which the facts say.
std::optional<RowPreview> clippingPreview(const ClipRowSources& sources, const ResultRow& row);

/// What the actions menu offers for such a row, and what has become of the clipping; nothing for
/// any other.
std::vector<RowAction> clippingActions(const ClipRowSources& sources, const ResultRow& row);

} // namespace tessarine
