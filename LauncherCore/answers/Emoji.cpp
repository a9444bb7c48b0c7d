#include "LauncherCore/answers/Emoji.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <optional>

namespace tessarine {

namespace {

/// How well an entry fits, the best first.
enum class Fit {
    emoticon,
    name,
    plainKind, ///< "red heart" for "heart": a keyword, and what the two words of its name end in
    keyword,
    nameBeginning,
    word,
    keywordBeginning,
    wordBeginning,
    eachWord, ///< each typed word is somewhere in the name and keywords
    eachWordBeginning,
};

struct Searchable {
    Emoji::Entry entry;
    std::string name; ///< folded
    std::vector<std::string> keywords;
};

const std::vector<Searchable>& table() {
    static const auto entries = [] {
        std::vector<Searchable> result;
        for (const auto& row : Tables::rows("emoji")) {
            auto& added = result.emplace_back();
            added.entry = {.emoji = row[0], .name = row[1], .keywords = row[2]};
            added.name = Folding::fold(row[1]);
            for (const auto keyword : Tables::list(row[2]))
                added.keywords.push_back(Folding::fold(keyword));
        }
        return result;
    }();
    return entries;
}

/// ":thumbs_up:" as "thumbs up".
std::string wanted(std::string_view text) {
    auto folded = Folding::fold(Folding::trimmed(text));
    if (folded.size() > 1 && folded.ends_with(':'))
        folded.pop_back();
    std::ranges::replace(folded, '_', ' ');
    return std::string(Folding::trimmed(folded));
}

enum class WordEnd { anywhere, here };

bool hasWord(std::string_view text, std::string_view word, WordEnd end) {
    for (auto at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const auto after = at + word.size();
        const bool begins = at == 0 || text[at - 1] == ' ' || text[at - 1] == '-';
        if (begins && (end == WordEnd::anywhere || after == text.size() || text[after] == ' ' ||
                       text[after] == ':' || text[after] == ','))
            return true;
    }
    return false;
}

/// Whether the name is the text but for the blanks that a short code leaves out: "thumbsup".
bool isUnparted(std::string_view name, std::string_view text) {
    if (text.size() >= name.size() || name.find(' ') == std::string_view::npos)
        return false;
    std::size_t at = 0;
    for (const char c : name)
        if (c != ' ' && (at == text.size() || text[at++] != c))
            return false;
    return at == text.size();
}

bool isPlainKind(std::string_view name, std::string_view text) {
    return name.ends_with(text) && name.size() > text.size() &&
           name.find(' ') == name.size() - text.size() - 1;
}

std::optional<Fit> fitOfEachWord(const Searchable& candidate, std::string_view text) {
    constexpr std::string_view between = " -";
    if (text.find_first_of(between) == std::string_view::npos)
        return std::nullopt;
    const auto isIn = [&](std::string_view word, WordEnd end) {
        return hasWord(candidate.name, word, end) ||
               std::ranges::any_of(candidate.keywords, [&](const std::string& keyword) {
                   return hasWord(keyword, word, end);
               });
    };
    auto result = Fit::eachWord;
    while (!text.empty()) {
        const auto word = text.substr(0, text.find_first_of(between));
        text.remove_prefix(std::min(text.size(), word.size() + 1));
        if (word.empty() || isIn(word, WordEnd::here))
            continue;
        if (!isIn(word, WordEnd::anywhere))
            return std::nullopt;
        result = Fit::eachWordBeginning;
    }
    return result;
}

std::optional<Fit> fit(const Searchable& candidate, std::string_view text) {
    if (candidate.name == text || isUnparted(candidate.name, text))
        return Fit::name;
    if (std::ranges::find(candidate.keywords, text) != candidate.keywords.end())
        return isPlainKind(candidate.name, text) ? Fit::plainKind : Fit::keyword;
    if (candidate.name.starts_with(text))
        return Fit::nameBeginning;
    if (hasWord(candidate.name, text, WordEnd::here))
        return Fit::word;
    const auto begins = [&](const std::string& keyword) {
        return hasWord(keyword, text, WordEnd::anywhere);
    };
    if (std::ranges::any_of(candidate.keywords, begins))
        return Fit::keywordBeginning;
    if (hasWord(candidate.name, text, WordEnd::anywhere))
        return Fit::wordBeginning;
    return fitOfEachWord(candidate, text);
}

/// The emoji that an emoticon stands for; empty for any other text.
std::string_view emoticon(std::string_view text) {
    for (const auto& row : Tables::rows("emoticons"))
        if (row[0] == Folding::trimmed(text))
            return row[1];
    return {};
}

} // namespace

std::vector<Emoji::Entry> Emoji::search(std::string_view text, std::size_t limit) {
    struct Found {
        Fit fit;
        const Searchable* candidate;
    };

    const auto folded = wanted(text);
    const auto meant = emoticon(text);
    std::vector<Found> found;
    for (const auto& candidate : table()) {
        if (!meant.empty() && candidate.entry.emoji == meant)
            found.push_back({Fit::emoticon, &candidate});
        else if (const auto how = fit(candidate, folded))
            found.push_back({*how, &candidate});
    }
    std::ranges::stable_sort(found, {}, &Found::fit);
    found.resize(std::min(found.size(), limit));
    std::vector<Entry> result;
    result.reserve(found.size());
    for (const auto& [how, candidate] : found)
        result.push_back(candidate->entry);
    return result;
}

void Emoji::warm() {
    table();
}

} // namespace tessarine
