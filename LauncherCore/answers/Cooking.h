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

/// Kitchen amounts between volume and weight: "2 cups flour in g". What a cup weighs is in
/// ingredients.txt, which is read on the first call. Typed text is UTF-8 in any case. Pure; any
/// thread.
namespace tessarine::Cooking {

struct Ingredient {
    std::span<const std::string_view> names; ///< lower case; the first is the one shown
    double gramsPerCup = 0;                  ///< of one US cup
    std::string_view source;                 ///< where the figure is from
};

/// The answer to an amount of an ingredient in a unit of weight or volume, whichever it isn't in.
/// Without an ingredient, or with an unknown one, the answer asks which. Nothing for any other
/// text.
std::optional<Answer> answer(std::string_view text, MeasureSystem measure, const Formats& formats);

/// An amount of a known ingredient without a target, in grams or in cups, whichever it isn't in;
/// empty for any other text.
std::vector<Answer> fan(std::string_view text, MeasureSystem measure, const Formats& formats);

/// The ingredient of a name, in the singular or the plural, with or without "of", "the" and "some";
/// nothing for others.
std::optional<Ingredient> ingredient(std::string_view text);

} // namespace tessarine::Cooking
