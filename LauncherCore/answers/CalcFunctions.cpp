#include "LauncherCore/answers/CalcSteps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <utility>

namespace tessarine {

namespace {

using Calc::AngleMode;
using Arguments = std::span<const double>;
using Value = std::optional<double>;

constexpr double pi = std::numbers::pi;
constexpr double halfTurn = 180; ///< degrees
constexpr double quarterTurn = 90;
constexpr double fullTurn = 360;
constexpr double largestFactorial = 170;

// Multiplied first and divided then, so that the whole turns come out whole.
double toDegrees(double radians) {
    return radians * halfTurn / pi;
}

double toRadians(double degrees) {
    return degrees * pi / halfTurn;
}

double inMode(double radians, AngleMode angle) {
    return angle == AngleMode::degrees ? toDegrees(radians) : radians;
}

/// Which quarter of the circle an angle lies on the border of, 0 to 3, when it is a multiple of 90
/// degrees. There the sine, cosine and tangent are exact, and a tangent may have no value; pi in
/// binary would miss them by a little.
std::optional<std::size_t> quarter(double value, AngleMode angle) {
    if (angle != AngleMode::degrees || std::fmod(value, quarterTurn) != 0)
        return std::nullopt;
    const double turned = std::fmod(value, fullTurn);
    return static_cast<std::size_t>((turned < 0 ? turned + fullTurn : turned) / quarterTurn);
}

double argument(double value, AngleMode angle) {
    return angle == AngleMode::degrees ? toRadians(value) : value;
}

Value sine(Arguments x, AngleMode angle) {
    static constexpr std::array<double, 4> exact = {0, 1, 0, -1};
    const auto place = quarter(x[0], angle);
    return place ? exact[*place] : std::sin(argument(x[0], angle));
}

Value cosine(Arguments x, AngleMode angle) {
    static constexpr std::array<double, 4> exact = {1, 0, -1, 0};
    const auto place = quarter(x[0], angle);
    return place ? exact[*place] : std::cos(argument(x[0], angle));
}

Value tangent(Arguments x, AngleMode angle) {
    const auto place = quarter(x[0], angle);
    if (!place)
        return std::tan(argument(x[0], angle));
    return *place % 2 == 0 ? Value(0.0) : std::nullopt;
}

Value rounded(Arguments x, AngleMode /*angle*/) {
    if (x.size() == 1)
        return std::round(x[0]);
    const double scale = std::pow(10, x[1]);
    return std::round(x[0] * scale) / scale;
}

Value logarithm(Arguments x, AngleMode /*angle*/) {
    return x.size() == 1 ? std::log10(x[0]) : std::log(x[1]) / std::log(x[0]);
}

double sum(Arguments x) {
    return std::accumulate(x.begin(), x.end(), 0.0);
}

Value mean(Arguments x, AngleMode /*angle*/) {
    return sum(x) / static_cast<double>(x.size());
}

Value median(Arguments x, AngleMode /*angle*/) {
    std::vector<double> sorted(x.begin(), x.end());
    std::ranges::sort(sorted);
    const auto middle = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

std::optional<std::uint64_t> magnitude(double value) {
    const auto whole = Calc::truncated(value);
    if (!whole)
        return std::nullopt;
    const auto bits = static_cast<std::uint64_t>(*whole);
    return *whole < 0 ? 0 - bits : bits;
}

Value greatestDivisor(Arguments x, AngleMode /*angle*/) {
    const auto a = magnitude(x[0]);
    const auto b = magnitude(x[1]);
    return a && b ? Value(static_cast<double>(std::gcd(*a, *b))) : std::nullopt;
}

Value leastMultiple(Arguments x, AngleMode /*angle*/) {
    const auto a = magnitude(x[0]);
    const auto b = magnitude(x[1]);
    if (!a || !b)
        return std::nullopt;
    if (*a == 0 || *b == 0)
        return 0.0;
    std::uint64_t product = 0;
    if (__builtin_mul_overflow(*a / std::gcd(*a, *b), *b, &product) ||
        product > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return std::nullopt;
    return static_cast<double>(product);
}

Value randomNumber(Arguments x, AngleMode /*angle*/) {
    static thread_local std::mt19937_64 generator{std::random_device()()};
    constexpr int surplusBits = 11; // of 64, beyond the 53 that a double holds
    const double fraction = static_cast<double>(generator() >> surplusBits) * 0x1p-53;
    // Weighed so, and not by the distance, which may be more than a double holds.
    return x.size() == 2 ? x[0] * (1 - fraction) + x[1] * fraction : fraction;
}

template <double (*function)(double)> Value one(Arguments x, AngleMode /*angle*/) {
    return function(x[0]);
}

template <double (*function)(double)> Value inverse(Arguments x, AngleMode angle) {
    return inMode(function(x[0]), angle);
}

struct Function {
    std::string_view name;
    std::size_t fewest;
    std::size_t most;
    Value (*apply)(Arguments, AngleMode);
};

constexpr std::size_t any = std::numeric_limits<std::size_t>::max();

/// By name, for the search. An argument is never without value.
constexpr auto functions = std::to_array<Function>({
    {"abs", 1, 1, one<std::fabs>},
    {"acos", 1, 1, inverse<std::acos>},
    {"asin", 1, 1, inverse<std::asin>},
    {"atan", 1, 1, inverse<std::atan>},
    {"atan2",
     2,
     2,
     [](Arguments x, AngleMode a) -> Value { return inMode(std::atan2(x[0], x[1]), a); }},
    {"avg", 1, any, mean},
    {"cbrt", 1, 1, one<std::cbrt>},
    {"ceil", 1, 1, one<std::ceil>},
    {"cos", 1, 1, cosine},
    {"cosh", 1, 1, one<std::cosh>},
    {"count",
     0,
     any,
     [](Arguments x, AngleMode) -> Value { return static_cast<double>(x.size()); }},
    {"deg", 1, 1, one<toDegrees>},
    {"exp", 1, 1, one<std::exp>},
    {"fact", 1, 1, [](Arguments x, AngleMode) { return Calc::factorial(x[0]); }},
    {"floor", 1, 1, one<std::floor>},
    {"gcd", 2, 2, greatestDivisor},
    {"hypot", 2, 2, [](Arguments x, AngleMode) -> Value { return std::hypot(x[0], x[1]); }},
    {"lcm", 2, 2, leastMultiple},
    {"ln", 1, 1, one<std::log>},
    {"log", 1, 2, logarithm},
    {"log10", 1, 1, one<std::log10>},
    {"log2", 1, 1, one<std::log2>},
    {"max", 1, any, [](Arguments x, AngleMode) -> Value { return std::ranges::max(x); }},
    {"mean", 1, any, mean},
    {"median", 1, any, median},
    {"min", 1, any, [](Arguments x, AngleMode) -> Value { return std::ranges::min(x); }},
    {"pow", 2, 2, [](Arguments x, AngleMode) -> Value { return std::pow(x[0], x[1]); }},
    {"product",
     0,
     any,
     [](Arguments x, AngleMode) -> Value {
         return std::accumulate(x.begin(), x.end(), 1.0, std::multiplies());
     }},
    {"rad", 1, 1, one<toRadians>},
    {"random", 0, any, randomNumber},
    {"root", 2, 2, [](Arguments x, AngleMode) -> Value { return std::pow(x[1], 1 / x[0]); }},
    {"round", 1, 2, rounded},
    {"sign",
     1,
     1,
     [](Arguments x, AngleMode) -> Value { return x[0] > 0   ? 1
                                                  : x[0] < 0 ? -1
                                                             : 0; }},
    {"sin", 1, 1, sine},
    {"sinh", 1, 1, one<std::sinh>},
    {"sqrt", 1, 1, one<std::sqrt>},
    {"sum", 0, any, [](Arguments x, AngleMode) -> Value { return sum(x); }},
    {"tan", 1, 1, tangent},
    {"tanh", 1, 1, one<std::tanh>},
    {"trunc", 1, 1, one<std::trunc>},
});
static_assert(std::ranges::is_sorted(functions, {}, &Function::name));

const Function* functionNamed(std::string_view name) {
    const auto* const found = std::ranges::lower_bound(functions, name, {}, &Function::name);
    return found != functions.end() && found->name == name ? found : nullptr;
}

constexpr auto constants = std::to_array<std::pair<std::string_view, double>>({
    {"pi", pi},
    {"\u03c0", pi},
    {"tau", 2 * pi},
    {"\u03c4", 2 * pi},
    {"e", std::numbers::e},
    {"phi", std::numbers::phi},
    {"\u03c6", std::numbers::phi},
});

constexpr auto operatorNames = std::to_array<std::string_view>({"mod", "xor", "and", "or"});

} // namespace

bool Calc::isFunction(std::string_view lowerCaseName) {
    return functionNamed(lowerCaseName) != nullptr;
}

std::optional<double> Calc::constant(std::string_view lowerCaseName) {
    for (const auto& [name, value] : constants) {
        if (name == lowerCaseName)
            return value;
    }
    return std::nullopt;
}

bool Calc::isOperatorName(std::string_view lowerCaseName) {
    return std::ranges::find(operatorNames, lowerCaseName) != operatorNames.end();
}

bool Calc::isVocabulary(std::string_view word) {
    return word == "ans" || isOperatorName(word) || isFunction(word) || constant(word);
}

std::optional<double>
Calc::applied(std::string_view function, std::span<const double> arguments, AngleMode angle) {
    const auto* const found = functionNamed(function);
    if (!found || arguments.size() < found->fewest || arguments.size() > found->most)
        return std::nullopt;
    return found->apply(arguments, angle);
}

std::optional<double> Calc::factorial(double value) {
    if (!(value >= 0 && value <= largestFactorial) || value != std::trunc(value))
        return std::nullopt;
    double product = 1;
    const int last = static_cast<int>(value);
    for (int factor = 2; factor <= last; ++factor)
        product *= factor;
    return product;
}

std::optional<std::int64_t> Calc::truncated(double value) {
    // Both bounds are exact doubles, and the comparison with what is no number fails.
    if (!(value >= -0x1p63 && value < 0x1p63))
        return std::nullopt;
    return static_cast<std::int64_t>(value);
}

} // namespace tessarine
