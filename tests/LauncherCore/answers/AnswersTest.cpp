#include "LauncherCore/answers/Answers.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

namespace tessarine {
namespace {

const Zone newYork = *Zone::named("America/New_York");
const Formats english({}, newYork);

/// Friday, November 20, 2026, in the afternoon of New York.
const double now = newYork.instant(
    {.date = std::chrono::year(2026) / 11 / 20, .timeOfDay = std::chrono::hours(15)});

const RateTable rates{.base = "USD",
                      .rates = {{"EUR", 0.9}, {"GBP", 0.8}, {"JPY", 150}},
                      .fetched = now - 600,
                      .host = "rates.example",
                      .checkURL = "https://rates.example/"};

std::optional<Answer> asked(std::string_view text, const Calc::Context& calculator = {}) {
    return Answers::answer(
        text, {.rates = &rates, .now = now, .calculator = calculator, .formats = english});
}

/// The figure, or "none".
std::string figure(std::string_view text, const Calc::Context& calculator = {}) {
    const auto answer = asked(text, calculator);
    return answer ? answer->value : "none";
}

TEST(Answers, readEveryPhraseWithItsDetail) {
    const struct {
        std::string text;
        std::string value;
        std::string detail;
        std::string symbol;
    } cases[] = {
        {"12% of 50", "6", "12% of 50", "percent"},
        {"12 percent of 50", "6", "12% of 50", "percent"},
        {"50 + 10%", "55", "50 + 10%", "percent"},
        {"50-10%", "45", "50 - 10%", "percent"},
        {"5 is what % of 20", "25%", "5 of 20", "percent"},
        {"5 as a percent of 20", "25%", "5 of 20", "percent"},
        {"15% off 80", "68", "15% off 80", "percent"},
        {"half of 8", "4", "half of 8", "divide"},
        {"double 8", "16", "double of 8", "divide"},
        {"sqrt 16", "4", "√16", "x.squareroot"},
        {"sqrt(16)", "4", "√16", "x.squareroot"},
        {"square root of 16", "4", "√16", "x.squareroot"},
        {"3 squared", "9", "3²", "function"},
        {"3^2", "9", "3²", "function"},
        {"2 cubed", "8", "2³", "function"},
        {"what is 2 + 2", "4", "= what is 2 + 2", "equal.circle"},
        {"two plus two", "4", "= two plus two", "equal.circle"},
        {"$5 + 3", "8", "= $5 + 3", "equal.circle"},
        {"x = 5", "5", "x is now 5", "equal.circle"},
        {"0xff + 1", "256", "= 0xff + 1  ·  0x100", "equal.circle"},
        {"255 in hex", "0xff", "255 → hex", "number"},
        {"0xff in decimal", "255", "0xff → decimal", "number"},
        {"1,024 to binary", "0b10000000000", "1,024 → binary", "number"},
        {"-5 in hex", "-0x5", "-5 → hex", "number"},
        {"9223372036854775807 in decimal",
         "9,223,372,036,854,775,807",
         "9223372036854775807 → decimal",
         "number"},
        {"-9223372036854775808 as oct",
         "-0o1000000000000000000000",
         "-9223372036854775808 → oct",
         "number"},
        {"3 days from now", "Monday, November 23, 2026", "3 days from now", "calendar"},
        {"2 weeks ago", "Friday, November 6, 2026", "2 weeks ago", "calendar"},
        {"3 months from today", "Saturday, February 20, 2027", "3 months from today", "calendar"},
        {"in 3 days", "Monday, November 23, 2026", "3 days from now", "calendar"},
        {"days until dec 25", "35 days", "until Friday, December 25, 2026", "calendar"},
        {"days until november 21", "1 day", "until Saturday, November 21, 2026", "calendar"},
        {"how many days till november 19",
         "364 days",
         "until Friday, November 19, 2027",
         "calendar"},
        {"days until dec 25 2027", "400 days", "until Saturday, December 25, 2027", "calendar"},
        {"today", "Friday, November 20, 2026", "", "calendar"},
        {"date", "Friday, November 20, 2026", "", "calendar"},
        {"tomorrow", "Saturday, November 21, 2026", "1 day from now", "calendar"},
        {"1/15 + 30 days", "Saturday, February 14, 2026", "1/15 + 30 days", "calendar"},
        {"1/15/2028 plus 1 day", "Sunday, January 16, 2028", "1/15/2028 + 1 day", "calendar"},
        {"december 25, 2027", "Saturday, December 25, 2027", "in 400 days", "calendar"},
        {"2026-11-19", "Thursday, November 19, 2026", "1 day ago", "calendar"},
        {"in a week", "Friday, November 27, 2026", "a week from now", "calendar"},
        {"two weeks ago", "Friday, November 6, 2026", "2 weeks ago", "calendar"},
        {"three days from now", "Monday, November 23, 2026", "3 days from now", "calendar"},
        {"in two weeks", "Friday, December 4, 2026", "2 weeks from now", "calendar"},
        {"today + 3 days", "Monday, November 23, 2026", "today + 3 days", "calendar"},
        {"tomorrow plus 2 weeks", "Saturday, December 5, 2026", "tomorrow + 2 weeks", "calendar"},
        {"1/15 - 3 days", "Monday, January 12, 2026", "1/15 - 3 days", "calendar"},
        {"1/15 + 2 weeks", "Thursday, January 29, 2026", "1/15 + 2 weeks", "calendar"},
        {"1/31/2028 + 1 month", "Tuesday, February 29, 2028", "1/31/2028 + 1 month", "calendar"},
        {"3 days after dec 25",
         "Monday, December 28, 2026",
         "3 days after Friday, December 25, 2026",
         "calendar"},
        {"a week before dec 25",
         "Friday, December 18, 2026",
         "a week before Friday, December 25, 2026",
         "calendar"},
        {"days until 12/25", "35 days", "until Friday, December 25, 2026", "calendar"},
        {"days until tomorrow", "1 day", "until Saturday, November 21, 2026", "calendar"},
        {"days until friday", "7 days", "until Friday, November 27, 2026", "calendar"},
        {"days until thursday", "6 days", "until Thursday, November 26, 2026", "calendar"},
        {"days since thursday", "1 day", "since Thursday, November 19, 2026", "calendar"},
        {"days until christmas", "35 days", "until Friday, December 25, 2026", "calendar"},
        {"weeks until dec 25", "5 weeks", "until Friday, December 25, 2026", "calendar"},
        {"how many weeks until christmas eve",
         "4 weeks 6 days",
         "until Thursday, December 24, 2026",
         "calendar"},
        {"days until dec 25 2025", "330 days ago", "since Thursday, December 25, 2025", "calendar"},
        {"days since dec 25 2027", "in 400 days", "until Saturday, December 25, 2027", "calendar"},
        {"what day is december 25, 2027", "Saturday, December 25, 2027", "in 400 days", "calendar"},
        {"what day was yesterday", "Thursday, November 19, 2026", "1 day ago", "calendar"},
        {"what's the date", "Friday, November 20, 2026", "", "calendar"},
        {"what day is it?", "Friday, November 20, 2026", "", "calendar"},
        {"half of twelve", "6", "half of twelve", "divide"},
        {"a third of 9", "3", "third of 9", "divide"},
        {"two thirds of 9", "6", "two thirds of 9", "divide"},
        {"1/2 of 8", "4", "1/2 of 8", "divide"},
        {"½ of 8", "4", "½ of 8", "divide"},
        {"ten percent of fifty", "5", "ten% of fifty", "percent"},
        {"what % of 20 is 5", "25%", "5 of 20", "percent"},
        {"5 is what percentage of 20", "25%", "5 of 20", "percent"},
        {"two squared", "4", "two²", "function"},
        {"square root of nine", "3", "√nine", "x.squareroot"},
        {"what is the square root of 16", "4", "√16", "x.squareroot"},
        {"sqrt of 16", "4", "√16", "x.squareroot"},
        {"√16", "4", "√16", "x.squareroot"},
        {"cube root of 27", "3", "∛27", "x.squareroot"},
        {"sin 30", "0.5", "sin(30)", "function"},
        {"0o17 in decimal", "15", "0o17 → decimal", "number"},
        {"2^8 in hex", "0x100", "2^8 → hex", "number"},
    };

    for (const auto& [text, value, detail, symbol] : cases) {
        SCOPED_TRACE(text);
        const auto answer = asked(text);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->value, value);
        EXPECT_EQ(answer->detail, detail);
        EXPECT_EQ(answer->symbol, symbol);
    }
}

TEST(Answers, takeTheSameQuestionInOtherWords) {
    const struct {
        std::string text;
        std::string value;
        const char* reason;
    } cases[] = {
        {"2 + 2 =", "4", "a trailing equals sign"},
        {"what is 2 + 2?", "4", "a question mark"},
        {"What's 15% of 200?", "30", "asking words before a percentage"},
        {"2x3", "6", "a cross without blanks"},
        {"2 x 3", "6", "and with them"},
        {"0x3 + 0", "3", "which is not a hexadecimal number"},
        {"max(1,000)", "1,000", "a grouped thousand"},
        {"max(1,2)", "2", "a comma that parts arguments"},
        {"log(2, 8)", "3", "a base before the number"},
        {"1,234.5 * 2", "2,469", "grouping with a fraction"},
        {"max(1,000, 2,500)", "2,500", "grouped arguments"},
        {"0xff", "255", "a number in hexadecimal is worth answering"},
        {"1e3", "1,000", "and one with an exponent"},
        {"1_000", "1,000", "and one with underscores"},
        {"twenty-five * 2", "50", "a hyphenated number"},
        {"two million / 4", "500,000", "a scale"},
        {"one hundred twenty five + 1", "126", "a number of many words"},
        {"2.5 million / 5", "500,000", "a scale behind digits"},
        {"ten-five", "5", "a hyphen that is a minus sign"},
        {"third * 3", "1", "a third keeps its digits"},
        {"weight = 80", "80", "eight inside a word is no number"},
        {"7 mod 3", "0.21", "the sign, as the phrase is read"},
        {"0 - 0", "0", "never minus zero"},
        {"one million two hundred thousand + 0", "1,200,000", "a smaller scale adds"},
        {"three million five hundred thousand plus one", "3,500,001", "and closes"},
        {"5 million two hundred thousand + 0", "5,200,000", "behind digits too"},
        {"one million two thousand + 0", "1,002,000", "with nothing between"},
        {"two hundred thousand million + 0", "200,000,000,000", "a larger scale multiplies all"},
        {"two hundred and five plus one", "206", "the and of a written number"},
        {"one thousand and one", "1,001", "alone"},
        {"two hundred and five times two", "410", "before another word"},
        {"one hundred and fifty + 1", "151", "with tens"},
        {"rent = two hundred and five", "205", "as what a name is from now on"},
        {"6 and 3", "2", "between digits it is bit by bit"},
        {"six and three", "2", "and between small words"},
        {"twenty-five", "25", "a number of two words is a question"},
        {"two million", "2,000,000", "grouped as it is shown"},
        {"2.5 million", "2,500,000", "with digits first"},
        {"gcd(100,250)", "50", "one grouped argument has no value, two have"},
        {"pow(2,100)", "1.267651e30", "the same"},
        {"max(100,200)", "100,200", "one grouped number has a value"},
        {"½ + ½", "1", "a fraction of one character"},
        {"1½ * 2", "3", "behind a whole number"},
        {"2³ + 1", "9", "a raised figure"},
        {"€50 * 3", "150", "a currency's sign that no rate asks for"},
        {"€5 + £3", "none", "two currencies are no sum"},
        {"= 2+2", "4", "as in a table's cell"},
        {"2 + 2 equals", "4", "in words"},
        {"1\u00a0234\u202f+ 1", "1,235", "blanks that don't break, in and beside a figure"},
    };

    for (const auto& [text, value, reason] : cases) {
        SCOPED_TRACE(reason);
        EXPECT_EQ(figure(text), value) << text;
    }
}

TEST(Answers, useWhatWasSavedByName) {
    const Calc::Context saved{.variables = {{"ans", 21}, {"rent", 1200}}};
    const auto answer = asked("ans * 2", saved);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->value, "42");
    EXPECT_EQ(answer->detail, "ans * 2, using your last answer");
    EXPECT_EQ(figure("rent + rent", saved), "2,400");
    EXPECT_EQ(figure("ln(e)", saved), "1");
    const auto assigned = asked("y = ans + 1", saved);
    ASSERT_TRUE(assigned);
    EXPECT_EQ(assigned->detail, "y is now 22") << "what a name is now wins over what was read";
    EXPECT_EQ(figure("total = rent", saved), "1,200");
    EXPECT_EQ(figure("20% of rent", saved), "240");
    EXPECT_EQ(figure("half of rent", saved), "600");
    EXPECT_EQ(asked("sqrt(rent)", saved)->detail, "sqrt(rent), using your last answer")
        << "an expression before a phrase";
    EXPECT_EQ(figure("rent + rent"), "none") << "a name that nobody saved";
}

