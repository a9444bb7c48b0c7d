#include "launcherapp/sources/AnswerService.h"

#include "launcherapp/sources/CalcStore.h"
#include "launcherapp/sources/Rates.h"
#include "launcherapp/sources/ZoneStore.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AnswerServiceTest : public testing::Test {
protected:
    AnswerServiceTest() {
        services.platform.files.file(folder + "/rates.json",
                                     R"({"base":"USD","rates":{"EUR":0.5,"GBP":0.25,"CUP":24},)"
                                     R"("fetched":0,"host":"h","checkURL":"u"})");
        rates.load();
        zones.start();
        verbs.copyText = [this](const std::string& text) { copied.push_back(text); };
        services.prefs.homeCurrency.set("GBP");
        services.prefs.favoriteCurrencies.set({"EUR"});
    }

    StateFile file(const std::string& name) {
        return {services.platform.files,
                services.platform.work.serial("state"),
                services.diagnostics,
                folder + "/" + name,
                StateFile::Failures::silent};
    }

    AnswerRows rows(std::string_view query) { return answers.rows(query, verbs, history); }

    static std::vector<std::string> titles(const Rows& rows) {
        std::vector<std::string> result;
        for (const auto& row : rows)
            result.push_back(row.title);
        return result;
    }

    const std::string folder = "/data";
    FakeServices services;
    FakeHttpClient web{services.platform.time};
    Rates rates{services.platform.queue, web, services.diagnostics, file("rates.json"), {}, [] {
                    return RateSource::ecb;
                }};
    std::string here = "America/New_York";
    ZoneStore zones{services.platform.queue,
                    services.prefs,
                    {.read = [] { return "America/New_York"; }, .write = [](const auto&) {}},
                    [this] { return here; }};
    CalcStore calculations{services.platform.queue, file("calc-history.json"), [] { return true; }};
    AnswerService answers{{.queue = services.platform.queue,
                           .prefs = services.prefs,
                           .rates = rates,
                           .zones = zones,
                           .calculations = calculations},
                          {}};
    RowVerbs verbs;
    CalcHistoryVerbs history;
    std::vector<std::string> copied;
};

TEST_F(AnswerServiceTest, returnCopiesAFigureAndFilesIt) {
    rows("rent = 1200").main->primary();
    rows("5 kg").unitFan.front().primary();
    rows("2 cups in g").main->primary(); // a question back is no figure
    EXPECT_THAT(copied, ElementsAre("1,200", "11.0231 lb", "Which ingredient?"));
    ASSERT_EQ(calculations.history().entries().size(), 2U);
    EXPECT_EQ(calculations.history().entries()[0].kind, AnswerKind::unit);
    EXPECT_EQ(calculations.history().entries()[1].name, "rent");
    EXPECT_EQ(rows("rent * 2").main->title, "2,400") << "what was filed can be used at once";
}

TEST_F(AnswerServiceTest, earlierCalculationsStandBelowACalculation) {
    rows("2 + 2").main->primary();
    EXPECT_THAT(titles(rows("3 + 3").earlier), ElementsAre("2 + 2 = 4"));
    EXPECT_THAT(rows("2 + 2").earlier, IsEmpty()) << "but not the very same one";
    EXPECT_THAT(rows("firefox").earlier, IsEmpty());
    EXPECT_THAT(rows("2 cups in g").earlier, IsEmpty()) << "a question back is no calculation";
    services.prefs.calcShowRecent.set(false);
    EXPECT_THAT(rows("3 + 3").earlier, IsEmpty());
}

TEST_F(AnswerServiceTest, anAmountFansOutOnceAsWhatItIsMeantAs) {
    const auto money = rows("20 usd");
    EXPECT_THAT(titles(money.currencyFan), ElementsAre("€10.00", "£5.00"));
    ASSERT_TRUE(money.currencyReading);
    EXPECT_EQ(money.currencyReading->code, "USD");
    const auto cups = rows("5 cup"); // which is also the code of Cuba's peso
    EXPECT_THAT(cups.currencyFan, IsEmpty());
    EXPECT_FALSE(cups.currencyReading);
    EXPECT_FALSE(cups.unitFan.empty());
    EXPECT_THAT(rows("5 kg in lb").unitFan, IsEmpty()) << "the answer itself says it";
    const auto pounds = rows("20 pounds"); // either may be meant: each stands together
    ASSERT_FALSE(pounds.currencyFan.empty() || pounds.unitFan.empty());
    EXPECT_GT(pounds.currencyFan.back().score, pounds.unitFan.front().score);
    EXPECT_THAT(titles(rows("a cup of flour").unitFan), ElementsAre("120 g"));
}

TEST_F(AnswerServiceTest, settingsAndTravelCountFromTheNextKeystroke) {
    EXPECT_EQ(rows("sin(90)").main->title, "1");
    services.prefs.angleMode.set(Calc::AngleMode::radians);
    EXPECT_EQ(rows("sin(90)").main->title, "0.89399666");
    services.prefs.measureSystem.set(MeasureSystem::metric);
    EXPECT_EQ(rows("1 cup in ml").main->title, "250 ml");
    const auto day = rows("today").main->title;
    here = "Pacific/Kiritimati"; // 14 hours ahead of UTC
    zones.reload();
    EXPECT_NE(rows("today").main->title, day);
}

} // namespace
} // namespace tessarine
