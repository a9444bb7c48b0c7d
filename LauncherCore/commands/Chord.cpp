#include "LauncherCore/commands/Chord.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tessarine {

namespace {

struct Modifier {
    bool Chord::*flag;
    std::string_view glyph;
    std::string_view word; ///< the one that `text` writes
    std::uint32_t bit;
};

/// In the order in which chords are written.
constexpr auto modifiers = std::to_array<Modifier>({
    {&Chord::control, "⌃", "ctrl", HotkeyModifiers::control},
    {&Chord::option, "⌥", "alt", HotkeyModifiers::option},
    {&Chord::shift, "⇧", "shift", HotkeyModifiers::shift},
    {&Chord::command, "⌘", "cmd", HotkeyModifiers::command},
});

struct ModifierWord {
    std::string_view word;
    bool Chord::*flag;
};

constexpr auto modifierWords = std::to_array<ModifierWord>({
    {"cmd", &Chord::command},
    {"command", &Chord::command},
    {"meta", &Chord::command},
    {"option", &Chord::option},
    {"alt", &Chord::option},
    {"shift", &Chord::shift},
    {"ctrl", &Chord::control},
    {"control", &Chord::control},
});

/// Whether it was there.
bool takeOut(std::string& text, std::string_view part) {
    bool isFound = false;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part)) {
        text.erase(at, part.size());
        isFound = true;
    }
    return isFound;
}

std::vector<std::string> pieces(std::string_view text) {
    constexpr std::string_view separators = "+-";
    std::vector<std::string> result;
    while (!text.empty()) {
        const auto end = std::min(text.find_first_of(separators), text.size());
        if (end > 0)
            result.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

/// The parts of a chord, its key last; none when it has no key. A separator can be the key.
std::vector<std::string> parts(std::string_view text) {
    auto result = pieces(text);
    if (text.ends_with("+-"))
        result.emplace_back("-");
    else if (text.ends_with("++"))
        result.emplace_back("="); // the plus sign is on the equals key
    else if (text.ends_with('+') || text.ends_with('-'))
        result.clear();
    return result;
}

/// More than anybody writes; a file may hold megabytes, and they are gone through for each glyph.
constexpr std::size_t longestText = 256;

std::string keyName(std::uint32_t code) {
    const auto name = VirtualKeys::name(code);
    return name ? std::string(*name) : "key" + std::to_string(code);
}

} // namespace

std::optional<Chord> Chord::parse(std::string_view text) {
    if (text.size() > longestText)
        return std::nullopt;
    auto rest = Folding::lowercase(text);
    std::erase(rest, ' ');
    Chord chord;
    for (const auto& modifier : modifiers)
        chord.*modifier.flag = takeOut(rest, modifier.glyph);

    const auto written = parts(rest);
    if (written.empty())
        return std::nullopt;
    for (auto word = written.begin(); word != written.end() - 1; ++word) {
        const auto known = std::ranges::find(modifierWords, *word, &ModifierWord::word);
        if (known == modifierWords.end())
            return std::nullopt;
        chord.*known->flag = true;
    }
    const auto key = VirtualKeys::code(written.back());
    if (!key)
        return std::nullopt;
    chord.keyCode = *key;
    return chord;
}

std::string Chord::text() const {
    std::string result;
    for (const auto& modifier : modifiers) {
        if (this->*modifier.flag)
            result.append(modifier.word).append("+");
    }
    return result + keyName(keyCode);
}

std::string Chord::glyphs() const {
    std::string result;
    for (const auto& modifier : modifiers) {
        if (this->*modifier.flag)
            result.append(modifier.glyph);
    }
    return result;
}

std::string Chord::display() const {
    auto name = keyName(keyCode);
    if (name.front() >= 'a' && name.front() <= 'z')
        name.front() = static_cast<char>(name.front() - 'a' + 'A');
    return glyphs() + name;
}

Chord Chord::of(const HotkeyBinding& binding) {
    Chord chord{.keyCode = binding.keyCode};
    for (const auto& modifier : modifiers)
        chord.*modifier.flag = (binding.carbonModifiers & modifier.bit) != 0;
    return chord;
}

HotkeyBinding Chord::binding() const {
    HotkeyBinding binding{.keyCode = keyCode};
    for (const auto& modifier : modifiers) {
        if (this->*modifier.flag)
            binding.carbonModifiers |= modifier.bit;
    }
    return binding;
}

} // namespace tessarine
