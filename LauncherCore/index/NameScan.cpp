#include "LauncherCore/index/NameScan.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tessarine {

namespace {

/// Bytes before a name's text that make it the start of a word there.
constexpr std::string_view wordBreaks = "\n (-.[_";

constexpr auto breaksWord = [] {
    std::array<bool, 256> table{};
    for (const char c : wordBreaks)
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

unsigned char byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool standsAt(std::string_view needle, const char* place) {
    return std::memcmp(place, needle.data(), needle.size()) == 0;
}

std::optional<std::size_t> nextByHorspool(std::string_view needle,
                                          const std::array<std::uint32_t, 256>& skip,
                                          std::string_view text,
                                          std::size_t from) {
    const auto length = needle.size();
    for (auto at = from; at + length <= text.size();) {
        auto matching = length;
        while (matching > 0 && text[at + matching - 1] == needle[matching - 1])
            --matching;
        if (matching == 0)
            return at;
        at += skip[byteAt(text, at + length - 1)];
    }
    return std::nullopt;
}

/// Looks at each place in turn: for the last few, and for processors without vectors.
std::optional<std::size_t>
nextByByte(std::string_view needle, std::string_view text, std::size_t from) {
    for (auto at = from; at + needle.size() <= text.size(); ++at) {
        if (text[at] == needle.front() && standsAt(needle, text.data() + at))
            return at;
    }
    return std::nullopt;
}

#if defined(__x86_64__)

/// The first of a block's marked places where the whole needle stands.
template <typename Marks>
const char* firstOf(Marks marks, const char* block, std::string_view needle) {
    while (marks != 0) {
        const char* place = block + std::countr_zero(marks);
        // The ends are equal already.
        if (needle.size() <= 2 || std::memcmp(place + 1, needle.data() + 1, needle.size() - 2) == 0)
            return place;
        marks &= marks - 1;
    }
    return nullptr;
}

/// Sixteen places at a time: those where both the needle's first and its last byte stand.
std::optional<std::size_t>
nextBySse2(std::string_view needle, std::string_view text, std::size_t from) {
    constexpr std::size_t width = 16;
    const auto first = _mm_set1_epi8(needle.front());
    const auto last = _mm_set1_epi8(needle.back());
    const auto load = [](const char* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    };
    auto at = from;
    for (; at + needle.size() - 1 + width <= text.size(); at += width) {
        const char* block = text.data() + at;
        const auto both = _mm_and_si128(_mm_cmpeq_epi8(load(block), first),
                                        _mm_cmpeq_epi8(load(block + needle.size() - 1), last));
        const auto marks = static_cast<std::uint32_t>(_mm_movemask_epi8(both));
        if (const char* place = firstOf(marks, block, needle))
            return static_cast<std::size_t>(place - text.data());
    }
    return nextByByte(needle, text, at);
}

/// Sixty-four places at a time, in two halves.
__attribute__((target("avx2"))) std::optional<std::size_t>
nextByAvx2(std::string_view needle, std::string_view text, std::size_t from) {
    constexpr std::size_t width = 32;
    const auto first = _mm256_set1_epi8(needle.front());
    const auto last = _mm256_set1_epi8(needle.back());
    const char* const begin = text.data();
    const auto reach = needle.size() - 1;
    auto at = from;
    for (; at + reach + 2 * width <= text.size(); at += 2 * width) {
        const char* block = begin + at;
        const auto* low = reinterpret_cast<const __m256i*>(block);
        const auto* lowEnd = reinterpret_cast<const __m256i*>(block + reach);
        const auto one = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_loadu_si256(low), first),
                                          _mm256_cmpeq_epi8(_mm256_loadu_si256(lowEnd), last));
        const auto two = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_loadu_si256(low + 1), first),
                                          _mm256_cmpeq_epi8(_mm256_loadu_si256(lowEnd + 1), last));
        const auto either = _mm256_or_si256(one, two);
        if (_mm256_testz_si256(either, either))
            continue;
        const auto lowMarks = static_cast<std::uint32_t>(_mm256_movemask_epi8(one));
        const auto highMarks = static_cast<std::uint32_t>(_mm256_movemask_epi8(two));
        const auto marks = (static_cast<std::uint64_t>(highMarks) << width) | lowMarks;
        if (const char* place = firstOf(marks, block, needle))
            return static_cast<std::size_t>(place - begin);
    }
    return nextBySse2(needle, text, at);
}

