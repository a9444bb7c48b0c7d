#include "LauncherCore/query/Matcher.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/Scalars.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory_resource>
#include <numeric>

namespace tessarine {

namespace {

using Index = std::int64_t;
/// In scratch memory, so that a miss allocates nothing.
using Indexes = std::pmr::vector<Index>;

/// Memory for one score: room for a candidate and query of a few hundred characters; longer ones
/// go to the heap.
class Scratch {
public:
    std::pmr::memory_resource* resource() { return &resource_; }

private:
    std::array<std::byte, 4096> room_;
    std::pmr::monotonic_buffer_resource resource_{room_.data(), room_.size()};
};

constexpr Index bestTail = 500; ///< no tail is above it, so bands never overlap

Index tail(Index penalty) {
    return std::max<Index>(0, bestTail - penalty);
}

/// What a character is to the rule of word starts, by its first scalar.
struct Letterform {
    bool alphanumeric = false;
    bool upper = false;
    bool lower = false;
};

constexpr Letterform letterformAscii(char c) {
    const bool upper = c >= 'A' && c <= 'Z';
    const bool lower = c >= 'a' && c <= 'z';
    const bool digit = c >= '0' && c <= '9';
    return {.alphanumeric = upper || lower || digit, .upper = upper, .lower = lower};
}

Letterform letterform(std::string_view character) {
    const char first = character.front();
    if (static_cast<unsigned char>(first) < 0x80)
        return letterformAscii(first);
    const auto scalar = static_cast<UChar32>(Scalars::at(character, 0).value);
    return {.alphanumeric = (U_GET_GC_MASK(scalar) & (U_GC_L_MASK | U_GC_N_MASK)) != 0,
            .upper = u_isUUppercase(scalar) != 0,
            .lower = u_isULowercase(scalar) != 0};
}

bool startsWord(Letterform previous, Letterform current) {
    const bool afterGap = !previous.alphanumeric && current.alphanumeric;
    return afterGap || (previous.lower && current.upper);
}

/// A text of which every byte is a character.
class AsciiText {
public:
    explicit AsciiText(std::string_view bytes) : bytes_(bytes) {}

    Index length() const { return static_cast<Index>(bytes_.size()); }

    char at(Index index) const { return bytes_[static_cast<std::size_t>(index)]; }

    bool isBlank(Index index) const { return at(index) == ' '; }

private:
    std::string_view bytes_;
};

/// A text with its characters' boundaries.
class ClusteredText {
public:
    explicit ClusteredText(std::string text)
        : text_(std::move(text)), boundaries_(Graphemes::boundaries(text_)) {}

    Index length() const { return static_cast<Index>(boundaries_.size()) - 1; }

    std::string_view at(Index index) const {
        const auto i = static_cast<std::size_t>(index);
        return std::string_view(text_).substr(boundaries_[i], boundaries_[i + 1] - boundaries_[i]);
    }

    bool isBlank(Index index) const { return at(index) == " "; }

