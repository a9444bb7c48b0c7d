#include "LauncherCore/answers/UnitPrinting.h"

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/UnitTables.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <cmath>

namespace tessarine {

namespace {

/// Figures have four decimals, so anything nearer to 1 is printed as 1.
bool isOne(double value) {
    constexpr double halfOfLastDecimal = 5e-5;
    return std::abs(value - 1) < halfOfLastDecimal;
}

/// A mark that reads as a unit only right behind a figure, as in 5'10".
bool isMark(std::string_view token) {
    constexpr std::string_view marks[] = {"'", "’", "′", "\"", "”", "″", "''"};
    return std::ranges::find(marks, token) != std::end(marks);
}

} // namespace

double UnitPrinting::rounded(double value, double scale) {
    const double scaled = value * scale;
    return std::isfinite(scaled) ? std::round(scaled) / scale : value;
}

std::string_view
UnitPrinting::label(const Answers::Unit& unit, std::string_view typed, double value) {
    const auto* label = UnitTables::label(unit.key);
    const bool isWhole = label && !label->wholePlural.empty() &&
                         (Folding::equalIgnoringCase(typed, label->wholePlural) ||
                          Folding::equalIgnoringCase(typed, label->wholeSingular));
    if (!isWhole)
        return Answers::unitLabel(unit.key, value);
    return isOne(value) ? label->wholeSingular : label->wholePlural;
}

std::string UnitPrinting::written(const Answers::UnitQuantity& quantity, const Formats& formats) {
    if (quantity.parts.empty()) {
        const auto unit = isMark(quantity.token)
                              ? Answers::unitLabel(quantity.unit.key, quantity.value)
                              : std::string_view(quantity.token);
        return Calc::format(quantity.value, formats) + " " + std::string(unit);
    }
    std::string text;
    for (const auto& [value, unit] : quantity.parts) {
        if (!text.empty())
            text += ' ';
        text += Calc::format(value, formats) + " ";
        text += Answers::unitLabel(unit.key, value);
    }
    return text;
}

std::string_view UnitPrinting::note(MeasureSystem measure) {
    switch (measure) {
    case MeasureSystem::usCustomary:
        return "";
    case MeasureSystem::imperial:
        return " · Imperial (UK) measures";
    case MeasureSystem::metric:
        return " · Metric measures";
    }
    return "";
}

std::string_view Answers::unitLabel(std::string_view key, double value) {
    const auto* label = UnitTables::label(key);
    if (!label)
        return key;
    return isOne(value) ? label->singular : label->plural;
}

} // namespace tessarine