using Next = std::optional<std::size_t> (*)(std::string_view, std::string_view, std::size_t);

Next bestNext() {
    return __builtin_cpu_supports("avx2") ? nextByAvx2 : nextBySse2;
}

const Next nextByVector = bestNext();

#endif

} // namespace

NameScan::Finder::Finder(std::string_view needle, Method method)
    : needle_(needle), method_(method) {
#if !defined(__x86_64__)
    method_ = Method::horspool;
#endif
    if (method_ != Method::horspool)
        return;
    const auto length = static_cast<std::uint32_t>(needle.size());
    skip_.fill(length);
    for (std::uint32_t i = 0; i + 1 < length; ++i)
        skip_[byteAt(needle, i)] = length - 1 - i;
}

std::optional<std::size_t> NameScan::Finder::next(std::string_view text, std::size_t from) const {
    if (from >= text.size())
        return std::nullopt;
    if (needle_.size() == 1) {
        const auto* place = static_cast<const char*>(
            std::memchr(text.data() + from, needle_.front(), text.size() - from));
        return place ? std::optional(static_cast<std::size_t>(place - text.data())) : std::nullopt;
    }
#if defined(__x86_64__)
    if (method_ == Method::best)
        return nextByVector(needle_, text, from);
#endif
    return nextByHorspool(needle_, skip_, text, from);
}

NameScan::Hits NameScan::scan(std::string_view needle,
                              std::string_view text,
                              std::span<const std::uint32_t> offsets,
                              std::size_t wordWanted) {
    Hits hits;
    if (needle.empty() || text.size() < needle.size())
        return hits;
    const Finder finder(needle);
    auto item = offsets.begin(); // the last one recorded; places only grow, and so do items
    for (auto at = finder.next(text, 0); at;) {
        if (hits.word.size() >= mostWordHits || hits.plain.size() >= mostPlainHits) {
            hits.complete = false;
            return hits;
        }
        const bool atWord = *at == 0 || breaksWord[byteAt(text, *at - 1)];
        if (!atWord && hits.word.size() >= wordWanted) {
            hits.complete = false;
            at = finder.next(text, *at + 1);
            continue;
        }
        // Hits lie close together, so the item is looked for from the last one in growing steps.
        std::ptrdiff_t step = 1;
        auto low = item;
        while (offsets.end() - low > step && low[step] <= *at) {
            low += step;
            step *= 2;
        }
        const auto high = offsets.end() - low > step ? low + step : offsets.end();
        item = std::upper_bound(low, high, *at) - 1;
        auto& list = atWord ? hits.word : hits.plain;
        list.push_back(static_cast<std::uint32_t>(item - offsets.begin()));
        // Only an item's first place counts, and none reaches into the next item.
        const auto next = item + 1;
        at = next == offsets.end() ? std::nullopt : finder.next(text, *next);
    }
    return hits;
}

bool NameScan::couldMatch(std::string_view needle, std::string_view norm) {
    std::size_t from = 0;
    for (std::size_t at = 0; at < needle.size();) {
        if (needle[at] == ' ') {
            ++at;
            continue;
        }
        const auto piece = needle.substr(at, needle.find(' ', at) - at);
        auto place = norm.find(piece.front(), from);
        if (place == std::string_view::npos)
            return false;
        // The next word may begin inside this one, as "ab b" does in "aB".
        from = place + 1;
        for (const char c : piece.substr(1)) {
            place = norm.find(c, place + 1);
            if (place == std::string_view::npos)
                return false;
        }
        at += piece.size();
    }
    return true;
}

} // namespace tessarine
