#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Finding a needle in the names of the whole index, which lie one after the other in one buffer.
/// Pure; any thread.
namespace tessarine::NameScan {

/// What parts the names in the buffer; no name holds it.
inline constexpr char terminator = '\n';

/// How the places of a needle are found. All give the same places.
enum class Method {
    best,     ///< the fastest that this processor has
    horspool, ///< Boyer-Moore-Horspool with a table of 256 entries: the portable one
};

/// Finds the places of one needle, which is not empty and outlives this object.
class Finder {
public:
    explicit Finder(std::string_view needle, Method method = Method::best);

    /// The first place at or after `from` where the whole needle stands; nothing when there is
    /// none.
    std::optional<std::size_t> next(std::string_view text, std::size_t from) const;

private:
    std::string_view needle_;
    Method method_;
    std::array<std::uint32_t, 256> skip_{}; ///< Horspool's table; filled for that method alone
};

/// What a scan found: indexes of items, ascending, each item at most once in either list.
struct Hits {
    std::vector<std::uint32_t> word;  ///< the needle's first place in the name is a word's start
    std::vector<std::uint32_t> plain; ///< its first place is inside a word
    /// Whether every item whose name holds the needle is in one of the lists.
    bool complete = true;
};

/// A scan stops at this many hits: a needle that common is not yet worth answering in full.
inline constexpr std::size_t mostWordHits = 1500;
inline constexpr std::size_t mostPlainHits = 20000;

/// Finds the items whose name holds the needle. `text` is all names, each with the terminator
/// behind it; `offsets` where each begins. Once `wordWanted` names have it at a word's start,
/// those that have it elsewhere are passed over.
Hits scan(std::string_view needle,
          std::string_view text,
          std::span<const std::uint32_t> offsets,
          std::size_t wordWanted);

/// Whether the needle's pieces between blanks could stand at words of the name: the bytes of each
/// in order, each piece beginning after the beginning of the one before. Cheap, allocates nothing,
/// and never false for a name that `Matcher::score` accepts.
bool couldMatch(std::string_view needle, std::string_view norm);

} // namespace tessarine::NameScan
