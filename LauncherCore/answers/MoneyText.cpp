#include "LauncherCore/answers/MoneyText.h"

#include "LauncherCore/answers/AmountWords.h"
#include "LauncherCore/answers/CurrencyWords.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Pattern.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Answers::MoneyText;

/// Bytes; twice the longest names of two countries.
constexpr std::size_t longestQuestion = 200;

constexpr auto askingWords = std::to_array<std::string_view>({
    "convert ",
    "exchange ",
    "calculate ",
    "what is ",
    "what's ",
    "what’s ",
    "whats ",
    "how much is ",
    "how much are ",
});

struct Magnitude {
    std::string_view word;
    double value;
};

constexpr Magnitude magnitudes[] = {{"k", 1e3},
                                    {"m", 1e6},
                                    {"b", 1e9},
                                    {"bn", 1e9},
                                    {"hundred", 1e2},
                                    {"thousand", 1e3},
                                    {"million", 1e6},
                                    {"billion", 1e9}};

double magnitude(std::string_view word) {
    const auto found = std::ranges::find(magnitudes, word, &Magnitude::word);
    return found == std::end(magnitudes) ? 1 : found->value;
}

/// Whether each comma parts thousands: one to three digits before the first, three after each.
bool commasGroup(std::string_view figure) {
    const auto whole = figure.substr(0, figure.find('.'));
    if (figure.find(',', whole.size()) != std::string_view::npos)
        return false;
    auto comma = whole.find(',');
    if (comma == std::string_view::npos)
        return true;
    if (comma == 0 || comma > 3)
        return false;
    for (; comma != std::string_view::npos; comma = whole.find(',', comma + 1))
        if (std::min(whole.find(',', comma + 1), whole.size()) != comma + 4)
            return false;
    return true;
}

/// "3,50": one comma between digits, and no point.
bool isDecimalComma(std::string_view figure) {
    const auto comma = figure.find(',');
    return comma != std::string_view::npos && comma > 0 && comma + 1 < figure.size() &&
           figure.find_first_of(",.", comma + 1) == std::string_view::npos &&
           figure.find('.') == std::string_view::npos;
}

