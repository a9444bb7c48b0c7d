#include "LauncherCore/answers/Calc.h"

#include "LauncherCore/text/Formats.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::DoubleNear;
using testing::Optional;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

Calc::Context contextWith(Calc::Variables variables) {
    return {.variables = std::move(variables)};
}

TEST(Calc, worksOutWhatIsTyped) {
    const struct {
        const char* text;
        double value;
        const char* reason;
    } cases[] = {
        {"2+3*4", 14, "products before sums"},
        {"2^3^2", 512, "powers from the right"},
        {"-2^2", 4, "the sign binds tighter than the power"},
        {"2^-1", 0.5, "a sign behind a power"},
        {"2(3+4)", 14, "a product that nobody writes"},
        {"2pi", 6.283185307179586, ""},
        {"(2)(3)", 6, ""},
        {"2 sin(30)", 1, ""},
        {"pi 2", 6.283185307179586, ""},
        {"5! 3", 360, ""},
        {"6/2(3)", 9, "it binds as one that is written"},
        {"2\u03c0+\u03c4-tau-2PI+\u03a6-phi", 0, "constants by their symbols, in either case"},
        {"1,000+1", 1001, "a comma between digits groups them"},
        {"12,34+0", 1234, "wherever it stands"},
        {"max(1,000)", 1, "but in a list it parts two arguments"},
        {"count(1,000)", 2, ""},
        {"max((1,000))", 1000, "and in a bracket of its own it groups again"},
        {"1_000", 1000, "asked for the plain figure"},
        {"1_000_000/1", 1e6, ""},
        {"0xff", 255, ""},
        {"0XFF+1", 256, ""},
        {"0b101", 5, ""},
        {"0xffffffffffffffff", 18446744073709551615.0, "all 64 bits"},
        {"017+0", 17, "there is no octal"},
        {"1e3", 1000, ""},
        {"1e-3", 0.001, ""},
        {"1e+3", 2.718281828459045 + 3, "no plus in an exponent: 1 times e, plus 3"},
        {"2e-pi", 2 * 2.718281828459045 - 3.141592653589793, ""},
        {".5+5.", 5.5, ""},
        {"\u0663+\uff14", 7, "digits of any script"},
        {"5!", 120, ""},
        {"0!", 1, ""},
        {"fact(5)", 120, ""},
        {"3!!", 720, ""},
        {"200+10%", 220, "ten per cent of what is there"},
        {"200-10%", 180, ""},
        {"200*10%", 20, "but for a product the tenth"},
        {"200+(10%)", 220, ""},
        {"200+ -10%", 180, "a sign keeps the per cent"},
        {"200+2*5%", 200.1, "a product doesn't"},
        {"50%", 0.5, ""},
        {"10%+10%", 0.11, ""},
        {"10%5", 0.5, "ten per cent of five"},
        {"1/(1/0)", 0, "an infinity may come to something"},
        {"2\u00d73\u00f74\u22121", 0.5, "printed signs"},
        {"5\u20133", 2, "an en dash"},
        {"2**3", 8, ""},
        {"3 mod 2", 1, ""},
        {"-7 mod 3", -1, "with the dividend's sign"},
        {"1 << 3", 8, ""},
        {"~0", -1, ""},
        {"6 and 3", 2, ""},
        {"6 & 3 | 8", 10, ""},
        {"6 XOR 3", 5, ""},
        {"1 or 6 xor 3 and 2", 5, "and before xor before or"},
        {"1 << 2 + 1", 8, "sums before shifts"},
        {"1 << 64", 0, "all is shifted out"},
        {"-1 << 1e18", 0, ""},
        {"-8 >> 1", -4, "filled with the sign"},
        {"-8 >> 64", -1, ""},
        {"8 >> 1e18", 0, ""},
        {"8 << -1", 4, "a negative count goes the other way"},
        {"1 >> -3", 8, ""},
        {"-1 << -9223372036854775808", -1, "the count that has no negative"},
        {"1 >> -9223372036854775808", 0, ""},
        {"5.9 & 7.9", 5, "fractions are cut off"},
        {"-9223372036854775808 | 0", -9223372036854775808.0, "the least of 64 bits"},
        {"(1+2]", 3, "brackets are alike"},
        {"{[(4)]}", 4, ""},
        {"-5", -5, ""},
        {"(5)", 5, ""},
        {"2--3", 5, ""},
    };

    for (const auto& [text, value, reason] : cases)
        EXPECT_THAT(Calc::evaluate(text), Optional(DoubleNear(value, 1e-12 * std::abs(value))))
            << text << ": " << reason;
}

