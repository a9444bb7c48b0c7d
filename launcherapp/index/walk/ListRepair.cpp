#include "launcherapp/index/walk/ListRepair.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace tessarine {

ListRepair::ListRepair(const ItemList& items, std::vector<std::string> directories)
    : items_(items), below_(directories.size()), removed_(items.size()) {
    prefixes_.reserve(directories.size());
    for (std::size_t i = 0; i < directories.size(); ++i)
        prefixes_.push_back({.path = std::move(directories[i]) + "/", .directory = i});
    std::ranges::sort(prefixes_, {}, &Prefix::path);

    // There are some twenty items to a directory of the list, so that is asked and not each item.
    std::vector<std::optional<std::size_t>> prefixes(items.directoryCount());
    for (std::uint32_t i = 0; i < prefixes.size(); ++i)
        prefixes[i] = prefixOf(items.directoryPath(i));
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto number = prefixes[items.directory(i)];
        if (!number)
            continue;
        const auto& prefix = prefixes_[*number];
        // An item that is its own directory lies above what it holds.
        const bool isTop = items.isItself(i) &&
                           items.directoryPath(items.directory(i)).size() < prefix.path.size();
        if (!isTop)
            below_[prefix.directory].push_back(static_cast<std::uint32_t>(i));
    }
}

std::int64_t ListRepair::countBeside(std::size_t directory) const {
    return static_cast<std::int64_t>(items_.size() - removedCount_ + addedCount_ -
                                     below_[directory].size());
}

void ListRepair::replace(std::size_t directory, ItemList found) {
    struct Found {
        std::uint32_t index = 0;
        bool isKnown = false;
    };

    std::unordered_map<std::string, Found> byID;
    byID.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        byID.try_emplace(found.id(i), Found{.index = static_cast<std::uint32_t>(i)});

    std::string id;
    for (const auto item : below_[directory]) {
        items_.assignID(item, id);
        const auto match = byID.find(id);
        if (match != byID.end() && found.isFolder(match->second.index) == items_.isFolder(item)) {
            match->second.isKnown = true;
        } else {
            removed_[item] = true;
            ++removedCount_;
        }
    }

    Addition addition;
    for (const auto& [path, entry] : byID) {
        if (!entry.isKnown)
            addition.items.push_back(entry.index);
    }
    std::ranges::sort(addition.items);
    addedCount_ += addition.items.size();
    if (!addition.items.empty()) {
        addition.found = std::move(found);
        additions_.push_back(std::move(addition));
    }
}

ListRepair::Repaired ListRepair::finish() const {
    if (removedCount_ == 0 && addedCount_ == 0)
        return {.items = items_};
    return {.items = withAdditions(items_.without(removed_)),
            .removed = removedCount_,
            .added = addedCount_};
}

std::optional<std::size_t> ListRepair::prefixOf(std::string_view directoryPath) const {
    std::string path(directoryPath);
    path += '/';
    // Whatever sorts between a prefix and a text that begins with it begins with it as well. No
    // prefix begins with another, so the one sought is the last that is not after the text.
    const auto after = std::ranges::upper_bound(prefixes_, path, {}, &Prefix::path);
    if (after == prefixes_.begin() || !path.starts_with(std::prev(after)->path))
        return std::nullopt;
    return static_cast<std::size_t>(after - prefixes_.begin()) - 1;
}

/// New files mostly come into directories that the list has, which are not stored again.
ItemList ListRepair::withAdditions(ItemList list) const {
    std::unordered_map<std::string, std::uint32_t> numbers;
    for (std::uint32_t i = 0; !additions_.empty() && i < list.directoryCount(); ++i) {
        const auto path = list.directoryPath(i);
        if (prefixOf(path))
            numbers.try_emplace(std::string(path), i);
    }
    for (const auto& [found, items] : additions_) {
        for (const auto item : items) {
            const std::string path(found.directoryPath(found.directory(item)));
            auto number = numbers.find(path);
            if (number == numbers.end())
                number = numbers.emplace(path, list.addDirectory(path)).first;
            list.add(number->second, found.name(item), found.norm(item), found.isFolder(item));
        }
    }
    return list;
}

} // namespace tessarine
