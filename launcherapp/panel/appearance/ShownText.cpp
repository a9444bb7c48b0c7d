#include "launcherapp/panel/appearance/ShownText.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/Scalars.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

constexpr std::string_view replacement = "\uFFFD";
constexpr std::string_view more = "…";

struct ScalarRange {
    char32_t first;
    char32_t last;
};

/// Format characters that show nothing or turn the direction of what follows (Unicode Standard
/// Annex 9). The joiners U+200C and U+200D, and the tags that flags are spelt with, are not here.
constexpr auto leftOut = std::to_array<ScalarRange>({
    {0x00AD, 0x00AD},
    {0x061C, 0x061C},
    {0x180E, 0x180E},
    {0x200B, 0x200B},
    {0x200E, 0x200F},
    {0x202A, 0x202E},
    {0x2060, 0x2064},
    {0x2066, 0x206F},
    {0xFEFF, 0xFEFF},
    {0xFFF9, 0xFFFB},
});

bool isBreak(char32_t scalar) {
    return (scalar >= 0x09 && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028 ||
           scalar == 0x2029;
}

bool isControl(char32_t scalar) {
    return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0);
}

bool isPlain(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7F; });
}

void appendHarmless(std::string& line, std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto scalar = Scalars::at(text, at);
        const auto bytes = text.substr(at, scalar.bytes);
        at += scalar.bytes;
        if (isBreak(scalar.value))
            line += ' ';
        else if (isControl(scalar.value) || !scalar.wellFormed)
            line += replacement;
        else if (std::ranges::none_of(leftOut, [&](const ScalarRange& range) {
                     return scalar.value >= range.first && scalar.value <= range.last;
                 }))
            line += bytes;
    }
}

/// Extends the last range when the new one begins where that ends.
void addRange(std::vector<ShownText::Range>& ranges, ShownText::Range range) {
    if (range.begin == range.end)
        return;
    if (!ranges.empty() && ranges.back().end == range.begin)
        ranges.back().end = range.end;
    else
        ranges.push_back(range);
}

/// An ASCII name is its own normal form but for case: positions are bytes.
ShownText::Line plainLine(std::string_view text, const std::vector<std::int64_t>& positions) {
    ShownText::Line line{.text = std::string(text)};
    for (const auto position : positions) {
        const auto at = static_cast<std::size_t>(position);
        if (at < text.size())
            addRange(line.matched, {at, at + 1});
    }
    return line;
}

} // namespace

std::string ShownText::harmless(std::string_view text) {
    return matching(text, {}).text;
}

std::string ShownText::harmlessLines(std::string_view text) {
    constexpr auto most = 10 * mostCharacters;
    auto shown = Graphemes::prefix(text.substr(0, 16 * most), most);
    const bool isCut = shown.size() < text.size();
    std::string lines;
    while (!shown.empty()) {
        const auto end = std::min(shown.find('\n'), shown.size());
        for (auto line = shown.substr(0, end); !line.empty();) {
            const auto tab = std::min(line.find('\t'), line.size());
            appendHarmless(lines, line.substr(0, tab));
            if (tab < line.size())
                lines += "    ";
            line.remove_prefix(std::min(tab + 1, line.size()));
        }
        if (end < shown.size())
            lines += '\n';
        shown.remove_prefix(std::min(end + 1, shown.size()));
    }
    return isCut ? lines + std::string(more) : lines;
}

ShownText::Line ShownText::matching(std::string_view text, std::string_view query) {
    const auto shown = Graphemes::prefix(text.substr(0, 16 * mostCharacters), mostCharacters);
    const auto match = query.empty() ? std::nullopt : Matcher::score(query, shown);
    const auto positions = match ? match->positions : std::vector<std::int64_t>{};
    Line line;
    if (isPlain(shown)) {
        line = plainLine(shown, positions);
    } else {
        // A character's normal form may have none or several, so each is normalised by itself.
        const auto boundaries = Graphemes::boundaries(shown);
        std::int64_t normal = 0;
        auto next = positions.begin();
        for (std::size_t i = 0; i + 1 < boundaries.size(); ++i) {
            const auto character = shown.substr(boundaries[i], boundaries[i + 1] - boundaries[i]);
            const auto begin = line.text.size();
            appendHarmless(line.text, character);
            if (next == positions.end())
                continue;
            normal += static_cast<std::int64_t>(Graphemes::count(Matcher::normalize(character)));
            bool isMatched = false;
            for (; next != positions.end() && *next < normal; ++next)
                isMatched = true;
            if (isMatched)
                addRange(line.matched, {begin, line.text.size()});
        }
    }
    if (shown.size() < text.size())
        line.text += more;
    return line;
}

std::string ShownText::shortened(std::string_view text, std::size_t characters, Cut cut) {
    const auto boundaries = Graphemes::boundaries(text);
    const auto count = boundaries.size() - 1;
    if (count <= characters)
        return std::string(text);
    const auto tail = cut == Cut::middle ? characters / 2 : 0;
    auto head = text.substr(0, boundaries[characters - tail]);
    // A name cut after a blank would seem to end in nothing.
    while (head.ends_with(' '))
        head.remove_suffix(1);
    return std::string(head) + std::string(more) +
           std::string(text.substr(boundaries[count - tail]));
}

} // namespace tessarine