TEST(Calc, knowsItsFunctions) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"sin(90)", 1},
        {"sin(180)+sin(-90)", -1}, // exact on the axes
        {"cos(-90)", 0},
        {"cos(36000000180)", -1},
        {"tan(180)", 0},
        {"tan(45)", 1},
        {"asin(1)", 90},
        {"acos(0)", 90},
        {"atan(1)", 45},
        {"atan2(1, -1)", 135},
        {"sinh(0)+cosh(0)+tanh(0)", 1},
        {"ln(e)", 1},
        {"log(100)", 2},
        {"log(2, 8)", 3},
        {"log2(8)+log10(1000)", 6},
        {"exp(0)+sqrt(16)+cbrt(27)", 8},
        {"root(3, 27)", 3},
        {"pow(2, 10)+hypot(3, 4)", 1029},
        {"abs(-3)+sign(-2)+sign(0)+sign(9)", 3},
        {"round(2.5)+round(-2.5)+round(1.5)", 2},
        {"round(2.345, 2)", 2.35},
        {"floor(-1.5)+ceil(-1.5)+trunc(-1.5)", -4},
        {"min(3,1,2)+max(3,1,2)", 4},
        {"sum(1,2,3)+product(2,3,4)+count(9,9)", 32},
        {"avg(1,2)+mean(3,6)", 6},
        {"median(5,1,3)", 3},
        {"median(4,1,3,2)", 2.5},
        {"gcd(12,18)+gcd(-4,0)", 10},
        {"lcm(4,6)+lcm(0,0)+lcm(0,5)", 12},
        {"lcm(2^40, 2^40)", 1099511627776}, // no further than the result
        {"deg(pi)+rad(180)", 180 + 3.141592653589793},
    };

    for (const auto& [text, value] : cases)
        EXPECT_THAT(Calc::evaluate(text), Optional(DoubleNear(value, 1e-12 * std::abs(value))))
            << text;

    const Calc::Context radians{.angle = Calc::AngleMode::radians};
    EXPECT_NEAR(Calc::evaluate("sin(90)", radians)->value, 0.8939966636005579, 1e-15);
    EXPECT_NEAR(Calc::evaluate("asin(1)", radians)->value, 1.5707963267948966, 1e-15);
    EXPECT_NE(Calc::evaluate("tan(90)", radians), std::nullopt);
}

TEST(Calc, hasNoValueForTheRest) {
    const struct {
        const char* text;
        const char* reason;
    } cases[] = {
        {"", "nothing typed"},
        {" \t", ""},
        {"5", "a figure alone"},
        {"1,000", ""},
        {"pi", "a name alone"},
        {"0x", "no digits"},
        {"0b2", ""},
        {"0xfffffffffffffffff", "more than 64 bits"},
        {"1.2.3+1", "two points"},
        {"1+\u00bd", "a fraction's sign is no digit"},
        {"5\u20e3+1", "a digit within a mark is another character"},
        {"+5", "no sign of plus"},
        {"2 3", "two figures"},
        {"2 3 +", "in an order that only a stack could read"},
        {"2+", "not finished"},
        {"*2", ""},
        {"(1+2", ""},
        {"1+2)", ""},
        {"()", ""},
        {"(1, 2)", "a list of nothing"},
        {"2 ~3", ""},
        {"1 < 3", "a single angle"},
        {"!5", ""},
        {"%5", ""},
        {"171!", "more than a double holds"},
        {"2.5!", ""},
        {"-1 + (-1)!", ""},
        {"170!!", ""},
        {"1/0", ""},
        {"0/0", ""},
        {"count(0/0)", "what is no number is none inside either"},
        {"(0/0)^0", ""},
        {"max(1, 0/0)", ""},
        {"median(2, sqrt(-1), 1)", ""},
        {"sqrt(-1)", ""},
        {"5 mod 0", ""},
        {"tan(90)", ""},
        {"tan(-270)", ""},
        {"9999^9999999", ""},
        {"1e400+1", "more than a double holds"},
        {"sin 30", "an argument without brackets"},
        {"sin()", ""},
        {"sum()", ""},
        {"5 sum()", "nor with the five in front of it"},
        {"2 3 sum()", ""},
        {"random()", ""},
        {"max(1,)", ""},
        {"sin(1,2)", "too many arguments"},
        {"atan2(1)", "too few"},
        {"round(1,2,3)", ""},
        {"2^63 & 1", "beyond 64 bits"},
        {"1/0 | 1", ""},
        {"1 << 1e19", ""},
        {"~1e19", ""},
        {"gcd(1e19, 3)", ""},
        {"gcd(1/0, 3)", ""},
        {"lcm(2^62, 3)", "too great a product"},
        {"pi = 3", "a name that is taken"},
        {"sin = 3", ""},
        {"ans = 3", ""},
        {"x == 3", ""},
        {"= 3", ""},
        {"ans + 1", "no answer yet"},
        {"rent * 2", "a name that nobody gave"},
        {"amazon", ""},
        {"\xff\xfe+1", "no text"},
        {"2\x80+1", ""},
    };

    for (const auto& [text, reason] : cases)
        EXPECT_EQ(Calc::evaluate(text), std::nullopt) << text << ": " << reason;
}

