#include "LauncherCore/answers/CurrencyWords.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace tessarine {

namespace {

using Codes = std::unordered_map<std::string, std::string>;

constexpr auto signs = std::to_array<std::string_view>({"$", "€", "£", "¥"});

/// Currencies younger than ICU 72, which Debian 12 has.
constexpr std::pair<std::string_view, std::string_view> newerNames[] = {
    {"XCG", "Caribbean Guilder"},
    {"ZWG", "Zimbabwean Gold"},
};

/// Without accents, full stops and hyphens; the signs of currencies stay.
std::string nameKey(std::string_view name) {
    auto key = Folding::fold(name);
    std::erase(key, '.');
    std::ranges::replace(key, '-', ' ');
    for (auto at = key.find("’"); at != std::string::npos; at = key.find("’", at))
        key.replace(at, std::string_view("’").size(), "'");
    for (auto at = key.find('&'); at != std::string::npos; at = key.find('&', at))
        key.replace(at, 1, "and");
    return key;
}

Codes readWords() {
    Codes words;
    for (const auto& row : Tables::rows("currency-words"))
        words.emplace(row.at(0), row.at(1));
    return words;
}

const Codes& currencyNames() {
    static const auto words = readWords();
    return words;
}

struct Names {
    std::unordered_set<std::string> codes;
    Codes byName;
};

Names readNames() {
    Names names;
    for (const auto& row : Tables::rows("currency-names")) {
        names.codes.emplace(row.at(0));
        for (const auto name : Tables::list(row.at(1)))
            names.byName.emplace(nameKey(name), row.at(0));
    }
    return names;
}

const Names& fullNames() {
    static const auto names = readNames();
    return names;
}

std::optional<std::string> found(const Codes& codes, const std::string& word) {
    const auto entry = codes.find(word);
    if (entry == codes.end())
        return std::nullopt;
    return entry->second;
}

std::optional<std::string> isoCode(std::string word) {
    for (char& c : word)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    if (!fullNames().codes.contains(word))
        return std::nullopt;
    return word;
}

} // namespace

std::optional<Answers::ResolvedCurrency> Answers::resolveCurrency(std::string_view word) {
    const auto lower = Folding::lowercase(Folding::trimmed(word));
    if (auto code = found(currencyNames(), lower))
        return ResolvedCurrency{.code = *std::move(code), .place = std::nullopt};
    if (auto code = isoCode(lower))
        return ResolvedCurrency{.code = *std::move(code), .place = std::nullopt};
    // Before places, since in "us$" these would see the country alone.
    if (auto code = found(fullNames().byName, nameKey(lower)))
        return ResolvedCurrency{.code = *std::move(code), .place = std::nullopt};
    if (auto place = Places::resolve(lower))
        return ResolvedCurrency{.code = place->currency, .place = place};
    return std::nullopt;
}

bool Answers::isCurrencySign(std::string_view text) {
    return std::ranges::find(signs, text) != signs.end();
}

bool Answers::goesBySign(std::string_view code, std::string_view sign) {
    return Formats::currencySign(code) == sign;
}

std::string Answers::currencyName(std::string_view code) {
    const auto newer =
        std::ranges::find(newerNames, code, &std::pair<std::string_view, std::string_view>::first);
    if (newer != std::end(newerNames))
        return std::string(newer->second);
    return Formats::currencyName(code);
}

} // namespace tessarine
