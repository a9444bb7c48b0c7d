#include "LauncherCore/text/Pattern.h"

#include "LauncherCore/text/CountedText.h"
#include "LauncherCore/text/UnicodeText.h"

#include <unicode/regex.h>

#include <cassert>
#include <cstdint>
#include <mutex>
#include <utility>

namespace tessarine {

namespace {

using UnicodeText::decoded;
using UnicodeText::encoded;

/// Of saved states of ICU's matching engine, which are what it counts.
constexpr std::int64_t statesPerCount = 10000;
constexpr std::int32_t longestMatch = 5; // counts

/// What users write looks for things in whole documents. Costs are as measured, in nanoseconds.
constexpr std::int64_t longestGivenMatch = 7'000'000;
constexpr std::int64_t costOfAPlace = 8; // to begin at; ICU tells of each twice
constexpr std::int64_t costOfAState = 17;

UBool spendOnPlace(const void* text, std::int64_t) {
    return static_cast<CountedText*>(const_cast<void*>(text))->spend(costOfAPlace);
}

UBool spendOnStates(const void* text, std::int32_t) {
    return static_cast<CountedText*>(const_cast<void*>(text))->spend(statesPerCount * costOfAState);
}

} // namespace

/// Making a matcher costs more than most matches do, so there is one and it is locked.
struct Pattern::State {
    enum class Author { program, user };

    std::unique_ptr<icu::RegexMatcher> matcher;
    std::mutex oneAtATime;
    Author author;

    explicit State(Author its) : author(its) {}

    /// Without a matcher when the expression doesn't compile.
    static std::unique_ptr<State>
    make(std::string_view expression, Case letters, Anchors anchors, Author author) {
        auto state = std::make_unique<State>(author);
        UErrorCode error = U_ZERO_ERROR;
        const std::uint32_t flags =
            (letters == Case::ignored ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0) |
            (anchors == Anchors::lines ? std::uint32_t{UREGEX_MULTILINE} : 0);
        auto matcher = std::make_unique<icu::RegexMatcher>(decoded(expression), flags, error);
        if (U_SUCCESS(error) && author == Author::program)
            matcher->setTimeLimit(longestMatch, error);
        if (U_SUCCESS(error))
            state->matcher = std::move(matcher);
        return state;
    }

    /// Whether a match was found within the limits, which the matcher then has.
    bool find(const icu::UnicodeString& subject) {
        UErrorCode error = U_ZERO_ERROR;
        if (author == Author::program) {
            matcher->reset(subject);
            return matcher->find(error) && U_SUCCESS(error);
        }
        CountedText counted(subject, longestGivenMatch);
        if (!counted.text())
            return false;
        matcher->reset(counted.text());
        matcher->setFindProgressCallback(spendOnPlace, &counted, error);
        matcher->setMatchCallback(spendOnStates, &counted, error);
        return matcher->find(error) && U_SUCCESS(error) && !counted.isSpent();
    }
};

const std::string& Pattern::Match::operator[](std::size_t group) const {
    static const std::string none;
    return groups[group] ? *groups[group] : none;
}

Pattern::Pattern(std::string_view expression, Case letters)
    : state_(State::make(expression, letters, Anchors::text, State::Author::program)) {
    assert(state_->matcher && "a pattern of the program's own compiles");
}

Pattern::Pattern(std::unique_ptr<State> state) : state_(std::move(state)) {}

std::optional<Pattern>
Pattern::compiled(std::string_view expression, Case letters, Anchors anchors) {
    auto state = State::make(expression, letters, anchors, State::Author::user);
    if (!state->matcher)
        return std::nullopt;
    return Pattern(std::move(state));
}

Pattern::~Pattern() = default;
Pattern::Pattern(Pattern&&) noexcept = default;
Pattern& Pattern::operator=(Pattern&&) noexcept = default;

std::optional<Pattern::Match> Pattern::match(std::string_view text) const {
    if (!state_->matcher)
        return std::nullopt;
    const auto subject = decoded(text);
    const std::lock_guard lock(state_->oneAtATime);
    auto& matcher = *state_->matcher;
    if (!state_->find(subject))
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    Match match;
    match.groups.reserve(static_cast<std::size_t>(matcher.groupCount()) + 1);
    for (std::int32_t group = 0; group <= matcher.groupCount(); ++group) {
        const auto start = matcher.start(group, error);
        if (start < 0)
            match.groups.emplace_back();
        else
            match.groups.emplace_back(
                encoded(subject.tempSubStringBetween(start, matcher.end(group, error))));
    }
    match.end = encoded(subject.tempSubString(0, matcher.end(error))).size();
    return match;
}

} // namespace tessarine