TEST(Calc, remembersWhatWasAssigned) {
    const auto context =
        contextWith({{"ans", 21}, {"rent", 800}, {"myvar", 3}, {"bad", notANumber}});

    const struct {
        const char* text;
        std::optional<Calc::Evaluation> expected;
    } cases[] = {
        {"x = 5", {{.value = 5, .assignedName = "x"}}}, // a figure alone, but with a purpose
        {" X =5", {{.value = 5, .assignedName = "x"}}},
        {"my_var = 2^3", {{.value = 8, .assignedName = "my_var"}}},
        {"rent = rent + 1", {{.value = 801, .assignedName = "rent", .usedMemory = true}}},
        {"ans * 2", {{.value = 42, .usedMemory = true}}},
        {"ANS + Rent", {{.value = 821, .usedMemory = true}}},
        {"rent + rent", {{.value = 1600, .usedMemory = true}}},
        {"my_var + 1", {{.value = 4, .usedMemory = true}}}, // "_" goes from names as well
        {"2 + 2", {{.value = 4}}},
        {"rent", std::nullopt},
        {"bad + 1", std::nullopt},
        {"x = y", std::nullopt},
    };

    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Calc::evaluate(text, context), expected) << text;
    EXPECT_EQ(Calc::compile("x = 5", context), std::nullopt) << "a curve assigns nothing";
}

TEST(Calc, compilesOnceForManyValues) {
    auto context = contextWith({{"x", 0}});
    const auto curve = Calc::compile("x^2 - 2x + sin(x)", context);
    ASSERT_TRUE(curve);
    EXPECT_TRUE(curve->usesMemory);
    for (const double x : {0.0, 90.0, -90.0}) {
        context.variables["x"] = x;
        EXPECT_EQ(Calc::evaluate(*curve, context), x * x - 2 * x + (x == 0 ? 0 : x / 90));
    }
    context.variables.clear();
    EXPECT_EQ(Calc::evaluate(*curve, context), std::nullopt);
    EXPECT_FALSE(Calc::compile("2^2", context)->usesMemory);
}

TEST(Calc, drawsRandomNumbersWithinTheirBounds) {
    double least = infinity;
    double greatest = -infinity;
    for (int i = 0; i < 2000; ++i) {
        const auto drawn = Calc::evaluate("random(2, 1)");
        ASSERT_TRUE(drawn);
        least = std::min(least, *drawn);
        greatest = std::max(greatest, *drawn);
        const auto fraction = Calc::evaluate("random(7) 2^53");
        ASSERT_THAT(fraction, Optional(testing::AllOf(testing::Ge(0), testing::Lt(0x1p53))));
        EXPECT_EQ(*fraction, std::trunc(*fraction));
    }
    EXPECT_THAT(least, testing::AllOf(testing::Ge(1), testing::Lt(1.1)));
    EXPECT_THAT(greatest, testing::AllOf(testing::Le(2), testing::Gt(1.9)));
    EXPECT_TRUE(Calc::evaluate("random(-1e308, 1e308)"));
}

TEST(Calc, tellsItsWordsFromOthers) {
    std::size_t functions = 0;
    const char* const words[] = {
        "sin",   "cos",  "tan",   "asin",   "acos", "atan",  "sinh", "cosh", "tanh", "atan2",
        "ln",    "log",  "log2",  "log10",  "exp",  "sqrt",  "cbrt", "root", "pow",  "hypot",
        "abs",   "sign", "round", "floor",  "ceil", "trunc", "min",  "max",  "sum",  "product",
        "count", "avg",  "mean",  "median", "fact", "gcd",   "lcm",  "deg",  "rad",  "random"};
    for (const auto* word : words)
        functions += Calc::isVocabulary(word) ? 1 : 0;
    EXPECT_EQ(functions, 40);
    for (const auto* word :
         {"pi", "\u03c0", "tau", "\u03c4", "e", "phi", "\u03c6", "ans", "mod", "xor", "and", "or"})
        EXPECT_TRUE(Calc::isVocabulary(word)) << word;
    for (const auto* word : {"", "amazon", "si", "sins", "rent", "+", "x"})
        EXPECT_FALSE(Calc::isVocabulary(word)) << word;
}

