#pragma once

#include "LauncherCore/answers/Units.h"

#include <span>
#include <string_view>

/// The tables of units, indexed. Pure; any thread. Spans and views are of the program's own data.
namespace tessarine::UnitTables {

/// How a unit is printed; the whole words are empty where the labels are words already.
struct Label {
    std::string_view plural;
    std::string_view singular;
    std::string_view wholePlural;
    std::string_view wholeSingular;
};

/// The unit of a name, alias or further spelling, in lower case; null for none.
const Answers::Unit* unit(std::string_view spelling);

/// What a bare word for `key` means under `measure`; null where it means what it says.
const Answers::Unit* reread(std::string_view key, MeasureSystem measure);

/// Whether `unit` is what `measure` takes some bare word for.
bool isReread(const Answers::Unit& unit, MeasureSystem measure);

/// Null for an unknown key.
const Label* label(std::string_view key);

/// Keys of what a quantity of `key` is shown in; empty for a unit that is shown in nothing.
std::span<const std::string_view> fan(std::string_view key);

/// Name of the symbol for a kind of unit.
std::string_view symbol(Answers::UnitKind kind);

/// Whether quantities of the kind are said in two units, as in "6 ft 2 in".
bool isCompounded(Answers::UnitKind kind);

} // namespace tessarine::UnitTables
