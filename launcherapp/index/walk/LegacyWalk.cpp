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

/// By path with "/" before all else, which puts what a directory holds right after it.
bool comesBefore(const IndexedItem& left, const IndexedItem& right) {
    const auto rank = [](char c) { return c == '/' ? 0 : static_cast<unsigned char>(c); };
    return std::ranges::lexicographical_compare(left.id, right.id, {}, rank, rank);
}

/// Everything the rules admit, in no order until the end. One directory is open at a time, so that
/// the depth of the tree costs no descriptors.
class Enumeration {
public:
    explicit Enumeration(const IndexWalker::Policy& policy)
        : policy_(policy),
          budget_(static_cast<std::size_t>(std::max<std::int64_t>(0, policy.budget))) {}

    std::optional<std::vector<IndexedItem>> run(const std::string& root) {
        std::error_code error;
        read(fs::directory_iterator(root, error), 1);
        if (error)
            return std::nullopt;
        while (!waiting_.empty()) {
            const auto [path, depth] = std::move(waiting_.back());
            waiting_.pop_back();
            // One that can't be read, for whatever reason, hides nothing but what it holds.
            read(fs::directory_iterator(path, error), depth);
        }
        keepFirst();
        std::ranges::sort(items_, comesBefore);
        return std::move(items_);
    }

private:
    struct Waiting {
        fs::path path;
        int depth = 0; ///< of its entries
    };

    void read(fs::directory_iterator entry, int depth) {
        std::error_code brokeOff; // then what was read stands
        for (; entry != fs::directory_iterator(); entry.increment(brokeOff))
            take(*entry, depth);
        // What comes after so many can't be among the first any more.
        if (items_.size() / 2 > budget_)
            keepFirst();
    }

    void take(const fs::directory_entry& entry, int depth) {
        const auto name = entry.path().filename().string();
        if (name.starts_with('.'))
            return;
        std::error_code vanished;
        const bool isDirectory = !entry.is_symlink(vanished) && entry.is_directory(vanished);
        if (isDirectory &&
            (name.ends_with(".noindex") || (policy_.skipDirs && policy_.skipDirs->count(name))))
            return;
        const bool isFolder = isDirectory && !IndexRules::isPackage(name);
        if (!isFolder && (policy_.foldersOnly || depth > policy_.fileDepth))
            return;
        if (isFolder && depth < policy_.folderDepth)
            waiting_.push_back({.path = entry.path(), .depth = depth + 1});
        const auto extension = isFolder ? std::string() : fs::path(name).extension().string();
        items_.push_back({.id = entry.path().string(),
                          .name = name,
                          .norm = Matcher::normalize(name),
                          .isFolder = isFolder,
                          .ext = Folding::lowercase(
                              std::string_view(extension).substr(extension.empty() ? 0 : 1))});
    }

    void keepFirst() {
        if (items_.size() <= budget_)
            return;
        const auto end = items_.begin() + static_cast<std::ptrdiff_t>(budget_);
        std::ranges::nth_element(items_, end, comesBefore);
        items_.erase(end, items_.end());
    }

    const IndexWalker::Policy& policy_;
    const std::size_t budget_;
    std::vector<IndexedItem> items_;
    std::vector<Waiting> waiting_;
};

} // namespace

std::optional<std::vector<IndexedItem>> legacyWalk(const std::string& root,
                                                   const IndexWalker::Policy& policy) {
    return Enumeration(policy).run(root);
}

} // namespace tessarine
