#include "LauncherCore/index/DirectoryListing.h"

namespace tessarine {

void DirectoryListing::sort() {
    const auto byKey = [](const Entry& left, const Entry& right) { return left.key < right.key; };
    const auto byName = [names = std::string_view(names_)](const Entry& left, const Entry& right) {
        return names.substr(left.begin, left.length) < names.substr(right.begin, right.length);
    };
    if (entries_.size() <= fewEntries)
        rankByKey();
    else
        std::ranges::sort(entries_, byKey);
    // No two entries of a directory have one name, so there is no order for a stable sort to keep.
    for (auto run = entries_.begin(); run != entries_.end();) {
        const auto end = std::find_if(
            run, entries_.end(), [key = run->key](const Entry& entry) { return entry.key != key; });
        if (end - run > 1)
            std::sort(run, end, byName);
        run = end;
    }
}

void DirectoryListing::rankByKey() {
    // Every pair is compared, with no branch to guess: for so few that is the fastest way.
    std::array<std::uint8_t, fewEntries> ranks{};
    for (std::size_t i = 1; i < entries_.size(); ++i) {
        unsigned rank = 0;
        for (std::size_t j = 0; j < i; ++j) {
            const bool isAfter = entries_[j].key > entries_[i].key;
            ranks[j] = static_cast<std::uint8_t>(ranks[j] + isAfter);
            rank += !isAfter;
        }
        ranks[i] = static_cast<std::uint8_t>(rank);
    }
    std::vector<Entry> ranked(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i)
        ranked[ranks[i]] = entries_[i];
    entries_ = std::move(ranked);
}

} // namespace tessarine
