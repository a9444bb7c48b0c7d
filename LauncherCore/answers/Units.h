#pragma once

#include "LauncherCore/answers/Answer.h"
#include "LauncherCore/answers/MeasureSystem.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {
class Formats;
} // namespace tessarine

/// Quantities in other units: "5 kg in lb", and "5 kg" alone in several. The tables are units.txt,
/// unit-aliases.txt, unit-spellings.txt, unit-labels.txt, unit-fans.txt and measure-systems.txt;
/// they are read on the first call, which costs about half a millisecond. Typed text is UTF-8 in
/// any case. Pure; any thread.
namespace tessarine::Answers {

enum class UnitKind { length, mass, volume, temperature, speed, data, time, area };

/// A value v of a unit is `(v - offset) * toBase` in the base unit of its kind: metre, kilogram,
/// litre, degree Celsius, metre per second, byte, second, square metre.
struct Unit {
    std::string_view key; ///< its first name, of the program's own tables
    UnitKind kind = UnitKind::length;
    double toBase = 1;
    double offset = 0;                       ///< of temperatures alone
    std::span<const std::string_view> names; ///< lower case, the key first

    bool operator==(const Unit& other) const { return key == other.key; }
};

struct UnitAmount {
    double value = 0;
    Unit unit;

    bool operator==(const UnitAmount&) const = default;
};

struct UnitQuantity {
    double value = 0; ///< finite; of "6 ft 6 in" 6.5
    Unit unit;
    std::string token;             ///< the unit as typed
    std::vector<UnitAmount> parts; ///< of "6 ft 6 in" both; empty for a single amount

    bool operator==(const UnitQuantity&) const = default;
};

struct LeadingAmount {
    double value = 0;      ///< finite
    std::string_view rest; ///< what follows, trimmed; a view into the text

    bool operator==(const LeadingAmount&) const = default;
};

/// The answer to "5 kg in lb", "6 ft 2 in to cm" or "how many cm in 6 ft"; nothing for a text that
/// doesn't read as a quantity and a unit of one kind.
std::optional<Answer> units(std::string_view text, MeasureSystem measure, const Formats& formats);

/// A quantity without a target in each of the units that people want to see it in, in their order.
/// With a target it is that one conversion. Empty for any other text.
std::vector<Answer> unitFan(std::string_view text, MeasureSystem measure, const Formats& formats);

/// The unit that a word or words name, as `measure` reads them; nothing for others.
std::optional<Unit> readUnit(std::string_view word, MeasureSystem measure);

/// An amount and a unit and nothing else, behind a currency's symbol or asking words ("what is").
std::optional<UnitQuantity> readQuantity(std::string_view text, MeasureSystem measure);

/// The number at the start of a phrase, in digits ("1 1/2", "½", "1,000.5") or words ("half a",
/// "two hundred"); nothing where there is none
/// and for a text of more than 256 bytes.
std::optional<LeadingAmount> leadingAmount(std::string_view text);

/// What `measure` takes a bare unit's word for; nothing for a unit that it leaves as it is.
std::optional<Unit> systemUnit(std::string_view forKey, MeasureSystem measure);

/// Whether `unit` is what `measure` takes some bare word for.
bool isSystemSized(const Unit& unit, MeasureSystem measure);

/// What is printed behind a figure: "lb", "US cups", "US cup" for 1. For an unknown key, the key.
std::string_view unitLabel(std::string_view key, double value);

} // namespace tessarine::Answers
