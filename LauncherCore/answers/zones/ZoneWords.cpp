#include "LauncherCore/answers/zones/ZoneWords.h"

#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

using namespace std::string_view_literals;

constexpr auto asks = std::to_array<std::string_view>({
    "what time will it be in",
    "what is the time in",
    "what's the time in",
    "what time is it in",
    "whats the time in",
    "what time zone is",
    "time right now in",
    "what is the time",
    "what's the time",
    "what time is it",
    "current time in",
    "what is time in",
    "local time in",
    "time zone in",
    "current time",
    "what time in",
    "what time is",
    "right now in",
    "timezone of",
    "timezone in",
    "the time in",
    "time now in",
    "what time",
    "time in",
    "time at",
    "now in",
    "time",
});

constexpr auto heads = std::to_array<std::string_view>({
    "what is the time difference between",
    "what's the time difference between",
    "how many hours behind is",
    "how many hours ahead is",
    "time difference between",
    "time difference with",
    "time difference from",
    "difference between",
    "difference in time",
    "time difference to",
    "how far behind is",
    "how many hours is",
    "time diff between",
    "how far ahead is",
    "time difference",
    "how many hours",
    "gmt offset for",
    "utc offset for",
    "gmt offset of",
    "utc offset of",
    "gmt offset",
    "utc offset",
    "difference",
    "offset for",
    "time diff",
    "offset",
});

constexpr auto worldWords = std::to_array<std::string_view>({
    "my zones",
    "all my zones",
    "my time zones",
    "all my time zones",
    "my timezones",
    "my clocks",
    "all my clocks",
    "my cities",
    "everywhere",
    "all zones",
    "all my cities",
});

constexpr auto homeWords = std::to_array<std::string_view>(
    {"my time", "my zone", "my timezone", "my time zone", "home", "home time", "me", "mine"});

constexpr auto hereWords = std::to_array<std::string_view>(
    {"here", "local", "local time", "this mac", "this computer", "where i am"});

constexpr auto clockWords = std::to_array<std::string_view>({"one",
                                                             "two",
                                                             "three",
                                                             "four",
                                                             "five",
                                                             "six",
                                                             "seven",
                                                             "eight",
                                                             "nine",
                                                             "ten",
                                                             "eleven",
                                                             "twelve"});

constexpr auto gateWords = std::to_array<std::string_view>({
    "time",   "now",    "noon",      "midnight",     "midday",     "zone",           "ahead",
    "behind", "offset", "clock",     "difference",   " vs ",       "versus",         "minus",
    "utc",    "gmt",    "half past", "quarter past", "quarter to", "how many hours", "clocks",
    "oclock",
});

/// Words of spans, which may be without a digit: "in two hours in tokyo".
constexpr auto spanWords = std::to_array<std::string_view>({"hour", "minute"});

/// What makes a digit a clock.
constexpr auto clockMarks = std::to_array<std::string_view>(
    {"am", "pm", "a.m", "p.m", ":", " in ", " to ", " at ", " from ", " +"});

bool holds(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// As in "3p".
bool hasShortHalf(std::string_view text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
        if (isDigit(text[i]) && (text[i + 1] == 'a' || text[i + 1] == 'p') &&
            (i + 2 == text.size() || text[i + 2] == ' '))
            return true;
    return false;
}

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

bool isOneOf(ZoneWords::Words words, std::string_view text) {
    return std::ranges::find(words, text) != words.end();
}

} // namespace

bool TimeZones::mightBeAboutTime(std::string_view text) {
    if (text.size() > longestQuestion)
        return false;
    const auto isIn = [&](std::string_view part) { return holds(text, part); };
    if (std::ranges::any_of(gateWords, isIn) || std::ranges::any_of(spanWords, isIn))
        return true;
    return std::ranges::any_of(text, isDigit) &&
           (std::ranges::any_of(clockMarks, isIn) || hasShortHalf(text));
}

std::string ZoneWords::normalized(std::string_view text) {
    std::string result = Folding::fold(Folding::trimmed(text));
    replaceAll(result, "\u2019", "'");
    replaceAll(result, "\u2212", "-");
    replaceAll(result, "\u00a0", " ");
    std::ranges::replace(result, '\t', ' ');
    replaceAll(result, "&", " and ");
    const auto isSecondBlank = [](char left, char right) { return left == ' ' && right == ' '; };
    result.erase(std::unique(result.begin(), result.end(), isSecondBlank), result.end());
    while (!result.empty() && " ?!"sv.find(result.back()) != std::string_view::npos)
        result.pop_back();
    return result;
}

ZoneWords::Words ZoneWords::askPrefixes() {
    return asks;
}

ZoneWords::Words ZoneWords::differenceHeads() {
    return heads;
}

bool ZoneWords::isWorld(std::string_view words) {
    return isOneOf(worldWords, words);
}

bool ZoneWords::isHome(std::string_view words) {
    return isOneOf(homeWords, words);
}

bool ZoneWords::isHere(std::string_view words) {
    return isOneOf(hereWords, words);
}

std::optional<int> ZoneWords::clockNumber(std::string_view word) {
    const auto found = std::ranges::find(clockWords, word);
    if (found == clockWords.end())
        return std::nullopt;
    return static_cast<int>(found - clockWords.begin()) + 1;
}

std::optional<ZoneWords::Stripped> ZoneWords::stripped(std::string_view text, Words prefixes) {
    for (const auto prefix : prefixes)
        if (const auto rest = after(text, prefix))
            return Stripped{prefix, *rest};
    return std::nullopt;
}

std::optional<std::string_view> ZoneWords::without(std::string_view text,
                                                   std::string_view wordsAtEnd) {
    if (!text.ends_with(wordsAtEnd))
        return std::nullopt;
    text.remove_suffix(wordsAtEnd.size());
    if (!text.empty() && text.back() != ' ')
        return std::nullopt;
    return trimmed(text);
}

std::optional<std::string_view> ZoneWords::after(std::string_view text,
                                                 std::string_view wordsAtStart) {
    if (!text.starts_with(wordsAtStart))
        return std::nullopt;
    text.remove_prefix(wordsAtStart.size());
    if (!text.empty() && text.front() != ' ')
        return std::nullopt;
    return trimmed(text);
}

std::string_view ZoneWords::withoutAllOf(std::string_view text, Words prefixes) {
    while (const auto found = stripped(text, prefixes))
        text = found->rest;
    return text;
}

std::string_view ZoneWords::trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool ZoneWords::holdsWord(std::string_view text, std::string_view word) {
    for (auto at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const auto end = at + word.size();
        if ((at == 0 || text[at - 1] == ' ') && (end == text.size() || text[end] == ' '))
            return true;
    }
    return false;
}

} // namespace tessarine
