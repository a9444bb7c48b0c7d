#include "LauncherCore/answers/Units.h"

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/UnitPrinting.h"
#include "LauncherCore/answers/UnitReading.h"
#include "LauncherCore/answers/UnitTables.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Answers::Unit;
using Answers::UnitKind;
using Answers::UnitQuantity;
using UnitReading::Request;

constexpr double fourDecimals = 1e4;
constexpr double eightDecimals = 1e8;

double converted(double value, const Unit& from, const Unit& to) {
    return (value - from.offset) * from.toBase / to.toBase + to.offset;
}

/// To four decimals; a figure that is too small for them isn't shown as nothing. With temperatures
/// a remnant like that comes of the subtraction and is nothing.
double figure(double value, UnitKind kind) {
    const double usual = UnitPrinting::rounded(value, fourDecimals);
    if (usual != 0 || value == 0)
        return usual;
    const double fine = UnitPrinting::rounded(value, eightDecimals);
    return fine == 0 && kind != UnitKind::temperature ? value : fine;
}

/// Whether a word means this unit only because of the measure system: "cup", but not "us cup".
bool isReread(std::string_view typed, const Unit& unit) {
    const auto plain = Answers::readUnit(typed, MeasureSystem::usCustomary);
    return plain && plain->key != unit.key;
}

std::string detail(const UnitQuantity& source,
                   std::string_view target,
                   std::string_view note,
                   const Formats& formats) {
    auto text = UnitPrinting::written(source, formats) + " → ";
    text += target;
    text += note;
    return text;
}

std::string_view noteOn(bool depends, MeasureSystem measure) {
    return depends ? UnitPrinting::note(measure) : std::string_view();
}

/// `typed` is how the target was asked for.
std::optional<Answer> conversion(const UnitQuantity& source,
                                 const Unit& target,
                                 std::string_view typed,
                                 MeasureSystem measure,
                                 const Formats& formats) {
    const double value = figure(converted(source.value, source.unit, target), target.kind);
    if (!std::isfinite(value))
        return std::nullopt;
    const auto label = UnitPrinting::label(target, typed, value);
    const bool depends = isReread(source.token, source.unit) || isReread(typed, target);
    return Answer{.value = Calc::format(value, formats) + " " + std::string(label),
                  .detail = detail(source, label, noteOn(depends, measure), formats),
                  .symbol = std::string(UnitTables::symbol(target.kind)),
                  .kind = AnswerKind::unit,
                  .number = value};
}

/// "350 degrees in c": whoever asks for one scale has the other.
std::optional<UnitQuantity>
bareDegrees(std::string_view subject, const Unit& target, MeasureSystem measure) {
    constexpr std::string_view words[] = {"degrees", "degree", "deg", "°"};
    const auto amount = Answers::leadingAmount(UnitReading::withoutAsking(subject));
    if (!amount || target.kind != UnitKind::temperature)
        return std::nullopt;
    const bool isDegrees = std::ranges::any_of(
        words, [&](auto word) { return Folding::equalIgnoringCase(amount->rest, word); });
    const auto source = Answers::readUnit(target.key == "c" ? "f" : "c", measure);
    if (!isDegrees || !source)
        return std::nullopt;
    const auto token = Answers::unitLabel(source->key, amount->value);
    return UnitQuantity{amount->value, *source, std::string(token), {}};
}

/// "12 in cm": a number that is in centimetres already would need no answer, so the word is the
/// inch.
std::optional<UnitQuantity>
bareInches(const Request& request, const Unit& target, MeasureSystem measure) {
    const auto amount = Answers::leadingAmount(UnitReading::withoutAsking(request.subject));
    const auto inch = Answers::readUnit("in", measure);
    if (!request.isSaidWithIn || !amount || !amount->rest.empty() || !inch ||
        target.kind != UnitKind::length || target == *inch)
        return std::nullopt;
    return UnitQuantity{amount->value, *inch, "in", {}};
}

/// "10k", as runners say; apart from its figure the letter is the kelvin.
bool isRun(std::string_view subject) {
    return subject.size() > 1 && (subject.back() | 0x20) == 'k' &&
           subject[subject.size() - 2] >= '0' && subject[subject.size() - 2] <= '9';
}

/// "kg to lb": one is meant.
std::optional<UnitQuantity> bareUnit(std::string_view subject, MeasureSystem measure) {
    auto one = UnitReading::leadingOne(subject, measure);
    return one && one->rest.empty() ? std::optional(std::move(one->quantity)) : std::nullopt;
}

std::optional<UnitQuantity>
sourceOf(const Request& request, const Unit& target, MeasureSystem measure) {
    auto source = Answers::readQuantity(request.subject, measure);
    if (!source)
        source = bareDegrees(request.subject, target, measure);
    if (!source)
        source = bareInches(request, target, measure);
    if (!source)
        source = bareUnit(request.subject, measure);
    const auto kilometre = Answers::readUnit("km", measure);
    if (source && kilometre && target.kind == UnitKind::length && isRun(request.subject))
        source->unit = *kilometre;
    if (!source || source->unit.kind != target.kind)
        return std::nullopt;
    return source;
}

/// "feet and inches".
struct TwoUnits {
    Unit larger;
    Unit smaller;
    std::string_view typedLarger;
    std::string_view typedSmaller;
};

