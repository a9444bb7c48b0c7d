#include "LauncherCore/index/NameIndex.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/query/UsageLog.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <set>
#include <unordered_set>

namespace tessarine {

namespace {

constexpr std::size_t mostPlainCandidates = 400; ///< hits inside words that are scored
constexpr std::size_t enoughFuzzy = 401;         ///< results at which the fuzzy pass ends
constexpr std::size_t wordsPerResult = 8;        ///< hits at words' starts wanted for each result
constexpr std::int64_t slashPenalty = 6;
constexpr std::size_t expectedNameBytes = 24;

unsigned char firstByte(std::string_view text) {
    return static_cast<unsigned char>(text.front());
}

/// The bytes that must begin words of a name which the needle matches without standing in it, in
/// that order: all of them for initials, the first of each piece for several words.
std::string requiredStarts(std::string_view needle) {
    if (!Folding::isAscii(needle))
        return std::string(needle.substr(0, 1));
    if (needle.find(' ') == std::string_view::npos)
        return std::string(needle);
    std::string starts;
    char before = ' ';
    for (const char c : needle) {
        if (before == ' ' && c != ' ')
            starts += c;
        before = c;
    }
    return starts;
}

} // namespace

NameIndex::NameIndex(std::vector<std::shared_ptr<const ItemList>> lists)
    : lists_(std::move(lists)) {
    buildBlob();
    buildFirsts();
}

void NameIndex::buildBlob() {
    std::size_t count = 0;
    for (const auto& list : lists_) {
        listBegins_.push_back(static_cast<Position>(count));
        count += list->size();
    }
    blob_.reserve(count * expectedNameBytes);
    offsets_.reserve(count);
    for (const auto& list : lists_) {
        for (std::size_t i = 0; i < list->size(); ++i) {
            const auto norm = list->norm(i);
            const auto begin = blob_.size();
            offsets_.push_back(static_cast<std::uint32_t>(begin));
            blob_ += norm;
            if (norm.find(NameScan::terminator) != std::string_view::npos)
                std::ranges::replace(blob_.begin() + static_cast<std::ptrdiff_t>(begin),
                                     blob_.end(),
                                     NameScan::terminator,
                                     ' ');
            blob_ += NameScan::terminator;
        }
    }
    blob_.shrink_to_fit();
}

void NameIndex::buildFirsts() {
    // Gathered in the order of the names, which is that of memory, and sorted by byte afterwards.
    std::string starts;
    std::vector<std::uint32_t> startEnds;
    startEnds.reserve(size());
    std::array<std::uint32_t, 256> counts{};
    Position position = 0;
    for (const auto& list : lists_) {
        for (std::size_t i = 0; i < list->size(); ++i, ++position) {
            const auto text = blobText(position);
            const auto name = list->name(i);
            // Of other names every byte may begin a word: the scorer has the last word anyway.
            if (Folding::isAscii(name))
                starts += Matcher::asciiWordStarts(name);
            else
                starts += text;
            startEnds.push_back(static_cast<std::uint32_t>(starts.size()));
            if (!text.empty())
                ++counts[firstByte(text)];
        }
    }
    for (std::size_t byte = 0; byte < counts.size(); ++byte)
        firstBegins_[byte + 1] = firstBegins_[byte] + counts[byte];
    byFirst_.resize(firstBegins_.back());
    auto ends = firstBegins_;
    for (position = 0; position < size(); ++position) {
        if (const auto text = blobText(position); !text.empty())
            byFirst_[ends[firstByte(text)]++] = position;
    }
    wordStarts_.reserve(starts.size() + byFirst_.size());
    for (std::size_t byte = 0; byte < counts.size(); ++byte) {
        wordStartBegins_[byte] = static_cast<std::uint32_t>(wordStarts_.size());
        for (const auto each : beginningWith(static_cast<unsigned char>(byte))) {
            const auto begin = each == 0 ? 0 : startEnds[each - 1];
            wordStarts_ += std::string_view(starts).substr(begin, startEnds[each] - begin);
            wordStarts_ += NameScan::terminator;
        }
    }
    wordStartBegins_.back() = static_cast<std::uint32_t>(wordStarts_.size());
}

NameIndex::Place NameIndex::place(Position position) const {
    const auto after = std::ranges::upper_bound(listBegins_, position);
    const auto number = static_cast<std::size_t>(after - listBegins_.begin()) - 1;
    return {*lists_[number], position - listBegins_[number]};
}

IndexedItem NameIndex::item(Position position) const {
    const auto [list, index] = place(position);
    return list.item(index);
}

std::string_view NameIndex::name(Position position) const {
    const auto [list, index] = place(position);
    return list.name(index);
}

std::string_view NameIndex::norm(Position position) const {
    const auto [list, index] = place(position);
    return list.norm(index);
}

std::string_view NameIndex::blobText(Position position) const {
    const auto begin = offsets_[position];
    const auto next = position + 1U;
    const auto end = next == offsets_.size() ? blob_.size() : offsets_[next];
    return std::string_view(blob_).substr(begin, end - begin - 1);
}

std::span<const NameIndex::Position> NameIndex::beginningWith(unsigned char first) const {
    return std::span(byFirst_).subspan(firstBegins_[first],
                                       firstBegins_[first + 1U] - firstBegins_[first]);
}

std::size_t NameIndex::memoryBytes() const {
    std::size_t bytes = blob_.capacity() + offsets_.capacity() * sizeof(std::uint32_t) +
                        byFirst_.capacity() * sizeof(Position) + wordStarts_.capacity();
    for (const auto& list : lists_)
        bytes += list->memoryBytes();
    return bytes;
}

/// One search, from the needle to the names that are shown.
class NameIndex::Search {
public:
    Search(const NameIndex& index, const Question& question, const UsageLog& usage, double now)
        : index_(index), question_(question), usage_(usage), now_(now), query_(question.query),
          needle_(Matcher::normalize(question.query)),
          affinities_(usage.affinityTable(question.query, now)) {
        for (const auto& extension : question.extensions)
            extensions_.insert(Folding::lowercase(extension));
    }