TEST(Answers, leaveOrdinaryWordsAlone) {
    const char* const texts[] = {
        "",
        "   ",
        "amazon",
        "a1",
        "pi",
        "e",
        "ans",
        "42",
        "one",
        "third",
        "double",
        "wi-fi",
        "firefox",
        "5 is what % of 0",
        "1 < 3",
        "12:30",
        "days until",
        "days until smarch 3",
        "days until february 30",
        "13/45 + 3 days",
        "march 3",
        "99999999 years from now",
        "18446744073709551615 in hex",
        "0x in hex",
        "half life",
        "half of everything",
        "20% of everything",
        "3 of 8",
        "10% of 45 + 3",
        "in a silent way",
        "days until doomsday",
        "friday",
        "christmas",
        "what day is february 30",
        "the date",
        "1.2.3 squared",
        "12,34",
    };
    for (const auto* const text : texts)
        EXPECT_EQ(figure(text), "none") << text;
}

TEST(Answers, theGateHoldsBackWhatNoFamilyReads) {
    for (const auto* const text :
         {"amazon", "firefox", "notes to self", "inside to outside", "a cup"})
        EXPECT_FALSE(Answers::couldBeAnAnswer(text)) << text;
    for (const auto* const text :
         {"a1", "½ cup", "an ounce in grams", "five", "€", "pi", "ln(e)", "٣"})
        EXPECT_TRUE(Answers::couldBeAnAnswer(text)) << text;
}

