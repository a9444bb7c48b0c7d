#include "LauncherCore/text/Pattern.h"

#include "LauncherCore/text/UnicodeText.h"

#include <unicode/regex.h>

#include <cassert>
#include <cstdint>
#include <mutex>

namespace tessarine {

namespace {

using UnicodeText::decoded;
using UnicodeText::encoded;

/// ICU counts in units of its matching engine's state saves, "typically milliseconds" each.
constexpr std::int32_t longestMatch = 5;

} // namespace

/// Making a matcher costs more than most matches do, so there is one and it is locked.
struct Pattern::State {
    std::unique_ptr<icu::RegexMatcher> matcher;
    std::mutex oneAtATime;
};

const std::string& Pattern::Match::operator[](std::size_t group) const {
    static const std::string none;
    return groups[group] ? *groups[group] : none;
}

Pattern::Pattern(std::string_view expression, Case letters) : state_(std::make_unique<State>()) {
    UErrorCode error = U_ZERO_ERROR;
    const std::uint32_t flags = letters == Case::ignored ? UREGEX_CASE_INSENSITIVE : 0;
    auto matcher = std::make_unique<icu::RegexMatcher>(decoded(expression), flags, error);
    assert(U_SUCCESS(error) && "a pattern of the program's own compiles");
    if (U_FAILURE(error))
        return;
    matcher->setTimeLimit(longestMatch, error);
    state_->matcher = std::move(matcher);
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
