#include "launcherapp/index/walk/LegacyWalk.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tessarine {

namespace {

namespace fs = std::filesystem;

constexpr int attempts = 3;

/// By path with "/" before all else, which puts what a directory holds right after it.
bool comesBefore(const IndexedItem& left, const IndexedItem& right) {
    const auto rank = [](char c) { return c == '/' ? 0 : static_cast<unsigned char>(c); };
    return std::ranges::lexicographical_compare(left.id, right.id, {}, rank, rank);
}

/// Everything the rules admit but for the budget, in no order; nothing when the enumeration broke
/// off, as it does when a directory goes while it is entered.
std::optional<std::vector<IndexedItem>> enumerated(const std::string& root,
                                                   const IndexWalker::Policy& policy) {
    std::vector<IndexedItem> items;
    std::error_code error;
    fs::recursive_directory_iterator entry(
        root, fs::directory_options::skip_permission_denied, error);
    if (error)
        return items;
    for (; entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        const auto name = entry->path().filename().string();
        const int depth = entry.depth() + 1;
        std::error_code vanished;
        const bool isDirectory = !entry->is_symlink(vanished) && entry->is_directory(vanished);
        const bool isPackage = isDirectory && IndexRules::isPackage(name);
        const bool isFolder = isDirectory && !isPackage;
        if (!isFolder || depth >= policy.folderDepth)
            entry.disable_recursion_pending();

        const bool isHidden = name.starts_with('.');
        const bool isSkipped = isDirectory && (name.ends_with(".noindex") ||
                                               (policy.skipDirs && policy.skipDirs->count(name)));
        if (isHidden || isSkipped) {
            entry.disable_recursion_pending();
            continue;
        }
        if (!isFolder && (policy.foldersOnly || depth > policy.fileDepth))
            continue;
        auto extension = isFolder ? std::string() : fs::path(name).extension().string();
        items.push_back({.id = entry->path().string(),
                         .name = name,
                         .norm = Matcher::normalize(name),
                         .isFolder = isFolder,
                         .ext = Folding::lowercase(
                             std::string_view(extension).substr(extension.empty() ? 0 : 1))});
    }
    return error ? std::nullopt : std::optional(std::move(items));
}

} // namespace

std::vector<IndexedItem> legacyWalk(const std::string& root, const IndexWalker::Policy& policy) {
    std::optional<std::vector<IndexedItem>> items;
    for (int i = 0; i < attempts && !items; ++i)
        items = enumerated(root, policy);
    if (!items)
        return {};
    std::ranges::sort(*items, comesBefore);
    const auto budget = static_cast<std::size_t>(std::max<std::int64_t>(0, policy.budget));
    if (items->size() > budget)
        items->resize(budget);
    return *std::move(items);
}

} // namespace tessarine
