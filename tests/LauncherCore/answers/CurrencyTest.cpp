#include "LauncherCore/answers/Currency.h"

#include "LauncherCore/answers/RateTable.h"
#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Formats.h"

#include <gmock/gmock.h>

#include <charconv>
#include <cmath>
#include <random>
#include <set>

namespace tessarine {
namespace {

using Answers::BareNumbers;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double now = 1767225600; // 2026-01-01 00:00:00 UTC

const Formats& formats() {
    static const Formats english({}, Zone::utc());
    return english;
}

RateTable table() {
    return {.base = "USD",
            .rates = {{"EUR", 0.92}, {"GBP", 0.8}, {"JPY", 150}, {"THB", 32.4}, {"CAD", 1.37}},
            .fetched = now - 5 * 60,
            .host = "rates.example",
            .checkURL = "https://rates.example/page"};
}

std::optional<Answer> asked(std::string_view text, std::string_view home = "USD") {
    const auto rates = table();
    return Answers::currency(text, &rates, now, home, formats(), nullptr);
}

std::string value(std::string_view text) {
    const auto answer = asked(text);
    return answer ? answer->value : "nothing";
}

TEST(Currency, answersWithTheFigureItsRateItsAgeAndItsSource) {
    const auto plain = asked("20 eur in usd");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->value, "$21.74");
    EXPECT_EQ(plain->detail, "US Dollar (USD) · 20 EUR at 1.0870 · 5 min ago");
    EXPECT_EQ(plain->symbol, "dollarsign.circle");
    EXPECT_EQ(plain->glyph, "🇺🇸");
    EXPECT_EQ(plain->source,
              (AnswerSource{"rates.example", "https://rates.example/page", now - 300}));

    const auto place = asked("100 usd in paris");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->value, "€92.00");
    EXPECT_EQ(place->detail, "Euro (EUR) · France · 100 USD at 0.9200 · 5 min ago");
    EXPECT_EQ(place->glyph, "🇫🇷");
}

TEST(Currency, saysWhyThereIsNoFigure) {
    const auto unloaded = [](std::string_view text) {
        return Answers::currency(text, nullptr, now, "USD", formats(), nullptr).value();
    };
    EXPECT_EQ(unloaded("5 eur in gbp").value, "Rates have not loaded yet");
    EXPECT_EQ(unloaded("5 eur in gbp").detail,
              "GBP: the table is fetched once and cached; check the connection");
    EXPECT_EQ(unloaded("$12 in thailand").detail,
              "Thailand spends the Thai Baht (THB); the table is fetched once and cached, so check "
              "the connection");
    EXPECT_EQ(asked("5 usd in aed")->value, "No rate for the United Arab Emirates Dirham");
    EXPECT_EQ(asked("5 aed in usd")->detail,
              "This table does not carry AED. Settings › Calculator has a wider one, about 160 "
              "currencies.");
    EXPECT_EQ(asked("5 usd in zimbabwe")->value, "No rate for the Zimbabwean Gold");
    EXPECT_EQ(asked("5 usd in dubai")->detail,
              "United Arab Emirates spends the United Arab Emirates Dirham (AED), which this table "
              "does not carry. Settings › Calculator has a wider one, about 160 currencies.");
}

