#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The words of questions about time, and how they are taken off a text. Texts are as `normalized`
/// leaves them; what is returned are views into the text given. Pure; any thread.
namespace tessarine::ZoneWords {

using Words = std::span<const std::string_view>;

/// Folded, with single blanks, plain apostrophes and minus signs, and no mark at its end.
std::string normalized(std::string_view text);

/// What stands before a place in a question ("what time is it in"), longest first.
Words askPrefixes();

/// What a question about a distance begins with ("time difference between"), longest first.
Words differenceHeads();

/// The weakest of the ask prefixes, which ordinary searches begin with too: "time machine".
inline constexpr std::string_view weakAskPrefix = "time";

/// All watched clocks ("my zones").
bool isWorld(std::string_view words);
bool isHome(std::string_view words);
bool isHere(std::string_view words);

/// The value of "one" to "twelve".
std::optional<int> clockNumber(std::string_view word);

/// What a text begins with and what follows.
struct Stripped {
    std::string_view prefix;
    std::string_view rest; ///< without blanks around it; empty when the prefix is all
};

/// By the first of `prefixes` that the text begins with as whole words.
std::optional<Stripped> stripped(std::string_view text, Words prefixes);

/// The text without the words at its end or beginning, if it has them there.
std::optional<std::string_view> without(std::string_view text, std::string_view wordsAtEnd);
std::optional<std::string_view> after(std::string_view text, std::string_view wordsAtStart);

/// The text with every one of these that it begins with taken off, in whatever order.
std::string_view withoutAllOf(std::string_view text, Words prefixes);

std::string_view trimmed(std::string_view text);

/// As whole words.
bool holdsWord(std::string_view text, std::string_view word);

} // namespace tessarine::ZoneWords