    std::vector<Found> run() {
        if (needle_.empty())
            return {};
        const auto wordWanted = question_.limit * wordsPerResult;
        hits_ = NameScan::scan(needle_, index_.blob_, index_.offsets_, wordWanted);
        for (const auto position : hits_.word)
            consider(position);
        if (hits_.word.size() < wordWanted) {
            const auto plain = std::span(hits_.plain);
            for (const auto position : plain.first(std::min(plain.size(), mostPlainCandidates)))
                consider(position);
        }
        if (results_.size() < question_.limit && needle_.size() >= 2)
            addFuzzy();
        return shown();
    }

private:
    struct Result {
        Position position = 0;
        std::int64_t score = 0;
    };

    bool isWanted(const ItemList& list, std::size_t index) const {
        if (question_.foldersOnly && !list.isFolder(index))
            return false;
        return extensions_.empty() || extensions_.contains(list.ext(index));
    }

    /// Whether the item was added to the results.
    bool consider(Position position) {
        const auto [list, index] = index_.place(position);
        if (!isWanted(list, index))
            return false;
        const auto match = query_.score(list.name(index));
        if (!match)
            return false;
        list.assignID(index, id_);
        const auto affinity = affinities_.find(id_);
        const auto score =
            match->score - slashPenalty * static_cast<std::int64_t>(list.slashes(index)) +
            usage_.frecency(id_, now_) + (affinity == affinities_.end() ? 0 : affinity->second);
        results_.push_back({.position = position, .score = score});
        return true;
    }

    /// Names of the needle's first byte that no scan finds.
    void addFuzzy() {
        std::vector<Position> seen;
        std::ranges::merge(hits_.word, hits_.plain, std::back_inserter(seen));
        const auto first = firstByte(needle_);
        // What the scan has found whole is out, so only initials and several words are left, and
        // both begin at words' starts. A scan that was cut short leaves anything to be found.
        const bool byStarts = hits_.complete && results_.size() < enoughFuzzy;
        const auto required = requiredStarts(needle_);
        auto starts = std::string_view(index_.wordStarts_).substr(index_.wordStartBegins_[first]);
        auto nextSeen = seen.begin();
        for (const auto position : index_.beginningWith(first)) {
            const auto end = starts.find(NameScan::terminator);
            const auto wordStarts = starts.substr(0, end);
            starts.remove_prefix(end + 1);
            while (nextSeen != seen.end() && *nextSeen < position)
                ++nextSeen;
            if (nextSeen != seen.end() && *nextSeen == position)
                continue;
            if (byStarts && !holdsInOrder(wordStarts, required))
                continue;
            if (!NameScan::couldMatch(needle_, index_.norm(position)))
                continue;
            consider(position);
            if (results_.size() >= enoughFuzzy)
                return;
        }
    }

    static bool holdsInOrder(std::string_view text, std::string_view bytes) {
        for (const char c : text) {
            if (bytes.empty())
                break;
            if (c == bytes.front())
                bytes.remove_prefix(1);
        }
        return bytes.empty();
    }

    std::vector<Found> shown() {
        std::ranges::stable_sort(results_, [this](const Result& left, const Result& right) {
            if (left.score != right.score)
                return left.score > right.score;
            return index_.name(left.position) < index_.name(right.position);
        });
        std::vector<Found> found;
        std::unordered_set<std::string> names;
        for (const auto& result : results_) {
            auto name = Folding::lowercase(index_.name(result.position));
            if (!names.contains(name)) {
                if (names.size() >= question_.limit)
                    continue;
                names.insert(std::move(name));
            }
            found.push_back({.item = index_.item(result.position), .score = result.score});
        }
        return found;
    }

    const NameIndex& index_;
    const Question& question_;
    const UsageLog& usage_;
    const double now_;
    const Matcher::Query query_;
    const std::string needle_;
    const UsageLog::Picks affinities_;
    std::set<std::string> extensions_;
    NameScan::Hits hits_;
    std::vector<Result> results_;
    std::string id_; ///< used again for each candidate
};

std::vector<NameIndex::Found>
NameIndex::search(const Question& question, const UsageLog& usage, double now) const {
    if (question.query.empty() || blob_.empty())
        return {};
    return Search(*this, question, usage, now).run();
}

} // namespace tessarine