TEST(Currency, readsWhatPeopleType) {
    struct Case {
        std::string_view text;
        std::string_view value;
    };

    const Case cases[] = {
        {"20 eur in yen", "¥3,261"},         // no decimals where the currency has none
        {"$12 in paris", "€11.04"},          // a city for its money
        {"€5 as usd", "$5.43"},              // and its accents and signs
        {"12.50 usd into euros", "€11.50"},  // every connector
        {"1 jpy in usd", "$0.0067"},         // four digits below 1
        {"0.001 jpy in usd", "$0.00000667"}, // eight where four would show nothing
        {"0 usd in eur", "€0.00"},
        {"-5 usd in eur", "-€4.60"},
        {"minus 5 usd in eur", "-€4.60"},
        {"-$5 in eur", "-€4.60"},
        {"5 usd in the netherlands", "€4.60"},
        {"5 usd in eurozone", "€4.60"},
        {"1,000 usd in eur", "€920.00"},
        {"1,00 usd in eur", "€0.92"}, // no thousands, so a decimal comma
        {"3,50 usd in eur", "€3.22"},
        {"0,125 usd in eur", "€0.115"}, // nobody groups a zero
        {"1,00,0 usd in eur", "nothing"},
        {"1e3 usd in eur", "€920.00"}, // a number elsewhere too
        {"1.2.3 usd in eur", "nothing"},
        {"$12.50 to eur", "€11.50"},
        {"20 british pounds in usd", "$25.00"},
        {"20 canadian dollars in u.s. dollars", "$14.60"},
        {"us$5 in eur", "€4.60"},
        {"5k usd in eur", "€4,600.00"},
        {"$5m in eur", "€4,600,000.00"},
        {"5 million yen in usd", "$33,333.33"},
        {"five dollars in euros", "€4.60"},
        {"twenty-five dollars in euros", "€23.00"},
        {"two hundred thousand dollars in euros", "€184,000.00"},
        {"half a dollar in euros", "€0.46"},
        {"a dollar in euros", "€0.92"},
        {"5 bucks in eur", "€4.60"},
        {"how much is 5 usd in eur?", "€4.60"},
        {"convert 5 usd to eur", "€4.60"},
        {"What's 5 USD in EUR", "€4.60"},
        {"usd to eur", "€0.92"}, // one of it
        {"eur 20 in usd", "$21.74"},
        {"100 in thailand", "THB\u00a03,240.00"}, // of the user's own money
        {"100 in eur", "€92.00"},
        {"100 in usd", "nothing"}, // which is that already
        {"8 in paris", "nothing"}, // a bare hour
        {"12 in paris", "nothing"},
        {"13 in paris", "€11.96"}, // which nobody says without its half
        {"0 in paris", "€0.00"},
        {"20 in thailand", "THB\u00a0648.00"},
        {"100m in paris", "nothing"}, // metres and minutes before millions
        {"5m in cup", "nothing"},
        {"how many euros is 100 usd", "€92.00"}, // the other way round
        {"how many euros in 100 dollars", "€92.00"},
        {"how many dollars is 20 pounds?", "$25.00"},
        {"100 dollars is how many euros", "€92.00"},
        {"how many people in france", "nothing"},
        {"100 usd = eur", "€92.00"},
        {"100 usd -> eur", "€92.00"},
        {"100usd→eur", "€92.00"},
        {"100 usd eur", "€92.00"},
        {"$20 cad in usd", "$14.60"}, // the code says which dollar
        {"$20 eur in usd", "nothing"},
        {"50 cents in eur", "€0.46"},
        {"฿324 in usd", "$10.00"}, // a sign beside the four
        {"20 eur in california", "$21.74"},
        {"20 usd in kosovo", "€18.40"},
        {"20 usd in myanmar (burma)", "No rate for the Myanmar Kyat"}, // as it is shown
        {"20 usd in nz", "No rate for the New Zealand Dollar"},
        {"an american in paris", "nothing"},
        {"london to paris", "nothing"},
        {"all in all", "nothing"},
        {"all to try", "nothing"}, // two English words
        {"try to top", "nothing"},
        {"won to real", "nothing"},
        {"usd to try", "No rate for the Turkish Lira"}, // one of them beside a code
        {"top 5 in paris", "nothing"},
        {"5 kg in lb", "nothing"},
        {"5 min in sec", "nothing"}, // three letters are no code yet
        {"usd", "nothing"},
        {"in ", "nothing"},
        {"", "nothing"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(value(text), expected);
    }
    std::string endless(100'000, '9');
    endless += " usd in eur";
    EXPECT_EQ(value(endless), "nothing");
    EXPECT_EQ(value("\xff\xfe 5 usd in eur"), "nothing");
}

TEST(Currency, takesASignForTheMoneyThatGoesByItAtHome) {
    struct Case {
        std::string_view text;
        std::string_view home;
        std::string_view rate; ///< how the amount is read
    };

    const Case cases[] = {
        {"$5 in eur", "CAD", "5 CAD at 0.6715"},
        {"$12 in paris", "CAD", "12 CAD at 0.6715"},
        {"$12 in paris", "EUR", "12 USD at 0.9200"},
        {"5 eur in $", "CAD", "5 EUR at 1.4891"},
        {"$5 in cad", "CAD", "5 USD at 1.3700"}, // what is Canadian already needs no answer
        {"5 dollars in eur", "CAD", "5 USD at 0.9200"},
    };
    for (const auto& [text, home, rate] : cases) {
        SCOPED_TRACE(text);
        const auto answer = asked(text, home);
        ASSERT_TRUE(answer);
        EXPECT_THAT(answer->detail, testing::HasSubstr(rate));
    }
}

TEST(Currency, leavesMeasuresAlone) {
    const auto rates = table();
    const auto areMeasures = [](std::string_view from, std::string_view to) {
        return from == "kgs" && to == "pounds";
    };
    const auto ask = [&](std::string_view text) {
        return Answers::currency(text, &rates, now, "USD", formats(), areMeasures).has_value();
    };
    EXPECT_FALSE(ask("70 kgs in pounds"));
    EXPECT_TRUE(ask("70 kgs in dollars"));
}

TEST(Currency, thereAndBackIsTheSame) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> amounts(0.01, 1e6);
    const auto rates = table();
    for (int round = 0; round < 200; ++round) {
        const double amount = amounts(random);
        for (const auto& from : rates.available())
            for (const auto& to : rates.available()) {
                // Through a third currency as well: cross rates agree.
                const double there = amount / *rates.rate(from) * *rates.rate(to);
                const double around = there / *rates.rate(to) * *rates.rate("JPY");
                const double back = around / *rates.rate("JPY") * *rates.rate(from);
                EXPECT_NEAR(back / amount, 1, 1e-12) << from << to;
            }
    }
}

TEST(Currency, readsAnAmountAlone) {
    const auto reading = [](std::string_view text,
                            std::string_view home = "USD",
                            BareNumbers bareNumbers = BareNumbers::read) {
        return Answers::amountReading(text, home, bareNumbers).value_or(CurrencyReading{});
    };
    EXPECT_EQ(reading("5 dollars", "CAD"),
              (CurrencyReading{.amount = 5, .code = "USD", .typed = "dollars"}));
    EXPECT_EQ(reading("$5", "CAD"),
              (CurrencyReading{.amount = 5, .code = "CAD", .typed = "$", .guessed = true}));
    EXPECT_EQ(reading("$5", "CAD").detail(), "Canadian Dollar (CAD) · from “$”");
    EXPECT_EQ(reading("5 €", "CAD").code, "EUR");
    EXPECT_EQ(reading("¥5", "CNY").code, "CNY");
    EXPECT_EQ(reading("20 paris").detail(), "Euro (EUR) · France");
    EXPECT_EQ(reading("20 paris").flag, "🇫🇷");
    EXPECT_EQ(reading("1,234.5").amount, 1234.5);
    EXPECT_TRUE(reading("100", "EUR").guessed);
    EXPECT_EQ(reading("100", "EUR").code, "EUR");
    EXPECT_EQ(reading("100", "EUR", BareNumbers::ignored), CurrencyReading{});
    EXPECT_EQ(reading("how much is -5 usd").amount, -5);
    EXPECT_EQ(reading("12 mad", "MAD").code, "MAD"); // who pays with it means it
    EXPECT_EQ(reading("5000 won").code, "KRW");
    for (const auto* const text : {"12 mad",
                                   "5 all",
                                   "2 nice",
                                   "3 split",
                                   "4 java",
                                   "5m",
                                   "5 usd in eur",
                                   "5 in",
                                   "top 5",
                                   "5 kg",
                                   "usd",
                                   "$",
                                   "-",
                                   "a "}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(reading(text), CurrencyReading{});
    }
}

TEST(Currency, fansOutToTheFavoritesAndHome) {
    const auto rates = table();
    const std::vector<std::string> favorites = {"JPY", "EUR", "AED"};
    const auto fan = [&](std::string_view text, const RateTable* known) {
        return Answers::currencyFan(
            text, known, favorites, "USD", now, BareNumbers::ignored, formats());
    };
    const auto rows = fan("20 eur", &rates);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].value, "¥3,261");
    EXPECT_EQ(rows[0].detail, "Euro (EUR) at 163.0435 · 5 min ago");
    EXPECT_EQ(rows[0].glyph, "🇯🇵");
    EXPECT_EQ(rows[1].value, "$21.74");
    EXPECT_THAT(fan("20 usd", &rates), testing::SizeIs(2));
    EXPECT_THAT(fan("20 kg", &rates), IsEmpty());
    ASSERT_EQ(fan("20 eur", nullptr).size(), 1U);
    EXPECT_EQ(fan("20 eur", nullptr)[0].value, "Rates have not loaded yet");
    EXPECT_EQ(fan("20 aed", &rates)[0].value, "No rate for the United Arab Emirates Dirham");
}

