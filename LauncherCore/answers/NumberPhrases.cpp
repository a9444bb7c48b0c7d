#include "LauncherCore/answers/NumberPhrases.h"

#include "LauncherCore/answers/AmountWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

namespace tessarine {

namespace {

/// A stretch of the text: a word, a number in digits, blanks, or any other character.
struct Piece {
    enum class Kind { word, digits, blank, other };
    Kind kind = Kind::other;
    std::string_view text;
};

Piece::Kind kindOf(char c) {
    if (c == ' ' || c == '\t')
        return Piece::Kind::blank;
    if ((c >= '0' && c <= '9') || c == '.')
        return Piece::Kind::digits;
    // Bytes of other scripts belong to words: no number word may begin inside one.
    if ((c >= 'a' && c <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80)
        return Piece::Kind::word;
    return Piece::Kind::other;
}

std::vector<Piece> pieces(std::string_view text) {
    std::vector<Piece> result;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto kind = kindOf(text[begin]);
        std::size_t end = begin + 1;
        // A digit behind a letter is of the word ("log2", "x1"), a letter behind a digit is not.
        while (kind != Piece::Kind::other && end < text.size() &&
               (kindOf(text[end]) == kind ||
                (kind == Piece::Kind::word && kindOf(text[end]) == Piece::Kind::digits &&
                 text[end] != '.')))
            ++end;
        result.push_back({kind, text.substr(begin, end - begin)});
        begin = end;
    }
    return result;
}

std::optional<double> wordValue(const Piece& piece) {
    if (piece.kind != Piece::Kind::word)
        return std::nullopt;
    const auto words = AmountWords::wordNumbers();
    const auto found = std::ranges::find(words, piece.text, &AmountWords::NumberWord::word);
    return found == words.end() ? std::nullopt : std::optional(found->value);
}

std::optional<double> digitsValue(std::string_view digits) {
    double value = 0;
    const auto* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, std::chars_format::fixed);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

bool isScale(double value) {
    return value == 100 || value == 1000 || value == 1'000'000;
}

bool isTens(double value) {
    return value >= 20 && value < 100;
}

bool isUnit(double value) {
    return value >= 1 && value < 10 && value == static_cast<int>(value);
}

/// A number that is being put together of words: "two hundred" and "five" are one, "two" and
/// "five" are not.
struct Number {
    double finished = 0; ///< what thousands and millions have closed
    double closedBy = 0; ///< the last of those scales; 0 before the first
    double open = 0;     ///< below the next scale
    double last = 0;     ///< the word just taken

    double value() const { return finished + open; }

    bool takes(double next) const {
        if (isScale(next))
            return next != closedBy && next != last && (open != 0 || next > closedBy);
        if (isTens(last) && isUnit(next))
            return true;
        return isScale(last) && next >= 1 && next < last;
    }

    void take(double next) {
        if (next == 100) {
            open *= next;
        } else if (isScale(next)) {
            // "One million two hundred thousand" adds its thousands; in "two hundred thousand
            // million" the larger scale comes behind and multiplies all.
            finished = next < closedBy ? finished + open * next : (finished + open) * next;
            closedBy = next;
            open = 0;
        } else {
            open += next;
        }
        last = next;
    }
};

/// The words of one number from `begin` on, and where they end.
struct Run {
    double value = 0;
    std::size_t end = 0;
    bool isWord = false; ///< at least one word took part
    int parts = 1;       ///< words, and the digits that they stand behind
};

bool isBlank(const std::vector<Piece>& all, std::size_t at) {
    return at < all.size() && all[at].kind == Piece::Kind::blank;
}

/// Position of the piece that may go on with the number behind `at`: over blanks, over one hyphen
/// without blanks behind tens, or over the "and" of "two hundred and five".
std::size_t following(const std::vector<Piece>& all, std::size_t at, double last) {
    if (isBlank(all, at + 1)) {
        const bool isJoined = isScale(last) && at + 2 < all.size() && all[at + 2].text == "and" &&
                              isBlank(all, at + 3);
        return isJoined ? at + 4 : at + 2;
    }
    if (isTens(last) && at + 1 < all.size() && all[at + 1].text == "-")
        return at + 2;
    return all.size();
}

std::optional<Run> numberAt(const std::vector<Piece>& all, std::size_t begin) {
    const auto word = wordValue(all[begin]);
    const auto first = word                                     ? word
                       : all[begin].kind == Piece::Kind::digits ? digitsValue(all[begin].text)
                                                                : std::nullopt;
    if (!first)
        return std::nullopt;
    Number number{.open = *first, .last = *first};
    Run run{.value = *first, .end = begin + 1, .isWord = word.has_value()};
    // Digits take scales alone ("2.5 million"): "2 five" is no number.
    const bool isDigits = !word;
    for (auto at = begin;;) {
        const auto next = following(all, at, number.last);
        const auto value = next < all.size() ? wordValue(all[next]) : std::nullopt;
        const bool goesOn =
            value && (isDigits && number.last == *first ? isScale(*value) : number.takes(*value));
        if (!goesOn)
            return run;
        number.take(*value);
        run = {.value = number.value(), .end = next + 1, .isWord = true, .parts = run.parts + 1};
        at = next;
    }
}

/// All digits that the number has: a third is a third, not 0.33333333.
std::string inFullDigits(double value) {
    return value == std::trunc(value) ? fmt::format("{:.0f}", value) : fmt::format("{}", value);
}

} // namespace

std::string NumberPhrases::inDigits(std::string_view text) {
    const auto all = pieces(text);
    std::string result;
    for (std::size_t at = 0; at < all.size();) {
        const auto run = numberAt(all, at);
        if (run && run->isWord) {
            result += inFullDigits(run->value);
            at = run->end;
        } else {
            result += all[at].text;
            ++at;
        }
    }
    return result;
}

std::optional<double> NumberPhrases::wholeText(std::string_view text) {
    const auto all = pieces(text);
    if (all.empty())
        return std::nullopt;
    const auto run = numberAt(all, 0);
    if (!run || run->end != all.size() || run->parts < 2)
        return std::nullopt;
    return run->value;
}

} // namespace tessarine