TEST(Calc, writesFiguresAsTheyAreRead) {
    const struct {
        double value;
        const char* english;
        const char* german;
        const char* plain;
    } cases[] = {
        {0, "0", "0", "0"},
        {-0.0, "0", "0", "0"},
        {1234, "1,234", "1.234", "1234"},
        {-1234567.5, "-1,234,567.5", "-1.234.567,5", "-1234567.5"},
        {0.1 + 0.2, "0.3", "0,3", "0.3"},
        {0.3333333333333333, "0.33333333", "0,33333333", "0.33333333"},
        {0.000000125 + 1, "1.00000012", "1,00000012", "1.00000012"}, // halves to even
        {0.000000135 + 1, "1.00000014", "1,00000014", "1.00000014"},
        {999999999999999, "999,999,999,999,999", "999.999.999.999.999", "999999999999999"},
        {1e15, "1e15", "1e15", "1e15"},
        {-1.23456789e20, "-1.234568e20", "-1,234568e20", "-1.234568e20"},
        {1e-6, "0.000001", "0,000001", "0.000001"},
        {-1e-6, "-0.000001", "-0,000001", "-0.000001"},
        {0.0000001, "1e-7", "1e-7", "1e-7"},
    };

    const Formats english({}, Zone::utc());
    const Formats german({.numbers = "de_DE.UTF-8"}, Zone::utc());
    for (const auto& [value, inEnglish, inGerman, plain] : cases) {
        EXPECT_EQ(Calc::format(value, english), inEnglish);
        EXPECT_EQ(Calc::format(value, german), inGerman);
        EXPECT_EQ(Calc::plain(value), plain);
        EXPECT_TRUE(Calc::evaluate("0+" + std::string(plain).substr(value < 0 ? 1 : 0))) << plain;
    }
}

TEST(Calc, writesWholeNumbersInAnyBase) {
    EXPECT_EQ(Calc::inBase(255.0, 16), "0xff");
    EXPECT_EQ(Calc::inBase(-5.0, 2), "-0b101");
    EXPECT_EQ(Calc::inBase(8.0, 8), "0o10");
    EXPECT_EQ(Calc::inBase(35.0, 36), "z");
    EXPECT_EQ(Calc::inBase(-0.0, 16), "0x0");
    for (const double none : {1.5, 9e18, -9e18, infinity, notANumber})
        EXPECT_EQ(Calc::inBase(none, 16), std::nullopt) << none;
    EXPECT_EQ(Calc::inBase(std::numeric_limits<std::int64_t>::max(), 16), "0x7fffffffffffffff");
    EXPECT_EQ(Calc::inBase(std::numeric_limits<std::int64_t>::min(), 16), "-0x8000000000000000");
}

std::string repeated(const std::string& piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

TEST(Calc, answersHostileTextAtOnce) {
    const struct {
        std::string text;
        const char* what;
    } cases[] = {
        {"9999^9999999", "a giant power"},
        {"170!!", "a giant factorial"},
        {repeated("(", 1000), "open brackets"},
        {repeated("sin(", 1000), "open functions"},
        {repeated("-", 4000), "signs"},
        {repeated("9", 100'000), "digits"},
        {repeated("9", 4000) + "!", "digits that are looked at"},
        {repeated("1,", 2000), "commas"},
        {"max(" + repeated("1,", 2000) + ")", "arguments"},
        {repeated("170!-", 800), "factorials"},
        {repeated("_", 4000) + "=", "an assignment that never comes"},
        {repeated(" ", 4000) + "=", "blanks"},
        {"a" + repeated(" ", 4000) + "b", "blanks before no sign"},
        {repeated("\u03c0", 2000), "a name without end"},
        {repeated("5%", 1500) + "+", "per cent"},
    };

    for (const auto& [text, what] : cases) {
        // The best of some, as the machine may do other things at the same time.
        auto best = std::chrono::steady_clock::duration::max();
        for (int i = 0; i < 5; ++i) {
            const auto started = std::chrono::steady_clock::now();
            EXPECT_EQ(Calc::evaluate(text), std::nullopt) << what;
            best = std::min(best, std::chrono::steady_clock::now() - started);
        }
#if defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__)
        EXPECT_LT(best, std::chrono::milliseconds(1)) << what;
#endif
    }
}

} // namespace
} // namespace tessarine
