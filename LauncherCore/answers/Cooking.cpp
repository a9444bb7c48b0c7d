#include "LauncherCore/answers/Cooking.h"

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/UnitPrinting.h"
#include "LauncherCore/answers/UnitReading.h"
#include "LauncherCore/answers/Units.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Answers::Unit;
using Answers::UnitKind;
using Answers::UnitQuantity;
using Cooking::Ingredient;

constexpr std::string_view symbol = "scalemass";
constexpr double litresPerUsCup = 0.2365882365;
constexpr double kilogramsPerGram = 0.001;

/// An amount of something, and the unit it is asked in.
struct Question {
    UnitQuantity amount;
    std::string_view ingredient; ///< as typed; empty for none
    Unit target;
    std::string_view typedTarget;
};

/// Of which kitchens have both: neither length nor temperature.
bool isKitchenKind(const Unit& unit) {
    return unit.kind == UnitKind::mass || unit.kind == UnitKind::volume;
}

bool isMassAndVolume(const Unit& one, const Unit& other) {
    return (one.kind == UnitKind::mass && other.kind == UnitKind::volume) ||
           (one.kind == UnitKind::volume && other.kind == UnitKind::mass);
}

/// In a recipe "2 c flour" are cups: nobody weighs degrees.
UnitQuantity withCups(UnitQuantity amount, MeasureSystem measure) {
    const auto cup = Answers::readUnit("cup", measure);
    if (amount.unit.key == "c" && Folding::equalIgnoringCase(amount.token, "c") && cup)
        amount.unit = *cup;
    return amount;
}

/// What is typed between the amount and the target. Words without a letter are no ingredient but
/// the beginning of a further amount.
std::optional<std::string_view> ingredientWords(std::string_view text) {
    if (Folding::equalIgnoringCase(text.substr(0, 3), "of "))
        text = Folding::trimmed(text.substr(3));
    const bool hasLetter = std::ranges::any_of(text, [](char byte) {
        const auto lower = static_cast<unsigned char>(byte | 0x20);
        return (lower >= 'a' && lower <= 'z') || lower >= 0x80;
    });
    return text.empty() || hasLetter ? std::optional(text) : std::nullopt;
}

/// "2 sticks of butter": half a US cup each, as the wrapper says.
std::optional<UnitReading::LeadingQuantity> sticks(std::string_view text) {
    const auto amount = Answers::leadingAmount(UnitReading::withoutAsking(text));
    const auto word = amount ? amount->rest.substr(0, amount->rest.find(' ')) : std::string_view();
    const auto cup = Answers::readUnit("us cup", MeasureSystem::usCustomary);
    if (!cup ||
        (!Folding::equalIgnoringCase(word, "stick") && !Folding::equalIgnoringCase(word, "sticks")))
        return std::nullopt;
    const auto rest = Folding::trimmed(amount->rest.substr(word.size()));
    const auto butter = Cooking::ingredient(rest);
    if (!butter || butter->names.front() != "butter")
        return std::nullopt;
    constexpr double cupsOfStick = 0.5;
    return UnitReading::LeadingQuantity{{amount->value * cupsOfStick, *cup, "us cup", {}}, rest};
}

/// Of a readable text.
std::optional<Question> question(std::string_view text, MeasureSystem measure) {
    const auto request = UnitReading::request(text);
    const auto target =
        request ? Answers::readUnit(request->target, measure) : std::optional<Unit>();
    if (!target)
        return std::nullopt;
    auto leading = UnitReading::leadingQuantity(request->subject, measure);
    if (!leading)
        leading = sticks(request->subject);
    if (!leading)
        leading = UnitReading::leadingOne(request->subject, measure);
    if (!leading)
        return std::nullopt;
    const auto words = ingredientWords(leading->rest.empty() ? request->ingredient : leading->rest);
    if (!words)
        return std::nullopt;
    auto amount = std::move(leading->quantity);
    if (!words->empty())
        amount = withCups(std::move(amount), measure);
    const bool needsNoWeight = !words->empty() && isKitchenKind(amount.unit) &&
                               amount.unit.kind == target->kind &&
                               Cooking::ingredient(*words).has_value();
    if (!needsNoWeight && !isMassAndVolume(amount.unit, *target))
        return std::nullopt;
    return Question{std::move(amount), *words, *target, request->target};
}

Answer whichIngredient(std::string detail) {
    return {.value = "Which ingredient?",
            .detail = std::move(detail),
            .symbol = std::string(symbol),
            .kind = AnswerKind::unit};
}

