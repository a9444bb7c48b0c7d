#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"

#include <charconv>
#include <deque>
#include <unordered_map>
#include <vector>

namespace tessarine {

namespace {

using Cooking::Ingredient;

class Index {
public:
    Index() {
        for (const auto& row : Tables::rows("ingredients")) {
            const auto& names = names_.emplace_back(Tables::list(row.at(2)));
            double grams = 0;
            std::from_chars(row.at(0).data(), row.at(0).data() + row.at(0).size(), grams);
            ingredients_.push_back({.names = names, .gramsPerCup = grams, .source = row.at(1)});
            for (const auto name : names)
                byName_.try_emplace(name, &ingredients_.back());
        }
    }

    std::optional<Ingredient> named(std::string_view name) const {
        const auto found = byName_.find(name);
        return found == byName_.end() ? std::nullopt : std::optional(*found->second);
    }

private:
    // Deques, since rows are pointed to while more are added.
    std::deque<std::vector<std::string_view>> names_;
    std::deque<Ingredient> ingredients_;
    std::unordered_map<std::string_view, const Ingredient*> byName_;
};

const Index& index() {
    static const Index index;
    return index;
}

/// In lower case and with plain apostrophes, as the table has them.
std::string plain(std::string_view text) {
    constexpr std::string_view typographic = "’";
    auto result = Folding::lowercase(text);
    for (auto at = result.find(typographic); at != std::string::npos;
         at = result.find(typographic, at))
        result.replace(at, typographic.size(), "'");
    std::erase_if(result, [](char byte) { return byte == '(' || byte == ')'; });
    return result;
}

std::string_view withoutPunctuation(std::string_view text) {
    constexpr std::string_view punctuation = " \t.,;:!?\"()'[]-/";
    const auto first = text.find_first_not_of(punctuation);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(punctuation) - first + 1);
}

} // namespace

std::optional<Ingredient> Cooking::ingredient(std::string_view text) {
    constexpr std::size_t longest = 64; ///< twice the longest name
    constexpr std::string_view fillers[] = {"of ", "the ", "some "};
    if (text.size() > longest)
        return std::nullopt;
    const auto typed = plain(text);
    auto name = withoutPunctuation(Folding::trimmed(typed));
    for (const auto filler : fillers)
        if (name.starts_with(filler))
            name.remove_prefix(filler.size());
    name = withoutPunctuation(name);
    if (const auto found = index().named(name))
        return found;
    if (name.ends_with('s'))
        return index().named(name.substr(0, name.size() - 1));
    return index().named(std::string(name) + "s");
}

} // namespace tessarine
