#include "launcherapp/sources/Rates.h"

#include "LauncherCore/answers/RateTableJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakePlatform.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string ecbUrl = "http://ecb.example/v1/latest?from=USD";
const std::string openUrl = "http://open.example/v6/latest/USD";

class RatesTest : public testing::Test {
protected:
    RatesTest() {
        web.documents[ecbUrl] = HttpAnswer{200, R"({"base":"USD","rates":{"EUR":0.92,"GBP":0.8}})"};
        web.documents[openUrl] = HttpAnswer{200, R"({"base_code":"USD","rates":{"AED":3.67}})"};
    }

    std::unique_ptr<Rates> make() {
        return std::make_unique<Rates>(
            platform.queue,
            web,
            diagnostics,
            StateFile(platform.files,
                      platform.work.serial("rates"),
                      diagnostics,
                      "/data/rates.json",
                      StateFile::Failures::silent),
            RateProviders{.ecb = {"http://ecb.example", "http://ecb.example/page"},
                          // A slash at the end of an address makes no second one in the request.
                          .open = {"http://open.example/", "http://open.example/page"}},
            [this] { return source; });
    }

    /// Started, with what the start asked for arrived.
    std::unique_ptr<Rates> started() {
        auto rates = make();
        rates->start();
        platform.time.advance(Seconds{1});
        return rates;
    }

    std::string text(const std::string& name) {
        platform.time.settle();
        return platform.files.read("/data/" + name, 1 << 20).value_or("(absent)");
    }

    FakePlatform platform;
    FakeHttpClient web{platform.time};
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/data"; },
                            Diagnostics::Run::oneShot};
    RateSource source = RateSource::ecb;
};

TEST_F(RatesTest, fetchesATableAndKeepsItForTheNextRun) {
    auto rates = make();
    int changes = 0;
    const auto watch = rates->onChange([&] { ++changes; });
    rates->start();
    platform.time.settle();
    EXPECT_TRUE(rates->refreshing());
    EXPECT_FALSE(rates->table());
    EXPECT_THAT(rates->available(), IsEmpty());
    platform.time.advance(Seconds{1});
    EXPECT_FALSE(rates->refreshing());
    EXPECT_EQ(changes, 2);
    ASSERT_TRUE(rates->table());
    EXPECT_EQ(rates->table()->host, "ecb.example");
    EXPECT_EQ(rates->table()->checkURL, "http://ecb.example/page");
    EXPECT_NEAR(rates->table()->fetched, platform.queue.epoch, 1);
    EXPECT_THAT(rates->available(), ElementsAre("EUR", "GBP", "USD"));
    EXPECT_THAT(text("tessarine.log"),
                HasSubstr(" rates: 2 currencies fetched from ecb.example\n"));
    EXPECT_THAT(web.asked, ElementsAre(HttpRequest{.url = ecbUrl, .timeout = Seconds{8}}));

    const auto table = *rates->table();
    auto next = make();
    next->load(); // and asks nobody
    platform.time.advance(Seconds{1});
    EXPECT_EQ(*next->table(), table);
    EXPECT_EQ(web.asked.size(), 1U);
}

TEST_F(RatesTest, isAskedAgainAfterTwelveHoursOnTheHour) {
    const auto rates = started();
    platform.time.advance(Seconds{11 * 3600});
    EXPECT_EQ(web.asked.size(), 1U);
    platform.time.advance(Seconds{2 * 3600});
    EXPECT_EQ(web.asked.size(), 2U);
    EXPECT_GT(rates->table()->fetched, platform.queue.epoch + 12 * 3600);
    rates->refreshIfStale(Rates::Force::no);
    EXPECT_EQ(web.asked.size(), 2U);
    rates->refreshIfStale(Rates::Force::yes);
    rates->refreshIfStale(Rates::Force::yes); // while the first is under way
    EXPECT_EQ(web.asked.size(), 3U);
}

TEST_F(RatesTest, aStartWaitsForNoDiskAndAsksOnlyForWhatItLacks) {
    started();
    const auto rates = make();
    rates->start();
    EXPECT_FALSE(rates->table());
    rates->refreshIfStale(Rates::Force::no); // the preference changes before the cache is read
    EXPECT_FALSE(rates->refreshing());
    platform.time.advance(Seconds{1});
    ASSERT_TRUE(rates->table());
    EXPECT_EQ(rates->table()->rate("EUR"), 0.92);
    EXPECT_EQ(web.asked.size(), 1U) << "the cache is fresh";
}