std::optional<TwoUnits> twoUnits(std::string_view target, MeasureSystem measure) {
    constexpr std::string_view conjunctions[] = {" and ", " & ", " "};
    for (const auto conjunction : conjunctions) {
        const auto at = target.find(conjunction);
        if (at == std::string_view::npos)
            continue;
        const auto typedLarger = target.substr(0, at);
        const auto typedSmaller = target.substr(at + conjunction.size());
        const auto larger = Answers::readUnit(typedLarger, measure);
        const auto smaller = Answers::readUnit(typedSmaller, measure);
        if (!larger || !smaller || larger->kind != smaller->kind ||
            !UnitTables::isCompounded(larger->kind) || larger->toBase <= smaller->toBase)
            return std::nullopt;
        return TwoUnits{*larger, *smaller, typedLarger, typedSmaller};
    }
    return std::nullopt;
}

/// "5 ft 10.8661 in".
std::optional<Answer> conversion(const UnitQuantity& source,
                                 const TwoUnits& target,
                                 MeasureSystem measure,
                                 const Formats& formats) {
    const auto& [larger, smaller, typedLarger, typedSmaller] = target;
    const double ratio = larger.toBase / smaller.toBase;
    const double inSmaller = UnitPrinting::rounded(
        std::abs(converted(source.value, source.unit, smaller)), fourDecimals);
    if (source.unit.kind != smaller.kind || !std::isfinite(inSmaller))
        return std::nullopt;
    // Nearer to the next whole than a figure can show is the next whole: no "5 ft 12 in".
    double whole = std::floor(inSmaller / ratio + 1e-9);
    double rest = UnitPrinting::rounded(std::max(0.0, inSmaller - whole * ratio), fourDecimals);
    if (rest >= ratio) {
        whole += 1;
        rest = 0;
    }
    if (source.value < 0)
        (whole > 0 ? whole : rest) *= -1;
    const auto restLabel = UnitPrinting::label(smaller, typedSmaller, rest);
    const auto wholeLabel = UnitPrinting::label(larger, typedLarger, whole);
    // What was asked for is named in the plural, whatever comes of it.
    constexpr double several = 2;
    const auto label = std::string(UnitPrinting::label(larger, typedLarger, several)) + " and " +
                       std::string(UnitPrinting::label(smaller, typedSmaller, several));
    const bool depends = isReread(source.token, source.unit) || isReread(typedLarger, larger) ||
                         isReread(typedSmaller, smaller);
    return Answer{.value = Calc::format(whole, formats) + " " + std::string(wholeLabel) + " " +
                           Calc::format(rest, formats) + " " + std::string(restLabel),
                  .detail = detail(source, label, noteOn(depends, measure), formats),
                  .symbol = std::string(UnitTables::symbol(smaller.kind)),
                  .kind = AnswerKind::unit,
                  .number = converted(source.value, source.unit, larger)};
}

/// Words that begin or end as a quantity does but are typed for something else: "a m…", "1st".
bool isHardlyMeant(std::string_view text, const UnitQuantity& quantity) {
    const bool isArticle = Folding::equalIgnoringCase(text.substr(0, text.find(' ')), "a") ||
                           Folding::equalIgnoringCase(text.substr(0, text.find(' ')), "an");
    const bool isOrdinal = quantity.token == "st" && text.find(' ') == std::string_view::npos;
    return quantity.parts.empty() &&
           (isOrdinal || (isArticle && (quantity.token.size() == 1 || quantity.token == "in")));
}

} // namespace

std::optional<Unit> Answers::readUnit(std::string_view word, MeasureSystem measure) {
    constexpr std::size_t longestName = 32;
    word = Folding::trimmed(word);
    if (word.empty() || word.size() > longestName)
        return std::nullopt;
    const auto spelling = Folding::lowercase(word);
    const auto* unit = UnitTables::unit(spelling);
    if (!unit && spelling.ends_with('.'))
        unit = UnitTables::unit(std::string_view(spelling).substr(0, spelling.size() - 1));
    if (!unit)
        return std::nullopt;
    const auto* reread = UnitTables::reread(unit->key, measure);
    return reread ? *reread : *unit;
}

std::optional<Unit> Answers::systemUnit(std::string_view forKey, MeasureSystem measure) {
    const auto* unit = UnitTables::reread(forKey, measure);
    return unit ? std::optional(*unit) : std::nullopt;
}

bool Answers::isSystemSized(const Unit& unit, MeasureSystem measure) {
    return UnitTables::isReread(unit, measure);
}

std::optional<Answer>
Answers::units(std::string_view text, MeasureSystem measure, const Formats& formats) {
    const auto readable = UnitReading::readable(text);
    const auto request = readable ? UnitReading::request(*readable) : std::nullopt;
    if (!request || !request->ingredient.empty())
        return std::nullopt;
    if (const auto target = readUnit(request->target, measure)) {
        const auto source = sourceOf(*request, *target, measure);
        if (!source)
            return std::nullopt;
        return conversion(*source, *target, request->target, measure, formats);
    }
    const auto target = twoUnits(request->target, measure);
    const auto source = target ? readQuantity(request->subject, measure) : std::nullopt;
    if (!source)
        return std::nullopt;
    return conversion(*source, *target, measure, formats);
}

std::vector<Answer>
Answers::unitFan(std::string_view text, MeasureSystem measure, const Formats& formats) {
    if (auto answer = units(text, measure, formats))
        return {std::move(*answer)};
    std::vector<Answer> answers;
    const auto quantity = readQuantity(text, measure);
    if (!quantity || isHardlyMeant(Folding::trimmed(text), *quantity))
        return answers;
    for (const auto key : UnitTables::fan(quantity->unit.key))
        if (const auto target = readUnit(key, measure))
            if (auto answer = conversion(*quantity, *target, key, measure, formats))
                answers.push_back(std::move(*answer));
    return answers;
}

} // namespace tessarine