    const std::string& text() const { return text_; }

private:
    std::string text_;
    std::vector<std::uint32_t> boundaries_;
};

/// Characters `from` up to `from + length` of a text.
struct Piece {
    Index from = 0;
    Index length = 0;
};

/// Which characters of the candidate a match took, kept small until the match is certain.
std::vector<Index> range(Index from, Index length) {
    std::vector<Index> positions(static_cast<std::size_t>(length));
    std::iota(positions.begin(), positions.end(), from);
    return positions;
}

/// The rule itself, over a normalised query and candidate and the word starts of the candidate's
/// cased form. The two forms can differ in length, so a start may lie beyond the candidate.
template <typename Text> class Rule {
public:
    Rule(const Text& query, const Text& candidate, const Indexes& starts)
        : query_(query), candidate_(candidate), starts_(starts) {}

    std::optional<MatchResult> match(std::pmr::memory_resource* scratch) const {
        const Index typed = query_.length();
        const Index spare = candidate_.length() - typed;
        if (standsAt({0, typed}, 0)) {
            return MatchResult{.score = spare == 0 ? Matcher::exact : Matcher::prefix + tail(spare),
                               .positions = range(0, typed)};
        }
        if (auto result = matchInitials(scratch))
            return result;
        if (auto result = matchWordPrefix())
            return result;
        return matchWords(scratch);
    }

private:
    /// Whether a piece of the query stands in the candidate from `at`.
    bool standsAt(Piece piece, Index at) const {
        if (at + piece.length > candidate_.length())
            return false;
        for (Index i = 0; i < piece.length; ++i) {
            if (query_.at(piece.from + i) != candidate_.at(at + i))
                return false;
        }
        return true;
    }

    Index startCount() const { return static_cast<Index>(starts_.size()); }

    std::optional<MatchResult> matchInitials(std::pmr::memory_resource* scratch) const {
        const Index typed = query_.length();
        if (typed < 2 || startCount() < typed)
            return std::nullopt;
        Indexes taken(scratch);
        taken.reserve(static_cast<std::size_t>(typed));
        auto start = starts_.begin();
        for (Index i = 0; i < typed; ++i) {
            while (start != starts_.end() &&
                   !(*start < candidate_.length() && candidate_.at(*start) == query_.at(i)))
                ++start;
            if (start == starts_.end())
                return std::nullopt;
            taken.push_back(*start++);
        }
        const Index penalty = 10 * taken.front() + 20 * (startCount() - typed);
        return MatchResult{.score = Matcher::initials + tail(penalty),
                           .positions = {taken.begin(), taken.end()}};
    }

    std::optional<MatchResult> matchWordPrefix() const {
        const Index typed = query_.length();
        for (const Index start : starts_) {
            if (start == 0 || !standsAt({0, typed}, start))
                continue;
            const Index penalty = 5 * start + (candidate_.length() - typed);
            return MatchResult{.score = Matcher::wordPrefix + tail(penalty),
                               .positions = range(start, typed)};
        }
        return std::nullopt;
    }

    std::pmr::vector<Piece> pieces(std::pmr::memory_resource* scratch) const {
        std::pmr::vector<Piece> result(scratch);
        const Index typed = query_.length();
        for (Index i = 0; i < typed; ++i) {
            if (query_.isBlank(i))
                continue;
            const Index from = i;
            while (i < typed && !query_.isBlank(i))
                ++i;
            result.push_back({from, i - from});
        }
        return result;
    }

    std::optional<MatchResult> matchWords(std::pmr::memory_resource* scratch) const {
        const auto words = pieces(scratch);
        if (words.size() < 2)
            return std::nullopt;
        Indexes taken(scratch);
        auto start = starts_.begin();
        for (const auto& word : words) {
            while (start != starts_.end() && !standsAt(word, *start))
                ++start;
            if (start == starts_.end())
                return std::nullopt;
            for (Index i = 0; i < word.length; ++i)
                taken.push_back(*start + i);
            ++start;
        }
        // A word may reach over the start of the next one, as "ab b" does in "aB".
        std::ranges::sort(taken);
        taken.erase(std::unique(taken.begin(), taken.end()), taken.end());
        const Index penalty =
            5 * taken.front() + 20 * (startCount() - static_cast<Index>(words.size()));
        return MatchResult{.score = Matcher::initials + tail(penalty),
                           .positions = {taken.begin(), taken.end()}};
    }

    const Text& query_;
    const Text& candidate_;
    const Indexes& starts_;
};

/// What every ASCII byte is, so that normalising is one look-up a byte.
struct AsciiByte {
    char lowered = 0;
    bool dropped = false; ///< a control character
    Letterform form;
};

constexpr auto asciiBytes = [] {
    std::array<AsciiByte, 128> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto c = static_cast<char>(i);
        const auto form = letterformAscii(c);
        table[i] = {.lowered = form.upper ? static_cast<char>(c - 'A' + 'a') : c,
                    .dropped = i < 0x20 || i == 0x7f,
                    .form = form};
    }
    return table;
}();

/// Without control characters, in lower case; the word starts of the cased form on the way.
std::pmr::string
normalizedAscii(std::string_view text, std::pmr::memory_resource* scratch, Indexes* starts) {
    std::pmr::string result(text.size(), '\0', scratch);
    std::size_t length = 0;
    Letterform previous;
    for (const char c : text) {
        const auto& byte = asciiBytes[static_cast<unsigned char>(c)];
        if (byte.dropped)
            continue;
        if (starts && startsWord(previous, byte.form))
            starts->push_back(static_cast<Index>(length));
        previous = byte.form;
        result[length++] = byte.lowered;
    }
    result.resize(length);
    return result;
}

/// Eight bytes of a text at once.
class EightBytes {
public:
    static constexpr std::size_t count = 8;

