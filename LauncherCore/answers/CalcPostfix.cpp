#include "LauncherCore/answers/CalcSteps.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using Calc::Token;
using Kind = Token::Kind;

constexpr std::string_view minusSign = "u-"; ///< in front of a value
constexpr std::string_view bitwiseNot = "u~";

/// How tightly an operator binds. A minus sign binds tighter than a power: -2^2 is 4.
int precedence(std::string_view op) {
    static constexpr auto table = std::to_array<std::pair<std::string_view, int>>({
        {"or", 1},
        {"|", 1},
        {"xor", 2},
        {"and", 3},
        {"&", 3},
        {"<<", 4},
        {">>", 4},
        {"+", 5},
        {"-", 5},
        {"*", 6},
        {"/", 6},
        {"mod", 6},
        {"^", 8},
        {minusSign, 9},
        {bitwiseNot, 9},
    });
    const auto* const found =
        std::ranges::find(table, op, &std::pair<std::string_view, int>::first);
    return found == table.end() ? 0 : found->second;
}

bool isUnary(const Token& op) {
    return op.name == minusSign || op.name == bitwiseNot;
}

bool isRightAssociative(const Token& op) {
    return op.name == "^" || isUnary(op);
}

bool beginsValue(const Token& token) {
    switch (token.kind) {
    case Kind::number:
    case Kind::variable:
    case Kind::constant:
    case Kind::function:
    case Kind::lparen:
        return true;
    default:
        return false;
    }
}

/// Whether operands and operators take turns as they must. Postfix order alone would read "2 3 +"
/// as a sum, and give a function without arguments the value in front of it.
bool takesTurns(const std::vector<Token>& tokens) {
    bool hasValue = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const auto& token = tokens[i];
        const bool continuesValue = token.kind == Kind::postfix || token.kind == Kind::rparen ||
                                    token.kind == Kind::comma ||
                                    (token.kind == Kind::op && !isUnary(token));
        if (continuesValue != hasValue)
            return false;
        if (token.kind == Kind::function &&
            (i + 1 == tokens.size() || tokens[i + 1].kind != Kind::lparen))
            return false;
        hasValue = Calc::endsValue(token);
    }
    return hasValue;
}

/// Edsger Dijkstra's shunting-yard.
class Yard {
public:
    explicit Yard(std::size_t tokens) { output_.reserve(tokens + tokens / 2); }

    bool take(Token token) {
        switch (token.kind) {
        case Kind::number:
        case Kind::variable:
        case Kind::constant:
        case Kind::postfix:
        case Kind::call:
            output_.push_back(std::move(token));
            return true;
        case Kind::function:
            waiting_.push_back(std::move(token));
            return true;
        case Kind::op:
            takeOperator(std::move(token));
            return true;
        case Kind::lparen:
            brackets_.push_back(
                {.opensArguments = !waiting_.empty() && waiting_.back().kind == Kind::function});
            waiting_.push_back(std::move(token));
            return true;
        case Kind::comma:
            if (brackets_.empty() || !brackets_.back().opensArguments)
                return false;
            putOutToBracket();
            ++brackets_.back().arguments;
            return true;
        case Kind::rparen:
            return close();
        }
        return false;
    }

    std::optional<std::vector<Token>> finish() {
        if (!brackets_.empty())
            return std::nullopt;
        while (!waiting_.empty())
            putOut();
        return std::move(output_);
    }

private:
    struct Bracket {
        bool opensArguments = false; ///< of a function
        int arguments = 1;
    };

    void takeOperator(Token op) {
        const int strength = precedence(op.name);
        const bool isRight = isRightAssociative(op);
        while (!waiting_.empty() && waiting_.back().kind == Kind::op) {
            const int other = precedence(waiting_.back().name);
            if (other < strength || (other == strength && isRight))
                break;
            putOut();
        }
        waiting_.push_back(std::move(op));
    }

    bool close() {
        if (brackets_.empty())
            return false;
        const auto bracket = brackets_.back();
        brackets_.pop_back();
        putOutToBracket();
        waiting_.pop_back();
        if (bracket.opensArguments) {
            output_.push_back({.kind = Kind::call,
                               .value = static_cast<double>(bracket.arguments),
                               .name = std::move(waiting_.back().name)});
            waiting_.pop_back();
        }
        return true;
    }

    void putOut() {
        output_.push_back(std::move(waiting_.back()));
        waiting_.pop_back();
    }

    void putOutToBracket() {
        while (waiting_.back().kind != Kind::lparen)
            putOut();
    }

    std::vector<Token> output_;
    std::vector<Token> waiting_; ///< operators, functions and brackets
    std::vector<Bracket> brackets_;
};

} // namespace

bool Calc::endsValue(const Token& token) {
    switch (token.kind) {
    case Kind::number:
    case Kind::variable:
    case Kind::constant:
    case Kind::postfix:
    case Kind::rparen:
        return true;
    default:
        return false;
    }
}

std::vector<Token> Calc::withMultiplications(std::vector<Token> tokens) {
    std::vector<Token> result;
    result.reserve(tokens.size() + tokens.size() / 2);
    for (auto& token : tokens) {
        if (!result.empty() && endsValue(result.back()) && beginsValue(token) &&
            (result.back().kind != Kind::number || token.kind != Kind::number))
            result.push_back({.kind = Kind::op, .name = "*"});
        result.push_back(std::move(token));
    }
    return result;
}

bool Calc::isWorthAnswering(const TokenList& list) {
    const auto holds = [&](std::initializer_list<Kind> kinds) {
        return std::ranges::any_of(list.tokens, [&](const Token& token) {
            return std::ranges::find(kinds, token.kind) != kinds.end();
        });
    };
    return holds({Kind::number, Kind::variable, Kind::constant}) &&
           (list.hasSpecialNotation ||
            holds({Kind::function, Kind::op, Kind::postfix, Kind::lparen}));
}

std::optional<std::vector<Token>> Calc::postfix(std::vector<Token> tokens) {
    if (!takesTurns(tokens))
        return std::nullopt;
    Yard yard(tokens.size());
    for (auto& token : tokens) {
        if (!yard.take(std::move(token)))
            return std::nullopt;
    }
    return yard.finish();
}

} // namespace tessarine
