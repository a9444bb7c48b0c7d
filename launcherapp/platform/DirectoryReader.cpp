#include "launcherapp/platform/DirectoryReader.h"

#include <algorithm>

namespace tessarine {

namespace {

/// The first bytes of a name as one number that compares as they do. Most comparisons of a sort
/// end with it, and touch nothing else.
std::uint64_t sortKey(std::string_view name) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < sizeof key; ++i)
        key = key << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
    return key;
}

} // namespace

void DirectoryListing::sort() {
    struct Keyed {
        std::uint64_t key;
        Entry entry;
    };

    std::vector<Keyed> keyed;
    keyed.reserve(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i)
        keyed.push_back({.key = sortKey(name(i)), .entry = entries_[i]});
    const std::string_view names = names_;
    // No two entries of a directory have one name, so there is no order for a stable sort to keep.
    std::ranges::sort(keyed, [names](const Keyed& left, const Keyed& right) {
        if (left.key != right.key)
            return left.key < right.key;
        return names.substr(left.entry.begin, left.entry.length) <
               names.substr(right.entry.begin, right.entry.length);
    });
    std::ranges::transform(keyed, entries_.begin(), &Keyed::entry);
}

} // namespace tessarine
