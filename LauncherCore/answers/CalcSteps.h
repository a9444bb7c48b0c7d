#pragma once

#include "LauncherCore/answers/Calc.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The steps from a text to its value, in their order: tokens, multiplications, worth, postfix,
/// and what a function does once its arguments are known. For the calculator's own files.
namespace tessarine::Calc {

/// A text taken apart, in the order in which it was typed.
struct TokenList {
    std::vector<Token> tokens;
    /// A number is written in hexadecimal, in binary, with an exponent or with "_" between its
    /// digits: somebody who types that alone wants to see the plain figure.
    bool hasSpecialNotation = false;
};

/// Nothing for a text with anything in it that is no token, and for an empty one.
std::optional<TokenList> tokenized(std::string_view expression, const Variables& variables);

/// With the multiplications that nobody writes, as in "2 pi" and "(2)(3)".
std::vector<Token> withMultiplications(std::vector<Token> tokens);

/// Whether there is something to work out, not a figure or a name alone. Written multiplications
/// count, so this is asked behind `withMultiplications`.
bool isWorthAnswering(const TokenList& list);

/// In postfix order; nothing for what is no whole expression: an operand or a bracket too few or
/// too many, a function without arguments.
std::optional<std::vector<Token>> postfix(std::vector<Token> tokens);

/// Whether a value may end with this token.
bool endsValue(const Token& token);

bool isFunction(std::string_view lowerCaseName);
std::optional<double> constant(std::string_view lowerCaseName);

/// Whether the name is an operator's: "mod", "xor", "and" or "or".
bool isOperatorName(std::string_view lowerCaseName);

/// Nothing for a wrong number of arguments, and where the function has no value.
std::optional<double>
applied(std::string_view function, std::span<const double> arguments, AngleMode angle);

/// The product of the whole numbers up to `value`; nothing unless it is whole and from 0 to 170,
/// beyond which no double holds it.
std::optional<double> factorial(double value);

/// The value without its fraction; nothing outside signed 64 bits.
std::optional<std::int64_t> truncated(double value);

} // namespace tessarine::Calc
