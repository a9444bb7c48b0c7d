#include "LauncherCore/answers/CalcSteps.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Pattern.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using Calc::Token;
using Kind = Token::Kind;

constexpr std::int64_t wordBits = 64;
constexpr double percent = 100;

/// Shifts to the left for a positive count and to the right, filling with the sign, for a negative
/// one. What is shifted out is gone, however large the count.
std::int64_t shifted(std::int64_t value, std::int64_t count) {
    if (count >= wordBits)
        return 0;
    if (count >= 0)
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << count);
    return value >> std::min(-std::max(count, -wordBits), wordBits - 1);
}

std::optional<double> bitwise(std::string_view op, double left, double right) {
    const auto a = Calc::truncated(left);
    const auto b = Calc::truncated(right);
    if (!a || !b)
        return std::nullopt;
    const auto result = [&]() -> std::int64_t {
        if (op == "&" || op == "and")
            return *a & *b;
        if (op == "|" || op == "or")
            return *a | *b;
        if (op == "<<")
            return shifted(*a, *b);
        if (op == ">>")
            return shifted(*a, -std::max(*b, -wordBits)); // the least number has no negative
        return *a ^ *b;
    };
    return static_cast<double>(result());
}

/// The values that are still to be used, and the steps that use them. Each is false where there is
/// no value: what is not a number is none, while an infinity may yet come to something.
class ValueStack {
public:
    explicit ValueStack(std::size_t most) {
        values_.reserve(most);
        isPercentage_.reserve(most);
    }

    enum class Is { plain, percentage };

    bool push(std::optional<double> value, Is is = Is::plain) {
        if (!value || std::isnan(*value))
            return false;
        values_.push_back(*value);
        isPercentage_.push_back(is == Is::percentage);
        return true;
    }

    bool applyPostfix(std::string_view op) {
        const auto operand = pop();
        if (!operand)
            return false;
        if (op == "%")
            return push(operand->value / percent, Is::percentage);
        return push(Calc::factorial(operand->value));
    }

    bool applyOperator(std::string_view op) {
        const auto right = pop();
        if (!right)
            return false;
        if (op == "u-")
            return push(-right->value, right->isPercentage ? Is::percentage : Is::plain);
        if (op == "u~") {
            const auto bits = Calc::truncated(right->value);
            return bits && push(static_cast<double>(~*bits));
        }
        const auto left = pop();
        return left && push(binary(op, left->value, *right));
    }

    bool call(std::string_view function, std::size_t count, Calc::AngleMode angle) {
        if (count < 1 || count > values_.size())
            return false;
        const auto first = values_.size() - count;
        const auto result = Calc::applied(function, std::span(values_).subspan(first), angle);
        values_.resize(first);
        isPercentage_.resize(first);
        return push(result);
    }

    std::optional<double> onlyValue() const {
        if (values_.size() != 1 || !std::isfinite(values_.front()))
            return std::nullopt;
        return values_.front();
    }

private:
    struct Operand {
        double value = 0;
        bool isPercentage = false;
    };

    static std::optional<double> binary(std::string_view op, double left, const Operand& right) {
        // Ten per cent more is ten per cent of what is there.
        const double change = right.isPercentage ? left * right.value : right.value;
        if (op == "+")
            return left + change;
        if (op == "-")
            return left - change;
        if (op == "*")
            return left * right.value;
        if (op == "/")
            return left / right.value;
        if (op == "mod")
            return std::fmod(left, right.value);
        if (op == "^")
            return std::pow(left, right.value);
        return bitwise(op, left, right.value);
    }

    std::optional<Operand> pop() {
        if (values_.empty())
            return std::nullopt;
        const Operand top{.value = values_.back(), .isPercentage = isPercentage_.back()};
        values_.pop_back();
        isPercentage_.pop_back();
        return top;
    }

    std::vector<double> values_;
    std::vector<bool> isPercentage_; ///< for each value
};

struct Assignment {
    std::string name; ///< lower case
    std::string expression;
};

std::optional<Assignment> assignment(std::string_view text) {
    static const Pattern form(R"(^\s*([a-zA-Z_][a-zA-Z0-9_]*)\s*=\s*(.+)$)");
    if (text.find('=') == std::string_view::npos)
        return std::nullopt;
    const auto match = form.match(text);
    if (!match)
        return std::nullopt;
    auto name = Folding::lowercase((*match)[1]);
    if (name == "ans" || Calc::constant(name) || Calc::isFunction(name))
        return std::nullopt;
    return Assignment{.name = std::move(name), .expression = (*match)[2]};
}

enum class Worth { judged, given };

std::optional<Calc::Compiled>
compiled(std::string_view expression, const Calc::Variables& variables, Worth worth) {
    if (expression.size() > Calc::maximumLength)
        return std::nullopt;
    auto list = Calc::tokenized(expression, variables);
    if (!list)
        return std::nullopt;
    list->tokens = Calc::withMultiplications(std::move(list->tokens));
    if (worth == Worth::judged && !Calc::isWorthAnswering(*list))
        return std::nullopt;
    const bool usesMemory = std::ranges::any_of(
        list->tokens, [](const Token& token) { return token.kind == Kind::variable; });
    auto rpn = Calc::postfix(std::move(list->tokens));
    if (!rpn)
        return std::nullopt;
    return Calc::Compiled{.rpn = *std::move(rpn), .usesMemory = usesMemory};
}

bool step(ValueStack& stack, const Token& token, const Calc::Context& context) {
    switch (token.kind) {
    case Kind::number:
    case Kind::constant:
        return stack.push(token.value);
    case Kind::variable: {
        const auto found = context.variables.find(token.name);
        return found != context.variables.end() && stack.push(found->second);
    }
    case Kind::postfix:
        return stack.applyPostfix(token.name);
    case Kind::op:
        return stack.applyOperator(token.name);
    case Kind::call:
        return stack.call(token.name, static_cast<std::size_t>(token.value), context.angle);
    case Kind::function:
    case Kind::lparen:
    case Kind::rparen:
    case Kind::comma:
        break; // none is left in postfix order
    }
    return false;
}

} // namespace

std::optional<Calc::Compiled> Calc::compile(std::string_view text, const Context& context) {
    return compiled(text, context.variables, Worth::judged);
}

std::optional<double> Calc::evaluate(const Compiled& compiled, const Context& context) {
    ValueStack stack(compiled.rpn.size());
    for (const auto& token : compiled.rpn) {
        if (!step(stack, token, context))
            return std::nullopt;
    }
    return stack.onlyValue();
}

std::optional<Calc::Evaluation> Calc::evaluate(std::string_view text, const Context& context) {
    if (text.size() > maximumLength)
        return std::nullopt;
    const auto assigned = assignment(text);
    const auto expression = assigned
                                ? compiled(assigned->expression, context.variables, Worth::given)
                                : compile(text, context);
    if (!expression)
        return std::nullopt;
    const auto value = evaluate(*expression, context);
    if (!value)
        return std::nullopt;
    Evaluation result{.value = *value, .usedMemory = expression->usesMemory};
    if (assigned)
        result.assignedName = assigned->name;
    return result;
}

std::optional<double> Calc::evaluate(std::string_view text) {
    static const Context plainContext;
    const auto evaluation = evaluate(text, plainContext);
    return evaluation ? std::optional(evaluation->value) : std::nullopt;
}

} // namespace tessarine