TEST_F(RatesTest, aTimeFromTheFutureIsStale) {
    RateTable table{.base = "USD",
                    .rates = {{"EUR", 1}},
                    .fetched = platform.queue.now() + 1e6,
                    .host = "ecb.example",
                    .checkURL = ""};
    platform.files.file("/data/rates.json", RateTableJson::encoded(table));
    EXPECT_EQ(started()->table()->rate("EUR"), 0.92);
}

TEST_F(RatesTest, anotherSourceIsAskedAtOnce) {
    const auto rates = started();
    source = RateSource::open;
    rates->refreshIfStale(Rates::Force::no);
    EXPECT_EQ(rates->table()->host, "ecb.example"); // until the other has come
    platform.time.advance(Seconds{1});
    EXPECT_EQ(rates->table()->host, "open.example");
    EXPECT_EQ(rates->table()->rate("AED"), 3.67);

    // And back again before the answer: what comes from the source of between is not wanted.
    source = RateSource::ecb;
    rates->refreshIfStale(Rates::Force::no);
    source = RateSource::open;
    rates->refreshIfStale(Rates::Force::no);
    EXPECT_FALSE(rates->refreshing());
    platform.time.advance(Seconds{1});
    EXPECT_EQ(rates->table()->host, "open.example");
}

TEST_F(RatesTest, whateverGoesWrongTheOldTableStays) {
    struct Case {
        HttpResult result;
        std::string error;
        std::string log;
    };

    const std::string noTable = "ecb.example answered without a rate table.";
    const std::string noRates = "rates: ecb.example answered with no rates\n";
    const Case cases[] = {
        {HttpAnswer{200, R"({"message":"soon"})"}, noTable, noRates}, // JSON without rates
        {HttpAnswer{200, R"({"rates":[1,2]})"}, noTable, noRates},
        {HttpAnswer{200, "<html>Sign in to this network</html>"}, noTable, noRates},
        {HttpAnswer{200, ""}, noTable, noRates},
        {HttpAnswer{500, R"({"rates":{"EUR":5}})"}, noTable, noRates}, // not the server's yes
        {HttpFailure{"Connection refused"},
         "Connection refused",
         "rates: fetch failed (Connection refused); using cached table\n"},
        {HttpFailure{},
         "The rate table could not be fetched.",
         "rates: fetch failed (no data); using cached table\n"},
    };
    const auto rates = started();
    const auto good = web.documents[ecbUrl];
    for (const auto& [result, error, log] : cases) {
        SCOPED_TRACE(error);
        web.documents[ecbUrl] = result;
        rates->refreshIfStale(Rates::Force::yes);
        platform.time.advance(Seconds{1});
        EXPECT_EQ(rates->lastError(), error);
        EXPECT_EQ(rates->table()->rate("EUR"), 0.92);
        EXPECT_FALSE(rates->refreshing());
        EXPECT_THAT(text("tessarine.log"), testing::EndsWith(log));
        web.documents[ecbUrl] = good;
        rates->refreshIfStale(Rates::Force::yes);
        platform.time.advance(Seconds{1});
        EXPECT_EQ(rates->lastError(), std::nullopt);
    }
    web.delay = Seconds{60};
    rates->refreshIfStale(Rates::Force::yes);
    platform.time.advance(Seconds{9});
    EXPECT_EQ(rates->lastError(), "timed out");
}

TEST_F(RatesTest, aBrokenCacheIsNone) {
    platform.files.file("/data/rates.json", R"({"base":"USD","rates":{"EUR")");
    web.documents.clear();
    const auto rates = started();
    EXPECT_FALSE(rates->table());
    EXPECT_EQ(rates->lastError(), "no such host");
}

TEST_F(RatesTest, mayGoWhileItIsAnswered) {
    auto rates = make();
    rates->start();
    rates.reset();
    platform.time.advance(Seconds{7200});
    EXPECT_EQ(text("rates.json"), "(absent)");
}

TEST(RateProvider, isKnownByItsHost) {
    EXPECT_EQ((RateProvider{.address = "https://rates.example", .page = {}}.host()),
              "rates.example");
    EXPECT_EQ((RateProvider{.address = "http://127.0.0.1:8080/", .page = {}}.host()),
              "127.0.0.1:8080");
    EXPECT_EQ(RateProviders{}.ecb.host(), "api.frankfurter.dev");
}

} // namespace
} // namespace tessarine
