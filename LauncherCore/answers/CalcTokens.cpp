#include "LauncherCore/answers/CalcSteps.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Scalars.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using Calc::Token;
using Kind = Token::Kind;

constexpr unsigned char firstBeyondAscii = 0x80;
constexpr std::string_view enDash = "\u2013";

bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The expression in the calculator's own signs.
struct Rewritten {
    std::string text;
    bool hasDigitGroups = false; ///< "_" stood between two digits
};

Rewritten rewritten(std::string_view text) {
    // Names that the user typed keep none of their underscores either, so a variable that was
    // given one can be kept and listed, but not read.
    static constexpr std::pair<std::string_view, char> signs[] = {
        {"\u00d7", '*'}, {"\u00f7", '/'}, {"\u2212", '-'}};
    Rewritten result;
    result.text.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == '_') {
            result.hasDigitGroups |= !result.text.empty() && isAsciiDigit(result.text.back()) &&
                                     i + 1 < text.size() && isAsciiDigit(text[i + 1]);
            ++i;
            continue;
        }
        const auto* const sign = std::ranges::find_if(
            signs, [&](const auto& each) { return text.substr(i).starts_with(each.first); });
        const bool isSign = sign != std::end(signs);
        const char written = isSign ? sign->second : text[i];
        i += isSign ? sign->first.size() : 1;
        if (written == '*' && result.text.ends_with('*'))
            result.text.back() = '^';
        else
            result.text += written;
    }
    return result;
}

/// Reads tokens from the front to the back of a text. Each scalar counts as a character: the
/// digits, letters and signs that mean anything here are of one scalar each, and a mark that joins
/// one of them into something else is no token by itself either.
class Tokenizer {
public:
    Tokenizer(std::string_view text, const Calc::Variables& variables)
        : text_(text), variables_(variables) {
        tokens_.reserve(text.size() / 2 + 1);
    }

    std::optional<Calc::TokenList> tokens() {
        while (at_ < text_.size()) {
            if (!readOne())
                return std::nullopt;
        }
        if (tokens_.empty())
            return std::nullopt;
        return Calc::TokenList{.tokens = std::move(tokens_),
                               .hasSpecialNotation = hasSpecialNotation_};
    }

private:
    bool readOne() {
        const char c = text_[at_];
        if (c == ' ' || c == '\t') {
            ++at_;
            return true;
        }
        if (c == '0' && (next() == 'x' || next() == 'X'))
            return readInBase(16);
        if (c == '0' && (next() == 'b' || next() == 'B'))
            return readInBase(2);
        if (digit(at_) || (c == '.' && digit(at_ + 1)))
            return readNumber();
        if (letterBytes(at_) > 0)
            return readName();
        return readSign(c);
    }

    /// The character behind the one at hand; 0 at the end.
    char next() const { return at_ + 1 < text_.size() ? text_[at_ + 1] : '\0'; }

    struct Digit {
        char ascii = '0';
        std::size_t bytes = 1;
    };

    /// A decimal digit of any script.
    std::optional<Digit> digit(std::size_t at) const {
        if (at >= text_.size())
            return std::nullopt;
        if (static_cast<unsigned char>(text_[at]) < firstBeyondAscii)
            return isAsciiDigit(text_[at]) ? std::optional(Digit{.ascii = text_[at]})
                                           : std::nullopt;
        const auto scalar = Scalars::at(text_, at);
        const auto value = u_charDigitValue(static_cast<UChar32>(scalar.value));
        if (value < 0)
            return std::nullopt;
        return Digit{.ascii = static_cast<char>('0' + value), .bytes = scalar.bytes};
    }

    /// How many bytes the letter at this place takes; 0 for anything else.
    std::size_t letterBytes(std::size_t at) const {
        if (static_cast<unsigned char>(text_[at]) < firstBeyondAscii)
            return isAsciiLetter(text_[at]) ? 1 : 0;
        const auto scalar = Scalars::at(text_, at);
        return Scalars::isLetter(scalar.value) ? scalar.bytes : 0;
    }

    bool isInArguments() const {
        return !bracketOpensArguments_.empty() && bracketOpensArguments_.back();
    }

    bool endsValue() const { return !tokens_.empty() && Calc::endsValue(tokens_.back()); }

    bool add(Kind kind, std::string name, std::size_t bytes) {
        tokens_.push_back({.kind = kind, .name = std::move(name)});
        at_ += bytes;
        return true;
    }

