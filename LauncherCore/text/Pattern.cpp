#include "LauncherCore/text/Pattern.h"

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

// ICU counts in units of ten thousand state saves of its matching engine.
constexpr std::int32_t longestMatch = 5;
/// What users write looks for things in whole documents.
constexpr std::int32_t longestGivenMatch = 20;

} // namespace

/// Making a matcher costs more than most matches do, so there is one and it is locked.
struct Pattern::State {
    std::unique_ptr<icu::RegexMatcher> matcher;
    std::mutex oneAtATime;

    /// Without a matcher when the expression doesn't compile.
    static std::unique_ptr<State>
    make(std::string_view expression, Case letters, Anchors anchors, std::int32_t longest) {
        auto state = std::make_unique<State>();
        UErrorCode error = U_ZERO_ERROR;
        const std::uint32_t flags =
            (letters == Case::ignored ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0) |
            (anchors == Anchors::lines ? std::uint32_t{UREGEX_MULTILINE} : 0);
        auto matcher = std::make_unique<icu::RegexMatcher>(decoded(expression), flags, error);
        if (U_SUCCESS(error))
            matcher->setTimeLimit(longest, error);
        if (U_SUCCESS(error))
            state->matcher = std::move(matcher);
        return state;
    }
};

const std::string& Pattern::Match::operator[](std::size_t group) const {
    static const std::string none;
    return groups[group] ? *groups[group] : none;
}

Pattern::Pattern(std::string_view expression, Case letters)
    : state_(State::make(expression, letters, Anchors::text, longestMatch)) {
    assert(state_->matcher && "a pattern of the program's own compiles");
}

Pattern::Pattern(std::unique_ptr<State> state) : state_(std::move(state)) {}

std::optional<Pattern>
Pattern::compiled(std::string_view expression, Case letters, Anchors anchors) {
    auto state = State::make(expression, letters, anchors, longestGivenMatch);
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
    matcher.reset(subject);
    UErrorCode error = U_ZERO_ERROR;
    if (!matcher.find(error) || U_FAILURE(error))
        return std::nullopt;
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
