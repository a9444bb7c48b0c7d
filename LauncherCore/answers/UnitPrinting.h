#pragma once

#include "LauncherCore/answers/Units.h"

#include <string>
#include <string_view>

/// How quantities are printed: what `Answers::units` and `Cooking` share. Pure; any thread.
namespace tessarine::UnitPrinting {

/// To a multiple of 1 / scale, halves away from zero. A value too large for that has no fraction.
double rounded(double value, double scale);

/// The label of a unit behind a figure; its whole word for somebody who typed the whole word.
std::string_view label(const Answers::Unit& unit, std::string_view typed, double value);

/// "5 kg" with the unit as typed; "6 ft 2 in" with labels.
std::string written(const Answers::UnitQuantity& quantity, const Formats& formats);

/// " · Metric measures", which ends the detail of an answer that depends on the measure system;
/// empty for US measures, which the labels name.
std::string_view note(MeasureSystem measure);

} // namespace tessarine::UnitPrinting
