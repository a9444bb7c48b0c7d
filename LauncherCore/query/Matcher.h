#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// How well a query names a candidate.
struct MatchResult {
    std::int64_t score = 0;              ///< in one of Matcher's bands
    std::vector<std::int64_t> positions; ///< characters of the normalised candidate, ascending

    bool operator==(const MatchResult&) const = default;
};

/// The one rule by which a typed query names an application, a file, a person or an action:
/// it matches at word boundaries only, never as a subsequence and never inside a word.
///
/// The band of a score is what other code reasons about; the tail within a band, at most 500,
/// prefers shorter names and earlier words. A character is an extended grapheme cluster in all
/// lengths, positions and comparisons. Pure; any thread.
namespace Matcher {

inline constexpr std::int64_t exact = 9000;      ///< the whole normalised candidate is the query
inline constexpr std::int64_t prefix = 8000;     ///< the candidate begins with the query
inline constexpr std::int64_t initials = 7000;   ///< word initials, or the starts of several words
inline constexpr std::int64_t wordPrefix = 6000; ///< a later word begins with the query
/// For rows that must stand below every true name match; `score` never gives it.
inline constexpr std::int64_t belowWordPrefix = 5000;

/// The fold of every comparison: no control and format characters, folded, lower case.
/// Stored names are kept in this form.
std::string normalize(std::string_view text);

/// Indexes of the characters at which words begin, ascending: a letter or number after neither,
/// or an upper-case character after a lower-case one.
std::vector<std::int64_t> wordStarts(const std::vector<std::string_view>& characters);

/// The bytes of an ASCII candidate's normalised form that begin its words, in order: every match
/// of initials or of several words begins its parts at them.
std::string asciiWordStarts(std::string_view candidate);

/// Nothing when the query doesn't name the candidate. An empty query names everything with score 0.
std::optional<MatchResult> score(std::string_view query, std::string_view candidate);

/// A query folded once, to be scored against many candidates. Immutable.
class Query {
public:
    explicit Query(std::string_view text);
    ~Query();
    Query(Query&&) noexcept;
    Query& operator=(Query&&) noexcept;

    /// What `Matcher::score` gives for the text this was made of.
    std::optional<MatchResult> score(std::string_view candidate) const;

private:
    struct Folded;
    std::unique_ptr<const Folded> folded_;
};

} // namespace Matcher
} // namespace tessarine
