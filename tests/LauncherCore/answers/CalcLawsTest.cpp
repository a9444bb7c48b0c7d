// The calculator against another one: a recursive descent that works out the value while it reads.

#include "LauncherCore/answers/Calc.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {
namespace {

/// One rule of the grammar a function, the loosest operator first. Knows ASCII digits, round
/// brackets, the variables q and y, and some functions.
class Descent {
public:
    Descent(std::string_view text, const Calc::Variables& variables)
        : text_(text), variables_(variables) {}

    std::optional<double> value() {
        const auto result = binary(0);
        if (failed_ || peek() != '\0' || !std::isfinite(result.number))
            return std::nullopt;
        return result.number;
    }

private:
    struct Result {
        double number = 0;
        bool isPercentage = false;
    };

    /// The operators of each strength.
    inline static const std::vector<std::vector<std::string>> levels = {
        {"or", "|"}, {"xor"}, {"and", "&"}, {"<<", ">>"}, {"+", "-"}, {"*", "/", "mod", ""}};

    char peek() {
        while (at_ < text_.size() && text_[at_] == ' ')
            ++at_;
        return at_ < text_.size() ? text_[at_] : '\0';
    }

    bool beginsValue() {
        const char c = peek();
        return std::isalnum(static_cast<unsigned char>(c)) || c == '(' || c == '.';
    }

    Result fail() {
        failed_ = true;
        return {};
    }

    /// The operator of this level that comes next; "" is the product that isn't written.
    std::optional<std::string> next(const std::vector<std::string>& operators) {
        peek();
        for (const auto& op : operators) {
            const auto rest = text_.substr(at_);
            const bool isWord = !op.empty() && std::isalpha(static_cast<unsigned char>(op[0]));
            if (op.empty()) {
                for (const auto* word : {"or", "xor", "and", "mod"}) {
                    if (rest.starts_with(word))
                        return std::nullopt;
                }
                const bool twoNumbers =
                    endedNumber_ &&
                    (std::isdigit(static_cast<unsigned char>(peek())) || peek() == '.');
                if (beginsValue() && !twoNumbers)
                    return op;
            } else if (rest.starts_with(op) &&
                       !(isWord && rest.size() > op.size() &&
                         std::isalnum(static_cast<unsigned char>(rest[op.size()])))) {
                at_ += op.size();
                return op;
            }
        }
        return std::nullopt;
    }

    Result binary(std::size_t level) {
        if (level == levels.size())
            return power();
        auto left = binary(level + 1);
        while (!failed_) {
            const auto op = next(levels[level]);
            if (!op)
                break;
            left = {.number = apply(*op, left.number, binary(level + 1))};
        }
        return left;
    }

    double apply(const std::string& op, double left, const Result& right) {
        if (op == "+" || op == "-") {
            const double change = right.isPercentage ? left * right.number : right.number;
            return checked(op == "+" ? left + change : left - change);
        }
        if (op == "*" || op.empty())
            return checked(left * right.number);
        if (op == "/")
            return checked(left / right.number);
        if (op == "mod")
            return checked(std::fmod(left, right.number));
        const auto a = bits(left);
        const auto b = bits(right.number);
        if (failed_)
            return 0;
        if (op == "or" || op == "|")
            return static_cast<double>(a | b);
        if (op == "xor")
            return static_cast<double>(a ^ b);
        if (op == "and" || op == "&")
            return static_cast<double>(a & b);
        return shift(a, op == "<<" ? b : -std::max<std::int64_t>(b, -100));
    }

    /// By doubling and halving, one place at a time.
    static double shift(std::int64_t value, std::int64_t count) {
        for (int i = 0; i < 64 && i < count; ++i)
            value = static_cast<std::int64_t>(static_cast<std::uint64_t>(value) * 2);
        for (int i = 0; i < 64 && i < -std::max<std::int64_t>(count, -100); ++i)
            value = (value - (value & 1)) / 2;
        return static_cast<double>(value);
    }

    std::int64_t bits(double value) {
        if (std::isfinite(value) && value >= -9223372036854775808.0 &&
            value < 9223372036854775808.0)
            return static_cast<std::int64_t>(value);
        failed_ = true;
        return 0;
    }

    double checked(double value) {
        if (std::isnan(value))
            failed_ = true;
        return value;
    }

    Result power() {
        auto base = sign();
        if (failed_ || peek() != '^')
            return base;
        ++at_;
        const auto exponent = power();
        return {.number = checked(std::pow(base.number, exponent.number))};
    }

    Result sign() {
        if (peek() == '-') {
            ++at_;
            const auto operand = sign();
            return {.number = -operand.number, .isPercentage = operand.isPercentage};
        }
        if (peek() == '~') {
            ++at_;
            return {.number = static_cast<double>(~bits(sign().number))};
        }
        return marked();
    }

    Result marked() {
        auto result = primary();
        while (!failed_ && (peek() == '!' || peek() == '%')) {
            endedNumber_ = false;
            if (text_[at_++] == '%') {
                result = {.number = result.number / 100, .isPercentage = true};
                continue;
            }
            const double n = result.number;
            if (!(n >= 0 && n <= 170 && n == std::floor(n)))
                return fail();
            result = {.number = std::round(n) < 2 ? 1 : product(static_cast<int>(n))};
        }
        return result;
    }

