#include "LauncherCore/answers/Places.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Scalars.h"

#include <algorithm>
#include <cassert>
#include <unordered_map>
#include <vector>

namespace tessarine {

namespace {

using Places::Place;
using Index = std::unordered_map<std::string, Place>;

/// Letters and digits with single blanks between: "U.K." and "u k" are one.
std::string words(std::string_view folded) {
    std::string result;
    bool gap = false;
    for (std::size_t at = 0; at < folded.size();) {
        const auto scalar = Scalars::at(folded, at);
        const bool isDigit = scalar.value >= '0' && scalar.value <= '9';
        if (isDigit || Scalars::isLetter(scalar.value)) {
            if (gap && !result.empty())
                result += ' ';
            gap = false;
            result += folded.substr(at, scalar.bytes);
        } else {
            gap = true;
        }
        at += scalar.bytes;
    }
    return result;
}

/// The spelling alone, before words for the eurozone are made one.
std::string spelling(std::string_view word) {
    auto text = Folding::fold(word);
    for (auto at = text.find('&'); at != std::string::npos; at = text.find('&', at))
        text.replace(at, 1, " and ");
    text = words(text);
    constexpr std::string_view article = "the ";
    if (text.starts_with(article))
        text.erase(0, article.size());
    return text;
}

Place place(const Tables::Row& row) {
    return {.region = std::string(row.at(0)),
            .currency = std::string(row.at(1)),
            .name = std::string(row.at(2))};
}

std::vector<Place> readCountries() {
    std::vector<Place> countries;
    for (const auto& row : Tables::rows("countries"))
        countries.push_back(place(row));
    return countries;
}

const std::vector<Place>& countries() {
    static const auto table = readCountries();
    return table;
}

Index readGroups() {
    Index groups;
    for (const auto& row : Tables::rows("supranational"))
        for (const auto word : Tables::list(row.at(3)))
            groups.emplace(spelling(word), place(row));
    return groups;
}

/// Groups of countries by every word for them.
const Index& groups() {
    static const auto index = readGroups();
    return index;
}

Index readPlaces() {
    Index places = groups();
    std::unordered_map<std::string_view, const Place*> byRegion;
    for (const auto& country : countries()) {
        places.emplace(spelling(country.name), country);
        byRegion.emplace(country.region, &country);
    }
    for (const auto& row : Tables::rows("place-aliases")) {
        const auto country = byRegion.find(row.at(0));
        assert(country != byRegion.end() && "an alias stands for a country of the table");
        if (country == byRegion.end())
            continue;
        for (const auto alias : Tables::list(row.at(1)))
            places.emplace(spelling(alias), *country->second);
    }
    return places;
}

/// Places by every word for them; a country's name wins over another's alias.
const Index& places() {
    static const auto index = readPlaces();
    return index;
}

Index readHomes() {
    Index homes;
    for (const auto& row : Tables::rows("supranational"))
        homes.emplace(std::string(row.at(1)), place(row));
    // The code of a currency begins with its country's: the dollar is at home in the United
    // States, and not in the first of the many territories that use it.
    for (const auto& country : countries())
        if (country.currency.starts_with(country.region))
            homes.emplace(country.currency, country);
    for (const auto& country : countries())
        homes.emplace(country.currency, country);
    return homes;
}

std::optional<Place> found(const Index& index, const std::string& key) {
    const auto entry = index.find(key);
    if (entry == index.end())
        return std::nullopt;
    return entry->second;
}

} // namespace

std::string Places::key(std::string_view word) {
    auto text = spelling(word);
    if (const auto group = groups().find(text); group != groups().end())
        return spelling(group->second.name);
    return text;
}

std::optional<Place> Places::resolve(std::string_view word) {
    return found(places(), key(word));
}

std::optional<Place> Places::home(std::string_view ofCurrency) {
    static const auto homes = readHomes();
    return found(homes, std::string(ofCurrency));
}

void Places::warm() {
    resolve({});
    home({});
}

std::string Places::flagOfRegion(std::string_view region) {
    const auto isLetter = [](char c) { return c >= 'A' && c <= 'Z'; };
    if (region.size() != 2 || !std::ranges::all_of(region, isLetter))
        return {};
    std::string flag;
    for (const char letter : region) {
        flag += "\xF0\x9F\x87"; // the regional indicators begin at U+1F1E6
        flag += static_cast<char>(0xA6 + (letter - 'A'));
    }
    return flag;
}

std::string Places::flagOfCurrency(std::string_view code) {
    const auto place = home(code);
    return place ? flagOfRegion(place->region) : std::string();
}

} // namespace tessarine
