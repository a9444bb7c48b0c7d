#include "LauncherCore/answers/zones/ZoneTables.h"

#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Zone.h"

#include <algorithm>
#include <deque>
#include <vector>

namespace tessarine {

namespace {

using ZoneTables::CountryRow;
using ZoneTables::PlaceRow;

struct Country {
    std::string_view region;
    std::vector<std::string_view> zones;
};

struct ZoneCountry {
    std::string_view identifier;
    std::string_view region;
};

/// The field of a row, or an empty one for a row that ends before it.
std::string_view field(const Tables::Row& row, std::size_t index) {
    return index < row.size() ? row[index] : std::string_view();
}

/// The row of a sorted table; of equal keys the first.
template <typename Row, typename Key>
const Row* find(const std::vector<Row>& rows, std::string_view key, Key member) {
    const auto found = std::ranges::lower_bound(rows, key, {}, member);
    return found != rows.end() && (*found).*member == key ? &*found : nullptr;
}

class Built {
public:
    Built() {
        readAbbreviations();
        readCities();
        readIdentifiers();
        // Stable, so that of equal keys the one read first is found.
        std::ranges::stable_sort(places, {}, &PlaceRow::key);
        readCountries();
        readOrdinaryWords();
    }

    std::vector<PlaceRow> places; ///< by key
    std::vector<CountryRow> countryWords;
    std::vector<Country> countries;
    std::vector<ZoneCountry> zoneCountries;
    std::vector<std::string> ordinaryWords;

private:
    std::string_view kept(std::string text) { return texts_.emplace_back(std::move(text)); }

    std::string_view keyOf(std::string_view word) {
        const auto made = ZoneTables::key(Folding::fold(word));
        return made == word ? word : kept(made);
    }

    void readAbbreviations() {
        for (const auto& row : Tables::rows("zone-abbreviations"))
            for (const auto word : Tables::list(field(row, 2)))
                places.push_back({keyOf(word), field(row, 0), field(row, 1), true});
    }

    void readCities() {
        for (const auto& row : Tables::rows("city-aliases")) {
            const auto names = Tables::list(field(row, 0));
            for (const auto name : names)
                places.push_back({keyOf(name), name, field(row, 1)});
            for (const auto word : Tables::list(field(row, 2)))
                places.push_back({keyOf(word), names.front(), field(row, 1)});
        }
    }

    void readIdentifiers() {
        for (auto& identifier : Zone::identifiers()) {
            const auto name = kept(TimeZones::cityName(identifier));
            places.push_back({keyOf(name), name, kept(std::move(identifier))});
        }
    }

    void readCountries() {
        for (const auto& row : Tables::rows("country-zones")) {
            countries.push_back({row.front(), Tables::list(field(row, 1))});
            for (const auto identifier : countries.back().zones)
                zoneCountries.push_back({identifier, row.front()});
        }
        std::ranges::sort(countries, {}, &Country::region);
        std::ranges::stable_sort(zoneCountries, {}, &ZoneCountry::identifier);
        for (const auto& row : Tables::rows("country-words")) {
            const auto name = field(row, 1);
            countryWords.push_back({keyOf(name), row.front(), name});
            for (const auto word : Tables::list(field(row, 2)))
                countryWords.push_back({keyOf(word), row.front(), name});
        }
        std::ranges::stable_sort(countryWords, {}, &CountryRow::key);
    }

    void readOrdinaryWords() {
        for (const auto& row : Tables::rows("zone-ordinary-words"))
            ordinaryWords.emplace_back(row.front());
        std::ranges::sort(ordinaryWords);
    }

    std::deque<std::string> texts_; ///< what isn't in the data as it stands
};

const Built& built() {
    static const Built tables;
    return tables;
}

} // namespace

std::string ZoneTables::key(std::string_view folded) {
    std::string result;
    result.reserve(folded.size());
    for (const char c : folded) {
        if (c == '.' || c == '\'')
            continue;
        const bool isBlank = c == ' ' || c == '-' || c == '_';
        if (!isBlank)
            result += c;
        else if (!result.empty() && result.back() != ' ')
            result += ' ';
    }
    if (result.ends_with(' '))
        result.pop_back();
    return result;
}

const PlaceRow* ZoneTables::place(std::string_view key) {
    return find(built().places, key, &PlaceRow::key);
}

const CountryRow* ZoneTables::country(std::string_view key) {
    return find(built().countryWords, key, &CountryRow::key);
}

std::span<const std::string_view> ZoneTables::zones(std::string_view region) {
    const auto* found = find(built().countries, region, &Country::region);
    return found ? std::span<const std::string_view>(found->zones)
                 : std::span<const std::string_view>();
}

std::string_view ZoneTables::region(std::string_view identifier) {
    const auto* found = find(built().zoneCountries, identifier, &ZoneCountry::identifier);
    return found ? found->region : std::string_view();
}

bool ZoneTables::isOrdinaryWord(std::string_view key) {
    return std::ranges::binary_search(built().ordinaryWords, key);
}

void ZoneTables::prepare() {
    built();
}

} // namespace tessarine