    explicit EightBytes(const char* bytes) { std::memcpy(&bytes_, bytes, sizeof bytes_); }

    /// All are ASCII, and none is a control character.
    bool arePlain() const {
        const bool noneAbove7e = ((bytes_ | (bytes_ + each(1))) & each(0x80)) == 0;
        const bool allFrom20 = ((bytes_ + each(0x80 - 0x20)) & each(0x80)) == each(0x80);
        return noneAbove7e && allFrom20;
    }

    /// Writes them in lower case; they are plain.
    void lowerTo(char* bytes) const {
        const auto fromA = bytes_ + each(0x80 - 'A');
        const auto beyondZ = bytes_ + each(0x80 - 'Z' - 1);
        const auto lowered = bytes_ | ((fromA & ~beyondZ & each(0x80)) >> 2);
        std::memcpy(bytes, &lowered, sizeof lowered);
    }

private:
    static constexpr std::uint64_t each(std::uint64_t byte) { return byte * 0x0101010101010101; }

    std::uint64_t bytes_ = 0;
};

/// No byte is a control character or beyond ASCII, so that normalising is lowering.
bool isPlainAscii(std::string_view text) {
    if (text.size() < EightBytes::count)
        return std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7f; });
    // The last step goes over bytes that are done already, rather than past the end.
    for (std::size_t i = 0; i < text.size(); i += EightBytes::count) {
        if (!EightBytes(text.data() + std::min(i, text.size() - EightBytes::count)).arePlain())
            return false;
    }
    return true;
}

std::string loweredPlainAscii(std::string_view text) {
    std::string result(text);
    if (text.size() < EightBytes::count) {
        for (char& c : result)
            c = asciiBytes[static_cast<unsigned char>(c)].lowered;
        return result;
    }
    for (std::size_t i = 0; i < text.size(); i += EightBytes::count) {
        const auto from = std::min(i, text.size() - EightBytes::count);
        EightBytes(text.data() + from).lowerTo(result.data() + from);
    }
    return result;
}

/// A bit for each letter and digit, the other bytes sharing the rest. A candidate that lacks a bit
/// of the query can't be named by it, which most can be told by at once.
using Bytes = std::uint64_t;

constexpr auto byteBits = [] {
    std::array<Bytes, 128> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const char c = asciiBytes[i].lowered;
        const auto bit = c >= 'a' && c <= 'z'   ? c - 'a'
                         : c >= '0' && c <= '9' ? 26 + (c - '0')
                                                : 36 + static_cast<int>(i % 28);
        table[i] = Bytes{1} << bit;
    }
    // A blank parts the words of a query and need not stand in the candidate.
    table[' '] = 0;
    return table;
}();

Bytes bytesOf(std::string_view ascii) {
    Bytes bytes = 0;
    for (const char c : ascii)
        bytes |= byteBits[static_cast<unsigned char>(c)];
    return bytes;
}