TEST(Currency, tellsTheAgeInWholeUnits) {
    struct Case {
        double age;
        std::string_view text;
    };

    const Case cases[] = {{-5, "1 min ago"},
                          {0, "1 min ago"},
                          {119, "1 min ago"},
                          {3599, "59 min ago"},
                          {3600, "1 h ago"},
                          {7199, "1 h ago"},
                          {1e300, "277777777777 h ago"},
                          {std::nan(""), "1 min ago"}};
    for (const auto& [age, text] : cases)
        EXPECT_EQ(Answers::ageText(0, age), text);
}

TEST(Currency, creditsItsSourceWithTheTimeOnTheUsersClocks) {
    const auto athens = formats().in(*Zone::named("Europe/Athens"));
    const AnswerSource source{.host = "rates.example", .url = {}, .fetched = now - 3600};
    EXPECT_EQ(source.line(now, formats()), "rates.example · Dec 31, 11:00 pm");
    EXPECT_EQ(source.line(now, athens), "rates.example · today at 1:00 am");
}

TEST(Currency, wordsAreWholeAndMeanCurrenciesThatAreKnown) {
    const auto words = Tables::rows("currency-words");
    EXPECT_EQ(words.size(), 57U);
    std::set<std::string_view> seen;
    for (const auto& row : words) {
        EXPECT_EQ(row.size(), 2U);
        EXPECT_TRUE(seen.insert(row[0]).second) << row[0];
        EXPECT_EQ(Answers::resolveCurrency(row[0])->code, row[1]) << row[0];
    }
    for (const auto& row : Tables::rows("currency-names")) {
        SCOPED_TRACE(row[0]);
        EXPECT_NE(Answers::currencyName(row[0]), row[0]);
        EXPECT_EQ(Answers::resolveCurrency(row[0])->code, row[0]);
        for (const auto name : Tables::list(row.at(1))) {
            EXPECT_EQ(Answers::resolveCurrency(name),
                      (Answers::ResolvedCurrency{std::string(row[0]), {}}))
                << name;
        }
    }
}

} // namespace
} // namespace tessarine
