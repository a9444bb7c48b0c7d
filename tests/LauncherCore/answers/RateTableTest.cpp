#include "LauncherCore/answers/RateTable.h"

#include "LauncherCore/answers/RateTableJson.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

RateTable table() {
    return {.base = "USD",
            .rates = {{"EUR", 0.92}, {"ZAR", 18.5}},
            .fetched = 1767225600.5,
            .host = "rates.example",
            .checkURL = "https://rates.example/page"};
}

TEST(RateTable, knowsItsBaseWhetherOrNotItIsListed) {
    auto rates = table();
    EXPECT_THAT(rates.available(), ElementsAre("EUR", "USD", "ZAR"));
    EXPECT_EQ(rates.rate("USD"), 1);
    EXPECT_EQ(rates.rate("EUR"), 0.92);
    EXPECT_EQ(rates.rate("eur"), std::nullopt);
    rates.rates["USD"] = 2; // nonsense of a provider
    EXPECT_EQ(rates.rate("USD"), 1);
    EXPECT_THAT(rates.available(), ElementsAre("EUR", "USD", "ZAR"));
}

TEST(RateTable, comesBackFromItsCache) {
    EXPECT_EQ(RateTableJson::decoded(RateTableJson::encoded(table())), table());
}

TEST(RateTable, aDocumentThatIsNoneIsRefused) {
    const auto whole = RateTableJson::encoded(table());
    const char* const texts[] = {
        "",
        "[]",
        "null",
        R"({"base":"USD","rates":{"EUR":1},"fetched":1,"host":"h"})",                  // no page
        R"({"base":"USD","rates":{"EUR":"1"},"fetched":1,"host":"h","checkURL":"p"})", // no rate
        R"({"base":"USD","rates":[1],"fetched":1,"host":"h","checkURL":"p"})",         // no object
        R"({"base":1,"rates":{"EUR":1},"fetched":1,"host":"h","checkURL":"p"})",       // no text
        R"({"base":"USD","rates":{"EUR":1},"fetched":"1","host":"h","checkURL":"p"})", // no time
        R"({"base":"USD","rates":{"EUR":1e999},"fetched":1,"host":"h","checkURL":"p"})", // no
                                                                                         // number
    };
    for (const auto* const text : texts) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(RateTableJson::decoded(text));
    }
    EXPECT_FALSE(RateTableJson::decoded(whole.substr(0, whole.size() - 1)));
}

TEST(RateTable, readsWhatTheProvidersSend) {
    const auto ecb = RateTableJson::decodedAnswer(
        R"({"amount":1.0,"base":"USD","date":"2026-01-01","rates":{"EUR":0.92,"CHF":0.8}})");
    ASSERT_TRUE(ecb);
    EXPECT_EQ(ecb->base, "USD");
    EXPECT_EQ(ecb->rate("CHF"), 0.8);
    const auto open = RateTableJson::decodedAnswer(
        R"({"result":"success","base_code":"EUR","rates":{"EUR":1,"JPY":163,"XXX":0,"YYY":-1,"Z":"?"}})");
    ASSERT_TRUE(open);
    EXPECT_EQ(open->base, "EUR");
    EXPECT_THAT(open->available(), ElementsAre("EUR", "JPY")); // none that can't be divided by
    EXPECT_EQ(RateTableJson::decodedAnswer(R"({"rates":{"EUR":1}})")->base, "USD");
    for (const auto* const body :
         {"", "<html>", "[]", "{}", R"({"rates":{}})", R"({"rates":[]})"}) {
        SCOPED_TRACE(body);
        EXPECT_FALSE(RateTableJson::decodedAnswer(body));
    }
}

} // namespace
} // namespace tessarine
