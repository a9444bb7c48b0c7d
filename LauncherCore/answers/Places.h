#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Places that people name where they mean what is used there: its money, its clocks. From the
/// tables countries.txt and place-aliases.txt. Pure; any thread.
namespace tessarine::Places {

struct Place {
    std::string region;   ///< ISO 3166 code of two letters
    std::string currency; ///< ISO 4217 code
    std::string name;     ///< in English

    bool operator==(const Place&) const = default;
};

/// The place that a country's name, an adjective, a city or a region names, in whatever case and
/// with or without accents; nothing for a word that is no place.
std::optional<Place> resolve(std::string_view word);

/// The form in which two spellings of one place are equal.
std::string key(std::string_view word);

/// Where a currency is at home: a group of countries by its own name, else the country that the
/// code's first letters name, else the first of the table that uses it; nothing for none.
std::optional<Place> home(std::string_view ofCurrency);

/// Builds the tables, under a millisecond, so that the first question need not.
void warm();

/// The flag of a region's two letters; empty for anything else.
std::string flagOfRegion(std::string_view region);
std::string flagOfCurrency(std::string_view code);

} // namespace tessarine::Places