Answer needsIngredient(const UnitQuantity& amount, const Formats& formats) {
    const bool isVolume = amount.unit.kind == UnitKind::volume;
    return whichIngredient(std::string(isVolume ? "Cups to grams" : "Grams to cups") +
                           " needs a density: try " + Calc::format(amount.value, formats) +
                           (isVolume ? " cups flour in g" : " g flour in cups"));
}

Answer unknownIngredient(std::string_view words) {
    return whichIngredient("No weight on file for " + Folding::repairedUtf8(words) +
                           ". About 121 ingredients are known (flour, sugar, butter, honey, oats…)"
                           "; the closest name wins.");
}

/// In the target's unit.
double weighed(const Question& question, const Ingredient& ingredient) {
    const double base = question.amount.value * question.amount.unit.toBase;
    if (question.amount.unit.kind == question.target.kind)
        return base / question.target.toBase;
    if (question.amount.unit.kind == UnitKind::volume)
        return base / litresPerUsCup * ingredient.gramsPerCup *
               (kilogramsPerGram / question.target.toBase);
    return base / kilogramsPerGram / ingredient.gramsPerCup *
           (litresPerUsCup / question.target.toBase);
}

/// To four decimals; a figure below 0.01 to eight, so that a pinch isn't nothing.
double figure(double value) {
    constexpr double small = 0.01;
    const bool isSmall = value != 0 && std::abs(value) < small;
    return UnitPrinting::rounded(value, isSmall ? 1e8 : 1e4);
}

/// Whether a word means its unit only because of the measure system.
bool isReread(std::string_view typed, const Unit& unit) {
    const auto plain = Answers::readUnit(typed, MeasureSystem::usCustomary);
    return plain && plain->key != unit.key;
}

/// What a measure of something is in another of its kind needs no weight, and credits none.
std::string detail(const Question& question,
                   const Ingredient& ingredient,
                   std::string_view label,
                   MeasureSystem measure,
                   const Formats& formats) {
    auto text = std::string(ingredient.names.front()) + " · ";
    if (question.amount.unit.kind == question.target.kind)
        text += UnitPrinting::written(question.amount, formats) + " → " + std::string(label);
    else
        text += Calc::format(ingredient.gramsPerCup, formats) + " g per US cup";
    if (isReread(question.amount.token, question.amount.unit) ||
        isReread(question.typedTarget, question.target))
        text += UnitPrinting::note(measure);
    return text;
}

/// Whose chart the weight is from.
std::optional<AnswerSource> credit(const Question& question, const Ingredient& ingredient) {
    if (question.amount.unit.kind == question.target.kind)
        return std::nullopt;
    return AnswerSource{.host = std::string(ingredient.source), .url = {}, .fetched = 0};
}

std::optional<Answer> known(const Question& question,
                            const Ingredient& ingredient,
                            MeasureSystem measure,
                            const Formats& formats) {
    const double value = figure(weighed(question, ingredient));
    if (!std::isfinite(value))
        return std::nullopt;
    const auto label = UnitPrinting::label(question.target, question.typedTarget, value);
    return Answer{.value = Calc::format(value, formats) + " " + std::string(label),
                  .detail = detail(question, ingredient, label, measure, formats),
                  .symbol = std::string(symbol),
                  .source = credit(question, ingredient),
                  .kind = AnswerKind::unit,
                  .number = value};
}

} // namespace

std::optional<Answer>
Cooking::answer(std::string_view text, MeasureSystem measure, const Formats& formats) {
    const auto readable = UnitReading::readable(text);
    const auto asked = readable ? question(*readable, measure) : std::nullopt;
    if (!asked)
        return std::nullopt;
    if (asked->ingredient.empty())
        return needsIngredient(asked->amount, formats);
    const auto found = ingredient(asked->ingredient);
    if (!found)
        return unknownIngredient(asked->ingredient);
    return known(*asked, *found, measure, formats);
}

std::vector<Answer>
Cooking::fan(std::string_view text, MeasureSystem measure, const Formats& formats) {
    std::vector<Answer> answers;
    const auto readable = UnitReading::readable(text);
    const auto leading = readable ? UnitReading::leadingQuantity(*readable, measure) : std::nullopt;
    const auto found = leading && !leading->rest.empty() ? ingredient(leading->rest) : std::nullopt;
    if (!found)
        return answers;
    const auto amount = withCups(leading->quantity, measure);
    for (const std::string_view key : {"g", "cup"}) {
        const auto target = Answers::readUnit(key, measure);
        if (!target || !isMassAndVolume(amount.unit, *target))
            continue;
        if (auto answer = known({amount, leading->rest, *target, key}, *found, measure, formats))
            answers.push_back(std::move(*answer));
    }
    return answers;
}

} // namespace tessarine
