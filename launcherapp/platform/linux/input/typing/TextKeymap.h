#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// A keyboard that is laid out for one text: each character has a key of its own, without
/// modifiers, among the keys that carry characters on every keyboard, as some programs look at the
/// key and not at its meaning where another is pressed. All else is as usual. A value; any thread.
class TextKeymap {
public:
    /// Keys that carry characters.
    static constexpr std::size_t mostCharacters = 48;

    /// The usual one of the United States. Nothing when the system lacks the data of keyboards.
    static std::optional<TextKeymap> usual();

    /// For the longest beginning of the text that has no more than `mostCharacters` different
    /// characters beside spaces, line feeds (Return) and tabs. Nothing as above.
    static std::optional<TextKeymap> forBeginning(std::u32string_view text);

    /// How many characters of the text it does.
    std::size_t length() const { return length_; }

    /// The kernel's code of the key; the character must be one of the text's.
    std::uint32_t key(char32_t character) const { return keys_.at(character); }

    /// The whole in XKB's text format, version 1, as compositors take it.
    const std::string& text() const { return text_; }

private:
    std::map<char32_t, std::uint32_t> keys_;
    std::size_t length_ = 0;
    std::string text_;
};

} // namespace tessarine
