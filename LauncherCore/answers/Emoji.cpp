#include "LauncherCore/answers/Emoji.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <optional>

namespace tessarine {

namespace {

/// How well an entry fits, the best first.
enum class Fit { emoticon, name, keyword, nameBeginning, word, keywordBeginning, wordBeginning };

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
        if (begins && (end == WordEnd::anywhere || after == text.size() || text[after] == ' '))
            return true;
    }
    return false;
}

std::optional<Fit> fit(const Searchable& candidate, std::string_view text) {
    if (candidate.name == text)
        return Fit::name;
    if (std::ranges::find(candidate.keywords, text) != candidate.keywords.end())
        return Fit::keyword;
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
    return std::nullopt;
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
    for (const auto& [how, candidate] : found)
        result.push_back(candidate->entry);
    return result;
}

void Emoji::warm() {
    table();
}

} // namespace tessarine