    bool readInBase(int radix) {
        const auto* const first = text_.data() + at_ + 2;
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(first, text_.data() + text_.size(), value, radix);
        if (end == first || error != std::errc())
            return false;
        hasSpecialNotation_ = true;
        tokens_.push_back({.kind = Kind::number, .value = static_cast<double>(value)});
        at_ = static_cast<std::size_t>(end - text_.data());
        return true;
    }

    void collect(std::string& number, const Digit& found) {
        number += found.ascii;
        at_ += found.bytes;
    }

    bool readNumber() {
        std::string number;
        while (at_ < text_.size()) {
            if (const auto found = digit(at_))
                collect(number, *found);
            else if (text_[at_] == '.')
                number += text_[at_++];
            else if (text_[at_] == ',' && digit(at_ + 1) && !isInArguments())
                ++at_;
            else
                break;
        }
        readExponent(number);
        double value = 0;
        const auto* const end = number.data() + number.size();
        const auto [read, error] = std::from_chars(number.data(), end, value);
        if (read != end || error != std::errc())
            return false;
        tokens_.push_back({.kind = Kind::number, .value = value});
        return true;
    }

    /// There is no "+" in an exponent: 1e+3 is a sum.
    void readExponent(std::string& number) {
        if (at_ >= text_.size() || (text_[at_] != 'e' && text_[at_] != 'E'))
            return;
        const bool isNegative = next() == '-';
        const auto first = at_ + (isNegative ? 2 : 1);
        if (!digit(first))
            return;
        hasSpecialNotation_ = true;
        number += isNegative ? "e-" : "e";
        at_ = first;
        while (const auto found = digit(at_))
            collect(number, *found);
    }

    bool readName() {
        const auto start = at_;
        while (at_ < text_.size()) {
            const auto found = digit(at_);
            const auto bytes = found ? found->bytes : letterBytes(at_);
            if (bytes == 0)
                break;
            at_ += bytes;
        }
        auto name = Folding::lowercase(text_.substr(start, at_ - start));
        if (Calc::isOperatorName(name))
            return add(Kind::op, std::move(name), 0);
        if (Calc::isFunction(name))
            return add(Kind::function, std::move(name), 0);
        if (const auto value = Calc::constant(name)) {
            tokens_.push_back({.kind = Kind::constant, .value = *value});
            return true;
        }
        const bool isVariable = name == "ans" || variables_.contains(name);
        return isVariable && add(Kind::variable, std::move(name), 0);
    }

    bool readSign(char c) {
        switch (c) {
        case '(':
        case '[':
        case '{':
            bracketOpensArguments_.push_back(!tokens_.empty() &&
                                             tokens_.back().kind == Kind::function);
            return add(Kind::lparen, {}, 1);
        case ')':
        case ']':
        case '}':
            if (!bracketOpensArguments_.empty())
                bracketOpensArguments_.pop_back();
            return add(Kind::rparen, {}, 1);
        case ',':
            return add(Kind::comma, {}, 1);
        case '!':
        case '%':
            return endsValue() && add(Kind::postfix, {c}, 1);
        case '+':
        case '*':
        case '/':
        case '^':
        case '&':
        case '|':
            return add(Kind::op, {c}, 1);
        case '-':
            return add(Kind::op, endsValue() ? "-" : "u-", 1);
        case '<':
        case '>':
            return next() == c && add(Kind::op, {c, c}, 2);
        case '~':
            return add(Kind::op, "u~", 1);
        default:
            return text_.substr(at_).starts_with(enDash) &&
                   add(Kind::op, endsValue() ? "-" : "u-", enDash.size());
        }
    }

    const std::string_view text_;
    const Calc::Variables& variables_;
    std::size_t at_ = 0;
    std::vector<Token> tokens_;
    std::vector<bool> bracketOpensArguments_; ///< for each bracket that is open
    bool hasSpecialNotation_ = false;
};

} // namespace

std::optional<Calc::TokenList> Calc::tokenized(std::string_view expression,
                                               const Variables& variables) {
    const auto [text, hasDigitGroups] = rewritten(expression);
    auto list = Tokenizer(text, variables).tokens();
    if (list && hasDigitGroups)
        list->hasSpecialNotation = true;
    return list;
}

} // namespace tessarine
