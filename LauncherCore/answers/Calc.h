#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {
class Formats;
} // namespace tessarine

/// Arithmetic behind every typed expression: one line of text in, a number or nothing out. Nothing
/// is the only failure, since an expression that isn't finished is no answer yet.
/// Pure but for `random`; any thread.
namespace tessarine::Calc {

enum class AngleMode { degrees, radians };

using Variables = std::map<std::string, double, std::less<>>;

struct Context {
    AngleMode angle = AngleMode::degrees;
    Variables variables; ///< by lower-case name; "ans" is the last answer
};

struct Evaluation {
    double value = 0;                        ///< finite
    std::optional<std::string> assignedName; ///< lower case, of "rent = 1200"
    bool usedMemory = false;                 ///< a variable was read

    bool operator==(const Evaluation&) const = default;
};

/// The longest text that is looked at, in bytes. Anything longer is no typed sum: nothing.
inline constexpr std::size_t maximumLength = 4096;

struct Token {
    enum class Kind {
        number,
        variable,
        constant,
        function,
        op,
        postfix,
        lparen,
        rparen,
        comma,
        call, ///< of a function with `value` arguments; in postfix order alone
    };
    Kind kind = Kind::number;
    double value = 0; ///< of a number or constant
    std::string name; ///< of a variable, function, call, operator or postfix operator

    bool operator==(const Token&) const = default;
};

/// An expression ready to be worked out again and again.
struct Compiled {
    std::vector<Token> rpn; ///< in postfix order
    bool usesMemory = false;
};

/// The value of an expression or assignment; nothing for a bare number or name, which nobody asks
/// the value of.
std::optional<Evaluation> evaluate(std::string_view text, const Context& context);

/// The same with degrees and no variables.
std::optional<double> evaluate(std::string_view text);

/// An expression for `evaluate(compiled, …)`; no assignment.
std::optional<Compiled> compile(std::string_view text, const Context& context);
std::optional<double> evaluate(const Compiled& compiled, const Context& context);

/// Whether the lower-case word is a function, a constant or an operator's name.
bool isVocabulary(std::string_view word);

/// The figure as it is shown: grouped, at most 8 decimals, and scientific from 1e15 up and below
/// 1e-6.
std::string format(double value, const Formats& formats);

/// The digits of `format` as an expression takes them: a decimal point, no grouping.
std::string plain(double value);

/// As in "0xff", "-0b101", "0o17", in lower case; a radix other than 16, 8 and 2 has no prefix.
/// Nothing for a number with a fraction or of 9e18 and above. `radix` is 2 to 36.
std::optional<std::string> inBase(double value, int radix);

/// The same of every 64-bit number.
std::string inBase(std::int64_t value, int radix);

} // namespace tessarine::Calc