/// Nothing for two points, commas that part no thousands, and what no double holds.
std::optional<double> number(std::string figure) {
    // "0,125" is a decimal comma: nobody groups a zero.
    if (commasGroup(figure) && !figure.starts_with("0,"))
        std::erase(figure, ',');
    else if (isDecimalComma(figure))
        std::ranges::replace(figure, ',', '.');
    else
        return std::nullopt;
    double value = 0;
    const auto* end = figure.data() + figure.size();
    const auto [stop, error] = std::from_chars(figure.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

/// `minus` is a group of a sign, `first` the group of the figure and the two after it of its size.
std::optional<MoneyText> read(const Pattern::Match& match,
                              MoneyText::Form form,
                              std::size_t minus,
                              std::size_t first,
                              std::string currency) {
    auto value = number(match[first]);
    if (!value)
        return std::nullopt;
    *value *= magnitude(match[first + 1]) * magnitude(match[first + 2]);
    if (!std::isfinite(*value))
        return std::nullopt;
    return MoneyText{.form = form,
                     .amount = match.has(minus) ? -*value : *value,
                     .figure = match[first],
                     .currency = std::move(currency)};
}

/// Adds up the words of a number as they come: "two", "hundred", "twenty-five", "half", "a".
class WordSum {
public:
    /// False for a word that can't follow the ones before.
    bool take(std::string_view word) {
        const auto value = AmountWords::amount(word);
        if (!value)
            return false;
        if (word == "a" || word == "an") { // "a dollar", "a hundred", "half a dollar"
            if (isArticle_ || (group_ >= 1 && !isEmpty_))
                return false;
            isArticle_ = true;
            group_ = isEmpty_ ? 1 : group_;
        } else if (*value >= 100) {
            if (!isEmpty_ && group_ == 0) // "two million thousand"
                return false;
            group_ = (isEmpty_ ? 1 : group_) * *value;
            if (*value >= 1000)
                total_ += std::exchange(group_, 0);
            isArticle_ = false;
        } else if (isEmpty_ || isArticle_ || std::fmod(group_, 100) == 0) {
            group_ = isArticle_ ? *value : group_ + *value;
            isArticle_ = false;
        } else if (std::fmod(group_, 10) == 0 && std::fmod(group_, 100) >= 20 && *value < 10) {
            group_ += *value;
        } else {
            return false;
        }
        isEmpty_ = false;
        return true;
    }

    std::optional<double> value() const {
        return isEmpty_ ? std::nullopt : std::optional(total_ + group_);
    }

private:
    double total_ = 0; ///< thousands and millions
    double group_ = 0; ///< what is below a thousand, so far
    bool isEmpty_ = true;
    bool isArticle_ = false; ///< the word before was "a"
};

/// "five dollars": nothing without a number's word, and without more words behind it.
std::optional<MoneyText> amountInWords(std::string_view text) {
    WordSum sum;
    while (true) {
        const auto end = text.find_first_of(" -");
        if (end == std::string_view::npos || !sum.take(text.substr(0, end)))
            break;
        text = Folding::trimmed(text.substr(end + 1));
    }
    const auto value = sum.value();
    if (!value || text.empty())
        return std::nullopt;
    return MoneyText{.form = MoneyText::Form::amountInWords,
                     .amount = *value,
                     .figure = {},
                     .currency = std::string(text)};
}

struct Patterns {
    Pattern amountFirst;
    Pattern signFirst;
    Pattern codeFirst;
    Pattern signAndCode;
};

Patterns makePatterns() {
    const std::string minus = R"((minus\s+|[-−])?\s*)";
    // A figure and how many times it counts: "5k", "5 million".
    const std::string figure =
        R"(([\d.,]+(?:e\d{1,2})?)(?:(k|m|bn|b)(?!\p{L})|\s+(hundred|thousand|million|)"
        R"(billion)(?!\p{L}))?)";
    return {
        .amountFirst = Pattern(
            "^" + minus + figure +
            R"(\s*([\p{L}€£¥$₹₩₽₺₫฿₪₴][\p{L}€£¥$₹₩₽₺₫฿₪₴& .'’-]*)?$)"),
        .signFirst = Pattern("^" + minus + R"((\p{L}{0,2}[€£¥$₹₩₽₺₫฿₪₴])\s*)" +
                             figure + "$"),
        .codeFirst = Pattern(R"(^(\p{L}{3})\s*)" + minus + figure + "$"),
        .signAndCode = Pattern("^" + minus + R"(([€£¥$])\s*)" + figure + R"(\s*([a-z]{3})$)"),
    };
}

const Patterns& patterns() {
    static const auto all = makePatterns();
    return all;
}

std::string capitals(std::string word) {
    for (char& c : word)
        c = static_cast<char>(c - 'a' + 'A');
    return word;
}

std::optional<MoneyText> figureWithCurrency(std::string_view text) {
    using Form = MoneyText::Form;
    if (const auto match = patterns().amountFirst.match(text)) {
        // "100m" are metres or minutes before they are millions of an unsaid currency.
        if (!match->has(5) && match->has(3) && (*match)[3] == "m")
            return std::nullopt;
        return read(*match,
                    match->has(5) ? Form::amountFirst : Form::amountAlone,
                    1,
                    2,
                    std::string(Folding::trimmed((*match)[5])));
    }
    if (const auto match = patterns().signFirst.match(text))
        return read(*match, Form::signFirst, 1, 3, (*match)[2]);
    if (const auto match = patterns().codeFirst.match(text))
        return read(*match, Form::codeFirst, 2, 3, (*match)[1]);
    if (const auto match = patterns().signAndCode.match(text))
        if (Answers::goesBySign(capitals((*match)[6]), (*match)[2]))
            return read(*match, Form::amountFirst, 1, 3, (*match)[6]);
    return std::nullopt;
}

/// "50 cents" are half of a dollar.
MoneyText inWholeUnits(MoneyText money) {
    constexpr std::pair<std::string_view, std::string_view> hundredths[] = {
        {"cents", "$"}, {"us cents", "usd"}, {"euro cents", "eur"}, {"pence", "£"}};
    for (const auto& [word, whole] : hundredths)
        if (money.currency == word) {
            money.amount /= 100;
            money.currency = whole;
            break;
        }
    return money;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Or the sign of a currency that isn't ASCII.
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80;
}

} // namespace

std::optional<MoneyText> Answers::moneyText(std::string_view text) {
    if (std::ranges::any_of(text, isDigit)) {
        auto money = figureWithCurrency(text);
        return money ? std::optional(inWholeUnits(*std::move(money))) : std::nullopt;
    }
    if (text.empty() || !isLetter(text.front()))
        return std::nullopt;
    if (auto money = amountInWords(text))
        return money;
    return MoneyText{
        .form = MoneyText::Form::noAmount, .figure = {}, .currency = std::string(text)};
}

std::optional<std::string> Answers::tidied(std::string_view text) {
    if (text.size() > longestQuestion)
        return std::nullopt;
    const auto lower = Folding::lowercase(Folding::trimmed(text));
    std::string_view question = lower;
    for (const auto words : askingWords)
        if (question.starts_with(words)) {
            question.remove_prefix(words.size());
            break;
        }
    while (question.ends_with('?') || question.ends_with('=') || question.ends_with(' '))
        question.remove_suffix(1);
    return std::string(Folding::trimmed(question));
}

} // namespace tessarine