/// Both are ASCII; the query is normalised and not empty.
std::optional<MatchResult> scoreAscii(std::string_view query,
                                      Bytes queryBytes,
                                      std::string_view candidate,
                                      std::pmr::memory_resource* scratch) {
    if ((queryBytes & ~bytesOf(candidate)) != 0)
        return std::nullopt;
    Indexes starts(scratch);
    starts.reserve(candidate.size());
    const auto c = normalizedAscii(candidate, scratch, &starts);
    if (c.empty())
        return std::nullopt;
    const AsciiText queryText(query);
    const AsciiText candidateText(c);
    return Rule(queryText, candidateText, starts).match(scratch);
}

std::optional<MatchResult> scoreUnicode(const ClusteredText& query, std::string_view candidate) {
    const ClusteredText cased(
        Folding::foldKeepingCase(Folding::withoutControlAndFormat(candidate)));
    const ClusteredText c(Folding::lowercase(Folding::foldCase(cased.text())));
    if (c.length() == 0)
        return std::nullopt;
    Scratch scratch;
    Indexes starts(scratch.resource());
    Letterform previous;
    for (Index i = 0; i < cased.length(); ++i) {
        const auto current = letterform(cased.at(i));
        if (startsWord(previous, current))
            starts.push_back(i);
        previous = current;
    }
    return Rule(query, c, starts).match(scratch.resource());
}

} // namespace

struct Matcher::Query::Folded {
    explicit Folded(std::string_view query)
        : text(normalize(query)), isAscii(Folding::isAscii(text.text())),
          bytes(isAscii ? bytesOf(text.text()) : 0) {}

    ClusteredText text;
    bool isAscii;
    Bytes bytes;
};

Matcher::Query::Query(std::string_view text) : folded_(std::make_unique<const Folded>(text)) {}

Matcher::Query::~Query() = default;
Matcher::Query::Query(Query&&) noexcept = default;
Matcher::Query& Matcher::Query::operator=(Query&&) noexcept = default;

std::optional<MatchResult> Matcher::Query::score(std::string_view candidate) const {
    if (folded_->text.length() == 0)
        return MatchResult{};
    if (!Folding::isAscii(candidate))
        return scoreUnicode(folded_->text, candidate);
    // An ASCII name folds to ASCII, which a query of other characters can't name.
    if (!folded_->isAscii)
        return std::nullopt;
    Scratch scratch;
    return scoreAscii(folded_->text.text(), folded_->bytes, candidate, scratch.resource());
}

std::string Matcher::normalize(std::string_view text) {
    // Every name that is indexed comes through here.
    if (isPlainAscii(text))
        return loweredPlainAscii(text);
    return Folding::lowercase(Folding::fold(Folding::withoutControlAndFormat(text)));
}

std::vector<std::int64_t> Matcher::wordStarts(const std::vector<std::string_view>& characters) {
    std::vector<std::int64_t> starts;
    // Before the first character stands neither a letter nor a number.
    Letterform previous;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto current = letterform(characters[i]);
        if (startsWord(previous, current))
            starts.push_back(static_cast<std::int64_t>(i));
        previous = current;
    }
    return starts;
}

std::string Matcher::asciiWordStarts(std::string_view candidate) {
    std::string starts;
    Letterform previous;
    for (const char c : candidate) {
        const auto& byte = asciiBytes[static_cast<unsigned char>(c)];
        if (byte.dropped)
            continue;
        if (startsWord(previous, byte.form))
            starts += byte.lowered;
        previous = byte.form;
    }
    return starts;
}

std::optional<MatchResult> Matcher::score(std::string_view query, std::string_view candidate) {
    if (!Folding::isAscii(query) || !Folding::isAscii(candidate))
        return Query(query).score(candidate);
    Scratch scratch;
    const auto q = normalizedAscii(query, scratch.resource(), nullptr);
    if (q.empty())
        return MatchResult{};
    return scoreAscii(q, bytesOf(q), candidate, scratch.resource());
}

} // namespace tessarine