TEST(Answers, theFirstFamilyThatReadsItWins) {
    EXPECT_EQ(figure("20 eur in usd"), "$22.22") << "money";
    EXPECT_EQ(figure("5 kg in lb"), "11.0231 lb") << "a unit";
    EXPECT_EQ(figure("70 kgs in pounds"), "154.3236 pounds") << "a unit, not Kyrgyz money";
    EXPECT_EQ(figure("1 cup in pounds"), "Which ingredient?") << "cooking, not Cuban money";
    EXPECT_EQ(figure("2 cups flour in g"), "240 g") << "cooking before units";
}

TEST(Answers, daysAreThoseOfTheUsersZone) {
    const auto tokyo = *Zone::named("Asia/Tokyo");
    EXPECT_EQ(Answers::dates("today", now, english.in(tokyo))->value,
              "Saturday, November 21, 2026");
    const Formats german({.dates = "de_DE"}, newYork);
    EXPECT_EQ(Answers::dates("today", now, german)->value, "Freitag, November 20, 2026");
    EXPECT_EQ(Answers::dates("days until 3. märz", now, german)->value, "103 days");
    EXPECT_FALSE(Answers::dates("days until 3. märz", now, english)) << "each its own language";
}

TEST(Answers, nothingTypedTakesLong) {
    const struct {
        std::string_view repeated;
        int times;
        std::string_view tail;
    } cases[] = {
        {"9999^9999999", 1, ""},
        {"170!!", 1, ""},
        {"(", 1000, ""},
        {"9", 100'000, ""},
        {" ", 4000, "1"},
        {"0/0", 1, ""},
        {"1 << 99999999999", 1, ""},
        {"gcd(1e30, 7)", 1, ""},
        {" ", 250, "in g"},
        {"1 a", 80, " in b"},
        {"-", 2000, "1"},
        {"\xff\xfe 1 in ", 10, "\xff"},
        {"one hundred ", 300, ""},
        {"1,", 2000, "1"},
        {"half of ", 30, "8"},
        {"% of ", 50, "8"},
        {"\u00a0", 1000, "1"},
    };

    for (const auto& [repeated, times, tail] : cases) {
        SCOPED_TRACE(repeated);
        std::string input;
        for (int i = 0; i < times; ++i)
            input += repeated;
        input += tail;
        const auto begin = std::chrono::steady_clock::now();
        asked(input);
        // A thousand times the bar, so that no busy machine fails it and only a runaway does.
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    }
}

} // namespace
} // namespace tessarine
