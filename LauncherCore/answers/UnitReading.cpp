#include "LauncherCore/answers/UnitReading.h"

#include "LauncherCore/answers/UnitTables.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>

namespace tessarine {

namespace {

using Answers::UnitQuantity;
using UnitReading::LeadingQuantity;
using UnitReading::Request;

constexpr std::size_t longestText = 256;
constexpr std::size_t longestTarget = 24; ///< "imperial fluid ounces" has 21

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool isOneOf(std::string_view word, std::span<const std::string_view> words) {
    return std::ranges::any_of(words,
                               [&](auto other) { return Folding::equalIgnoringCase(word, other); });
}

bool startsWith(std::string_view text, std::string_view prefix) {
    return Folding::equalIgnoringCase(text.substr(0, prefix.size()), prefix);
}

std::string_view firstWord(std::string_view text) {
    return text.substr(0, text.find(' '));
}

/// Behind its first word.
std::string_view behindWord(std::string_view text) {
    return Folding::trimmed(text.substr(firstWord(text).size()));
}

/// A connector and where it stands.
struct Connector {
    std::size_t at = 0;
    std::size_t length = 0;
    bool isIn = false;
};

/// The last word that has a text on both sides and leads to a target: in "6 ft in in" the first
/// "in", in "12 in in cm" the second.
std::optional<Connector> connectingWord(std::string_view text) {
    constexpr std::string_view words[] = {"in", "to", "as", "into"};
    auto end = text.find_last_of(' ');
    while (end != std::string_view::npos && end > 0) {
        const auto before = text.find_last_of(' ', end - 1);
        if (before == std::string_view::npos)
            return std::nullopt;
        const auto word = text.substr(before + 1, end - before - 1);
        if (isOneOf(word, words))
            return Connector{before + 1, word.size(), Folding::equalIgnoringCase(word, "in")};
        end = before;
    }
    return std::nullopt;
}

/// "5 kg = lb" and "5kg→lb": an answer's own detail, typed again, asks the same.
std::optional<Connector> connectingSign(std::string_view text) {
    constexpr std::string_view signs[] = {"→", "->", "="};
    std::optional<Connector> last;
    for (const auto sign : signs) {
        const auto at = text.rfind(sign);
        if (at != std::string_view::npos && at > 0 && (!last || at > last->at))
            last = Connector{at, sign.size(), false};
    }
    return last;
}

std::string_view trimmedTarget(std::string_view text) {
    text = Folding::trimmed(text);
    while (text.starts_with('?'))
        text = Folding::trimmed(text.substr(1));
    return text;
}

std::optional<Request> checked(const Request& request) {
    if (request.subject.empty() || request.target.empty() || request.target.size() > longestTarget)
        return std::nullopt;
    return request;
}

/// "grams of flour are in a cup": the target comes first.
std::optional<Request> countingRequest(std::string_view text) {
    constexpr std::string_view verbs[] = {"in", "is", "are", "make", "makes"};
    constexpr std::string_view further[] = {"there", "in", "is", "are", "make", "makes"};
    if (isOneOf(firstWord(text), verbs) && !startsWith(text, "in in "))
        return std::nullopt; // "how much is 5 kg in lb" asks in the other order.
    auto rest = behindWord(text);
    while (!rest.empty() && !isOneOf(firstWord(rest), verbs))
        rest = behindWord(rest);
    if (rest.empty())
        return std::nullopt;
    Request request;
    request.target = Folding::trimmed(text.substr(0, text.size() - rest.size()));
    while (isOneOf(firstWord(rest), further))
        rest = behindWord(rest);
    request.subject = rest;
    if (const auto of = request.target.find(" of "); of != std::string_view::npos) {
        request.ingredient = Folding::trimmed(request.target.substr(of + 4));
        request.target = request.target.substr(0, of);
    }
    return checked(request);
}

/// "how many cm in 6 ft", "6 ft is how many cm" and "cm in 6 ft".
std::optional<Request> question(std::string_view text) {
    constexpr std::string_view middle = " is how many ";
    if (startsWith(text, "how many ") || startsWith(text, "how much "))
        return countingRequest(behindWord(behindWord(text)));
    if (const auto at = text.find(middle); at != std::string_view::npos)
        return checked({.subject = text.substr(0, at),
                        .target = Folding::trimmed(text.substr(at + middle.size()))});
    // A text that begins with a unit has no amount before a target.
    if (text.find(' ') != std::string_view::npos &&
        Answers::readUnit(firstWord(text), MeasureSystem::usCustomary))
        return countingRequest(text);
    return std::nullopt;
}

bool isPluralWord(std::string_view word) {
    return word.size() > 3 && (word.ends_with('s') || Folding::equalIgnoringCase(word, "feet"));
}

/// Whether "kg in lb", which has no amount, asks for the second unit. "cups in gallon" counts the
/// first, as whoever asks for one of something hardly wants a fraction.
bool isForward(std::string_view text, const Request& counting) {
    if (startsWith(text, "how ") || Answers::leadingAmount(counting.subject))
        return false;
    const auto first = Answers::readUnit(counting.target, MeasureSystem::usCustomary);
    const auto second = Answers::readUnit(counting.subject, MeasureSystem::usCustomary);
    if (!first || !counting.ingredient.empty())
        return true;
    return second && (first->toBase >= second->toBase || isPluralWord(counting.subject));
}

struct LeadingUnit {
    Answers::Unit unit;
    std::string_view token;
    std::string_view rest; ///< trimmed
    bool isParted = false; ///< from the rest, by a blank
};

/// The longest leading words that make a unit; "ft" of "ft2in", where no blank parts them.
std::optional<LeadingUnit> leadingUnit(std::string_view text, MeasureSystem measure) {
    constexpr std::size_t mostWords = 4;
    std::array<std::size_t, mostWords> ends{};
    std::size_t words = 0;
    for (std::size_t end = 0; words < mostWords && end < text.size(); ++words) {
        end = std::min(text.find(' ', text.find_first_not_of(' ', end)), text.size());
        ends[words] = end;
    }
    const auto read = [&](std::size_t end, bool isParted) -> std::optional<LeadingUnit> {
        auto token = text.substr(0, end);
        if (token.ends_with(','))
            token.remove_suffix(1);
        const auto unit = Answers::readUnit(token, measure);
        if (!unit)
            return std::nullopt;
        return LeadingUnit{*unit, token, Folding::trimmed(text.substr(end)), isParted};
    };
    while (words > 0)
        if (const auto unit = read(ends[--words], true))
            return unit;
    const auto digit = text.find_first_of("0123456789");
    if (digit == std::string_view::npos || digit == 0)
        return std::nullopt;
    return read(digit, false);
}

/// The unit that goes without saying behind a larger one: "5 foot 10".
std::string_view impliedKey(std::string_view key) {
    constexpr std::pair<std::string_view, std::string_view> implied[] = {
        {"ft", "in"}, {"lb", "oz"}, {"stone", "lb"}, {"hr", "min"}};
    for (const auto& [larger, smaller] : implied)
        if (key == larger)
            return smaller;
    return {};
}

/// "2h30" and "5'10" go without a blank; "ft3" would be a unit that isn't known.
bool mayLeaveOutBlank(std::string_view token) {
    return token == "'" || token == "’" || token == "′" || token == "h";
}

/// What "2 in" or a bare "2" adds to "6 ft".
std::optional<LeadingQuantity>
furtherPart(std::string_view text, const LeadingUnit& previous, MeasureSystem measure) {
    if (startsWith(text, "and "))
        text = behindWord(text);
    if (text.empty() || !UnitTables::isCompounded(previous.unit.kind))
        return std::nullopt;
    const auto amount = Answers::leadingAmount(text);
    if (!amount || std::signbit(amount->value))
        return std::nullopt;
    if (auto next = leadingUnit(amount->rest, measure)) {
        // "1h 30m" are minutes.
        if (const auto minute = Answers::readUnit("min", measure);
            minute && next->token == "m" && previous.unit.kind == Answers::UnitKind::time)
            next->unit = *minute;
        if (next->unit.kind != previous.unit.kind || next->unit.toBase >= previous.unit.toBase)
            return std::nullopt;
        return LeadingQuantity{{amount->value, next->unit, std::string(next->token), {}},
                               next->rest};
    }
    const auto implied = Answers::readUnit(impliedKey(previous.unit.key), measure);
    const bool isSaid = previous.isParted || mayLeaveOutBlank(previous.token);
    if (!implied || !isSaid || !amount->rest.empty() || !isDigit(text.front()))
        return std::nullopt;
    return LeadingQuantity{{amount->value, *implied, {}, {}}, {}};
}

/// Adds the smaller parts that follow.
LeadingQuantity
compounded(double value, LeadingUnit last, std::string_view token, MeasureSystem measure) {
    LeadingQuantity result{{value, last.unit, std::string(token), {}}, last.rest};
    auto& quantity = result.quantity;
    while (const auto part = furtherPart(result.rest, last, measure)) {
        if (quantity.parts.empty())
            quantity.parts.push_back({value, quantity.unit});
        const auto& unit = part->quantity.unit;
        quantity.parts.push_back({part->quantity.value, unit});
        const double added = part->quantity.value * unit.toBase / quantity.unit.toBase;
        quantity.value += std::signbit(value) ? -added : added;
        result.rest = part->rest;
        last = {unit, {}, part->rest, true};
    }
    return result;
}

/// Without the sign of a currency before a plain number.
std::string_view withoutCurrencySign(std::string_view text) {
    constexpr std::string_view signs[] = {"$", "€", "£", "¥"};
    for (const auto sign : signs)
        if (text.starts_with(sign)) {
            const auto number = Folding::trimmed(text.substr(sign.size()));
            return !number.empty() && isDigit(number.front()) ? number : text;
        }
    return text;
}

} // namespace

std::optional<std::string> UnitReading::readable(std::string_view typed) {
    if (typed.size() > longestText)
        return std::nullopt;
    std::string text(Folding::trimmed(typed));
    // Blanks as they come with text copied from a page: U+00A0, U+2009, U+202F.
    constexpr std::string_view blanks[] = {"\u00a0", "\u2009", "\u202f"};
    if (!Folding::isAscii(text))
        for (const auto blank : blanks)
            for (auto at = text.find(blank); at != std::string::npos; at = text.find(blank))
                text.replace(at, blank.size(), " ");
    std::ranges::replace_if(
        text, [](char byte) { return byte == '\t' || byte == '\n' || byte == '\r'; }, ' ');
    while (!text.empty() && (text.back() == '?' || text.back() == '=' || text.back() == ' '))
        text.pop_back();
    if (text.empty())
        return std::nullopt;
    return text;
}

std::optional<Request> UnitReading::request(std::string_view text) {
    if (const auto asked = question(text); asked && !isForward(text, *asked))
        return asked;
    const auto word = connectingWord(text);
    const auto sign = connectingSign(text);
    if (!word && !sign)
        return std::nullopt;
    const auto last = word && (!sign || word->at > sign->at) ? *word : *sign;
    return checked({.subject = Folding::trimmed(text.substr(0, last.at)),
                    .target = trimmedTarget(text.substr(last.at + last.length)),
                    .ingredient = {},
                    .isSaidWithIn = last.isIn});
}

std::string_view UnitReading::withoutAsking(std::string_view text) {
    constexpr std::string_view questions[] = {"convert ",
                                              "calculate ",
                                              "what is ",
                                              "what's ",
                                              "whats ",
                                              "what are ",
                                              "how much is ",
                                              "how much are ",
                                              "how long is ",
                                              "how far is ",
                                              "how tall is ",
                                              "how big is ",
                                              "how hot is ",
                                              "how cold is ",
                                              "how heavy is "};
    const char first = text.empty() ? ' ' : static_cast<char>(text.front() | 0x20);
    if (first != 'c' && first != 'w' && first != 'h')
        return text;
    for (const auto question : questions)
        if (startsWith(text, question))
            return Folding::trimmed(text.substr(question.size()));
    return text;
}

std::optional<LeadingQuantity> UnitReading::leadingQuantity(std::string_view text,
                                                            MeasureSystem measure) {
    const auto amount = Answers::leadingAmount(withoutCurrencySign(withoutAsking(text)));
    if (!amount)
        return std::nullopt;
    const auto unit = leadingUnit(amount->rest, measure);
    if (!unit)
        return std::nullopt;
    auto result = compounded(amount->value, *unit, unit->token, measure);
    if (!std::isfinite(result.quantity.value))
        return std::nullopt;
    return result;
}

std::optional<LeadingQuantity> UnitReading::leadingOne(std::string_view text,
                                                       MeasureSystem measure) {
    const auto unit = leadingUnit(withoutAsking(text), measure);
    if (!unit)
        return std::nullopt;
    return LeadingQuantity{{1, unit->unit, std::string(unit->token), {}}, unit->rest};
}

std::optional<UnitQuantity> Answers::readQuantity(std::string_view text, MeasureSystem measure) {
    const auto readable = UnitReading::readable(text);
    if (!readable)
        return std::nullopt;
    auto leading = UnitReading::leadingQuantity(*readable, measure);
    if (!leading || !leading->rest.empty())
        return std::nullopt;
    return std::move(leading->quantity);
}

} // namespace tessarine
