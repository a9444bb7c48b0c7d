#pragma once

#include "LauncherCore/answers/Units.h"

#include <optional>
#include <string>
#include <string_view>

/// How a typed text parts into a quantity, a target and an ingredient: what `Answers::units` and
/// `Cooking` share. Pure; any thread. Views are into the text that was given.
namespace tessarine::UnitReading {

/// The text with plain blanks and without a question mark or equals sign at its end. Nothing for
/// an empty text and for one longer than anybody types a conversion, 256 bytes.
std::optional<std::string> readable(std::string_view typed);

/// What is asked: "5 kg" in "lb".
struct Request {
    std::string_view subject;
    std::string_view target;     ///< at most 24 bytes
    std::string_view ingredient; ///< of "how many grams of flour in a cup"; else empty
    bool isSaidWithIn = false;   ///< in the order "5 kg in lb"; that "in" may be an inch
};

/// Of a readable text; nothing for one that asks for no conversion.
std::optional<Request> request(std::string_view text);

struct LeadingQuantity {
    Answers::UnitQuantity quantity;
    std::string_view rest; ///< trimmed
};

/// The quantity that a text begins with, and what follows: the longest words that make a unit are
/// the unit. "6 ft 2 in" is one quantity, and so is "6 ft 2".
std::optional<LeadingQuantity> leadingQuantity(std::string_view text, MeasureSystem measure);

/// The same of a text without an amount, which means one: "cup of flour".
std::optional<LeadingQuantity> leadingOne(std::string_view text, MeasureSystem measure);

/// A text without asking words before it, such as "what is" and "convert".
std::string_view withoutAsking(std::string_view text);

} // namespace tessarine::UnitReading
