#pragma once

#include <span>
#include <string>
#include <string_view>

/// The tables of places that have a clock, built once, by the first call or `prepare`. Keys are
/// what `key` makes of a folded text. Pure; any thread. Views are of data that stays.
namespace tessarine::ZoneTables {

struct PlaceRow {
    std::string_view key;
    std::string_view name;
    std::string_view identifier;
    bool isAbbreviation = false;
};

struct CountryRow {
    std::string_view key;
    std::string_view region;
    std::string_view name;
};

/// The form in which spellings of a place are equal: "st. john's" and "st johns", "port-au-prince"
/// and "port au prince".
std::string key(std::string_view folded);

/// An abbreviation, a city or a zone's own city, in this order; null for none.
const PlaceRow* place(std::string_view key);

/// A country with several clocks; null for none.
const CountryRow* country(std::string_view key);

/// The zones of a country, the main one first; empty for none.
std::span<const std::string_view> zones(std::string_view region);

/// The country of a zone; empty for one of no country.
std::string_view region(std::string_view identifier);

bool isOrdinaryWord(std::string_view key);

void prepare();

} // namespace tessarine::ZoneTables