    static double product(int n) { return n < 2 ? 1 : product(n - 1) * n; }

    Result primary() {
        const char c = peek();
        if (c == '(') {
            ++at_;
            const auto inner = binary(0);
            if (failed_ || peek() != ')')
                return fail();
            ++at_;
            endedNumber_ = false;
            return inner;
        }
        if (std::isdigit(static_cast<unsigned char>(c)) || c == '.')
            return number();
        if (std::isalpha(static_cast<unsigned char>(c)))
            return named();
        return fail();
    }

    Result number() {
        const auto end = std::min(text_.find_first_not_of("0123456789.", at_), text_.size());
        const std::string digits(text_.substr(at_, end - at_));
        at_ = end;
        endedNumber_ = true;
        if (std::ranges::count(digits, '.') > 1 || digits == ".")
            return fail();
        return {.number = std::stod(digits)};
    }

    Result named() {
        const auto start = at_;
        while (at_ < text_.size() && std::isalnum(static_cast<unsigned char>(text_[at_])))
            ++at_;
        const std::string name(text_.substr(start, at_ - start));
        endedNumber_ = false;
        if (const auto found = variables_.find(name); found != variables_.end())
            return {.number = checked(found->second)};
        if (name == "pi")
            return {.number = 3.141592653589793};
        if (name == "tau")
            return {.number = 6.283185307179586};
        return peek() == '(' ? called(name) : fail();
    }

    Result called(const std::string& name) {
        std::vector<double> arguments;
        do {
            ++at_;
            arguments.push_back(binary(0).number);
        } while (!failed_ && peek() == ',');
        if (failed_ || peek() != ')')
            return fail();
        ++at_;
        endedNumber_ = false;
        const bool isOne = arguments.size() == 1;
        if (name == "abs" && isOne)
            return {.number = std::abs(arguments[0])};
        if (name == "floor" && isOne)
            return {.number = std::floor(arguments[0])};
        if (name == "sqrt" && isOne)
            return {.number = checked(std::sqrt(arguments[0]))};
        if (name == "max")
            return {.number = *std::ranges::max_element(arguments)};
        if (name == "count")
            return {.number = static_cast<double>(arguments.size())};
        if (name == "pow" && arguments.size() == 2)
            return {.number = checked(std::pow(arguments[0], arguments[1]))};
        return fail();
    }

    std::string_view text_;
    const Calc::Variables& variables_;
    std::size_t at_ = 0;
    bool failed_ = false;
    bool endedNumber_ = false; ///< the value just read ends with a plain number
};

/// Makes expressions, most of them whole. None holds what the descent can't read: no slip makes a
/// hexadecimal number, an exponent or a grouped one.
class Typist {
public:
    std::string expression(int depth) {
        static const std::vector<std::string> operators = {
            "+", "-", "*", "/", "^", " mod ", " and ", " or ", " xor ", "&", "|", "<<", ">>", " "};
        switch (depth <= 0 ? 0 : below(7)) {
        case 0:
        case 1:
            return leaf();
        case 2:
            return (below(3) == 0 ? "~" : "-") + expression(depth - 1);
        case 3:
            return "(" + expression(depth - 1) + ")" + pick({"", "", "!", "%", "%"});
        case 4:
            return pick({"abs", "floor", "sqrt", "max", "count"}) + "(" + expression(depth - 1) +
                   ")";
        case 5:
            return pick({"pow", "max", "count"}) + "(" + expression(depth - 1) + ", " +
                   expression(depth - 2) + ")";
        default:
            return expression(depth - 1) + pick(operators) + expression(depth - 1);
        }
    }

    std::string withSlip(std::string text) {
        const auto at = below(text.size() + 1);
        if (below(2) == 0)
            text.erase(at, 1);
        else
            text.insert(at, pick({"(", ")", ", ", "+", "!", "%", " ", "3", "q", "-", "~", "^"}));
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    std::string pick(const std::vector<std::string>& from) { return from[below(from.size())]; }

    std::string leaf() {
        return pick({"0",
                     "1",
                     "2",
                     "3",
                     "7",
                     "10",
                     "0.5",
                     "12.25",
                     "100",
                     "q",
                     "y",
                     "pi",
                     "tau",
                     "20%",
                     "5!",
                     "64",
                     "1.",
                     ".75"});
    }

    std::mt19937 random_{7};
};

TEST(CalcLaws, agreesWithARecursiveDescent) {
    const Calc::Context context{.variables = {{"q", -4}, {"y", 1e10}}};
    Typist typist;
    int values = 0;
    for (int i = 0; i < 40'000; ++i) {
        auto text = typist.expression(1 + i % 5);
        if (i % 3 == 0)
            text = typist.withSlip(std::move(text));
        // As an assignment, so that a lone figure is answered too.
        const auto found = Calc::evaluate("v = " + text, context);
        const auto expected = Descent(text, context.variables).value();
        ASSERT_EQ(found.has_value(), expected.has_value()) << text;
        if (!found)
            continue;
        ++values;
        ASSERT_NEAR(found->value, *expected, 1e-12 * std::abs(*expected)) << text;
    }
    EXPECT_GT(values, 10'000) << "too few of the expressions mean anything";
}

} // namespace
} // namespace tessarine
