#pragma once

#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/text/Zone.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Places that have a clock, from the tables zone-abbreviations.txt, city-aliases.txt,
/// country-zones.txt and country-words.txt and from the zones' own names. Texts are as
/// `ZoneWords::normalized` leaves them. Pure; any thread.
namespace tessarine::ZonePlaces {

struct Place {
    ZoneClock clock;
    bool several = false; ///< a country whose clocks differ; `clock` is the main one
    std::string region;   ///< ISO 3166, of a country; empty for any other place

    /// The name as a row shows it: "Australia (Sydney, one of several zones)".
    std::string label() const;
};

std::optional<Place> resolve(std::string_view word, const TimeZones::Context& context);

enum class Unknown {
    skipped, ///< "paris and xyz" is Paris
    refused, ///< and then none is meant
};

/// One or several places, parted by commas or "and", or the watched clocks by their words; empty
/// for a text that names none. Each clock once.
std::vector<Place>
resolveAll(std::string_view text, const TimeZones::Context& context, Unknown unknown);

/// An abbreviation or an offset: what is a zone and nothing else.
bool isZoneName(std::string_view word);

/// Whether the place word is also ordinary English ("bath", "wake").
bool isOrdinaryWord(std::string_view word);

/// The zone of a clock; nothing for an identifier that isn't known. Those once used stay at hand.
std::optional<Zone> zone(const ZoneClock& clock);

/// The flag of the zone's country; nothing for one of no country.
std::optional<std::string> flag(const ZoneClock& clock);

/// Builds the tables now.
void prepare();

} // namespace tessarine::ZonePlaces
