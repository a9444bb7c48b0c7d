#pragma once

#include "LauncherCore/index/ItemList.h"
#include "LauncherCore/index/NameScan.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class UsageLog;

/// One generation of the searchable index: the items of all roots one after the other, and the
/// structures that find them. Never changed after it is made, so any number of threads may read
/// it; making one is work for the background.
class NameIndex {
public:
    /// An item by its position; positions follow the roots' order.
    using Position = std::uint32_t;

    struct Found {
        IndexedItem item;
        std::int64_t score = 0;

        bool operator==(const Found&) const = default;
    };

    struct Question {
        std::string_view query;
        bool foldersOnly = false;
        std::span<const std::string> extensions = {}; ///< none: any; compared without case
        std::size_t limit = 0;                        ///< distinct names, without case
    };

    /// Of an empty index.
    NameIndex() = default;

    /// `lists` holds no null.
    explicit NameIndex(std::vector<std::shared_ptr<const ItemList>> lists);

    std::size_t size() const { return offsets_.size(); }

    IndexedItem item(Position position) const;
    std::string_view name(Position position) const;
    std::string_view norm(Position position) const;

    const std::vector<std::shared_ptr<const ItemList>>& lists() const { return lists_; }

    /// All norms, each with a byte 10 behind it, and where each begins.
    const std::string& blob() const { return blob_; }

    std::span<const std::uint32_t> offsets() const { return offsets_; }

    /// Positions of the items whose norm begins with the byte, ascending.
    std::span<const Position> beginningWith(unsigned char first) const;

    /// What the query finds, best first: names that hold it at a word's start or inside a word,
    /// then, where those are few, names of its first letter that it matches by its initials or
    /// words. The score is the match less 6 for each "/" in the path, with what use adds at `now`,
    /// in seconds since 1970, UTC. Every copy of a shown name is there, and counts once.
    std::vector<Found> search(const Question& question, const UsageLog& usage, double now) const;

    /// Bytes of memory that it holds, the lists among them.
    std::size_t memoryBytes() const;

private:
    class Search;

    struct Place {
        const ItemList& list;
        std::size_t index;
    };

    Place place(Position position) const;
    std::string_view blobText(Position position) const; ///< without the terminator
    void buildBlob();
    void buildFirsts();

    std::vector<std::shared_ptr<const ItemList>> lists_;
    std::vector<Position> listBegins_;
    std::string blob_;
    std::vector<std::uint32_t> offsets_;
    // By first byte of a norm; those of byte `b` lie from `[b]` to `[b + 1]`.
    std::array<std::uint32_t, 257> firstBegins_{};
    std::vector<Position> byFirst_;
    /// For each item in the order of `byFirst_` the bytes that begin its words, and a terminator:
    /// what initials are looked for in, without a look at the names.
    std::string wordStarts_;
    std::array<std::uint32_t, 257> wordStartBegins_{};
};

} // namespace tessarine
