#include "LauncherCore/answers/TimeZones.h"

#include "LauncherCore/text/Formats.h"
#include "LauncherCore/text/Zone.h"

#include <gmock/gmock.h>

#include <limits>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const ZoneClock newYork{"New York", "America/New_York"};

class TimeZonesTest : public testing::Test {
protected:
    std::vector<Answer> ask(std::string_view text) const {
        return TimeZones::answers(text, context, formats);
    }

    /// Values of all rows, parted by commas; empty for none.
    std::string values(std::string_view text) const {
        std::string all;
        for (const auto& row : ask(text))
            all += (all.empty() ? "" : ", ") + row.value;
        return all;
    }

    std::string detail(std::string_view text) const {
        const auto rows = ask(text);
        return rows.empty() ? "(no row)" : rows.front().detail;
    }

    Formats formats{{}, *Zone::named("America/New_York")};
    TimeZones::Context context{
        .home = newYork,
        .here = newYork,
        .primary = {newYork, {"London", "Europe/London"}, {"Tokyo", "Asia/Tokyo"}},
        .now = 1783710000}; // Friday 2026-07-10, 3pm in New York
};

struct Case {
    const char* text;
    const char* values;
};

TEST_F(TimeZonesTest, clocksNowAreShownWithTheirDistanceFromHome) {
    const Case cases[] = {
        {"time in athens", "10pm (+7h)"},
        {"  Time in ATHENS?  ", "10pm (+7h)"},
        {"what time is it in paris and rome", "9pm (+6h), 9pm (+6h)"},
        {"what's the time in rome, tokyo", "9pm (+6h), 4am Sat (+13h)"},
        {"time in my clocks", "3pm (same as home), 8pm (+5h), 4am Sat (+13h)"},
        {"my time zones", "3pm (same as home), 8pm (+5h), 4am Sat (+13h)"},
        {"what time is it", "3pm (same as home)"}, // nothing left: home
        {"time now", "3pm (same as home)"},
        {"home time", "3pm (same as home)"},
        {"local time", "3pm (same as home)"},
        {"time in toronto", "3pm (same as New York)"}, // in step, and not home's own zone
        {"time in et", "3pm (same as home)"},
        {"time in los angeles right now", "12pm (-3h)"},
        {"time in kathmandu", "12:45am Sat (+9:45h)"}, // a zone of three quarters
        {"time in auckland", "7am Sat (+16h)"},        // across the date line
        {"time in pago pago", "8am (-7h)"},
        {"time in paris and xyzzy", "9pm (+6h)"},
        {"time in trinidad and tobago", "3pm (same as New York)"}, // one place
        {"time in seoul, south korea", "4am Sat (+13h)"},          // one clock
        {"time in São Paulo", "4pm (+1h)"},
        {"time in st. john's", "4:30pm (+1:30h)"},
        {"time in nyc", "3pm (same as home)"},
        {"time in playa del carmen", "2pm (-1h)"},
        {"time in the bronx", "3pm (same as home)"},
        {"time in easter", "1pm (-2h)"}, // the question says where
        {"paris and rome time", "9pm (+6h), 9pm (+6h)"},
        {"time in rome and in tokyo", "9pm (+6h), 4am Sat (+13h)"},
        {"tokyo time", "4am Sat (+13h)"},
        {"time athens", "10pm (+7h)"},
        {"now in tokyo", "4am Sat (+13h)"},
        {"utc now", "7pm (+4h)"},
        {"utc+5:30", "12:30am Sat (+9:30h)"},
        {"what time zone is tokyo", "4am Sat (+13h)"},
        {"what time zone is arizona in", "12pm (-3h)"},
        {"what is time in tokyo", "4am Sat (+13h)"},
        {"what time tokyo", "4am Sat (+13h)"},
        {"tokyo zone", "4am Sat (+13h)"},
        {"time in nz", "7am Sat (+16h)"},
        {"time in aus", "5am Sat (+14h)"},
        {"time in hamilton", "3pm (same as New York)"}, // Ontario's is the larger
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(values(text), expected);
    }
}

TEST_F(TimeZonesTest, aClockSaysWhereAndOnWhichDay) {
    EXPECT_THAT(ask("time in tokyo"),
                ElementsAre(Answer{.value = "4am Sat (+13h)",
                                   .detail = "Tokyo · Sat, Jul 11",
                                   .symbol = "clock",
                                   .glyph = "🇯🇵"}));
    EXPECT_EQ(detail("time in brooklyn"), "New York · Fri, Jul 10");
    EXPECT_EQ(detail("time in texas"), "Texas · Fri, Jul 10");
    EXPECT_EQ(detail("time in australia"),
              "Australia (Sydney, one of several zones) · Sat, Jul 11");
    EXPECT_EQ(detail("time in germany"), "Germany · Fri, Jul 10"); // two zones in step
    EXPECT_EQ(ask("time in utc").front().glyph, std::nullopt);
    EXPECT_EQ(ask("time in coral harbour").front().glyph, "🇨🇦"); // by an older name
}

TEST_F(TimeZonesTest, aStatedTimeIsShownOnOtherClocks) {
    const Case cases[] = {
        {"3pm ET in athens", "10pm (+7h)"},
        {"3pm", "3pm (same as home), 8pm (+5h), 4am Sat (+13h)"},
        {"noon in tokyo", "1am Sat (+13h)"},
        {"midnight utc to nyc", "8pm Thu (same as home)"}, // of yesterday, as UTC has today
        {"11:59pm pt in utc", "6:59am Sat (+4h)"},         // Friday's in the Pacific
        {"3p et in athens", "10pm (+7h)"},
        {"3 p.m. et in athens", "10pm (+7h)"},
        {"3:30pm et to athens", "10:30pm (+7h)"},
        {"15:30 berlin time in nyc", "9:30am (same as home)"},
        {"5.30pm et in athens", "12:30am Sat (+7h)"},
        {"10am et pt", "7am (-3h)"},
        {"10am et/pt", "7am (-3h)"},
        {"7pm cet here", "1pm (same as home)"},
        {"12 noon in london", "5pm (+5h)"},
        {"half past noon in london", "5:30pm (+5h)"},
        {"quarter to midnight in london", "4:45am Sat (+5h)"},
        {"5pm eastern time", "5pm (same as home), 10pm (+5h), 6am Sat (+13h)"},
        {"12am in london", "5am (+5h)"},
        {"12pm in london", "5pm (+5h)"},
        {"six o'clock et in london", "11am (+5h)"},
        {"half past 6 et in london", "11:30am (+5h)"},
        {"quarter past six et in london", "11:15am (+5h)"},
        {"quarter to nine et in london", "1:45pm (+5h)"},
        {"quarter to one et in london", "5:45pm (+5h)"}, // not at night
        {"8 tonight in london", "1am Sat (+5h)"},
        {"8 in the evening in london", "1am Sat (+5h)"},
        {"12 tonight in london", "5am (+5h)"}, // midnight that ends today
        {"3pm in athens from et", "10pm (+7h)"},
        {"3pm utc-3 in tokyo", "3am Sat (+13h)"},
        {"if it's 3pm in tokyo what time is it in london", "7am (+5h)"},
        {"what time is 3pm et in athens", "10pm (+7h)"},
        {"tomorrow 9am pt in london", "5pm (+5h)"},
        {"9am tomorrow pt in london", "5pm (+5h)"},
        {"what time is it in athens at 3pm", "10pm (+7h)"},
        {"athens at 3pm et", "10pm (+7h)"},
        {"3pm et in athens and tokyo", "10pm (+7h), 4am Sat (+13h)"},
        {"noon et to my zones", "12pm (same as home), 5pm (+5h), 1am Sat (+13h)"},
        {"athens 3pm", "8am (same as home), 1pm (+5h), 9pm (+13h)"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(values(text), expected);
    }
}

TEST_F(TimeZonesTest, aStatedTimeSaysHowItWasRead) {
    const Case cases[] = {
        {"3pm et in athens", "Athens · at 3pm from Eastern, Fri, Jul 10"},
        {"8 in paris", "Paris · at 8am from New York, Fri, Jul 10, read as morning"},
        {"quarter to nine in paris",
         "Paris · at 8:45am from New York, Fri, Jul 10, read as morning"},
        {"4:30", "New York · at 4:30am from New York, Fri, Jul 10, read as morning"},
        {"04:30 in paris", "Paris · at 4:30am from New York, Fri, Jul 10, read as morning"},
        {"00:30 in paris", "Paris · at 12:30am from New York, Fri, Jul 10"}, // of 24 hours
        {"8 in the morning in paris", "Paris · at 8am from New York, Fri, Jul 10"},
        {"8 tonight in paris", "Paris · at 8pm from New York, Fri, Jul 10"},
        {"16:30 in paris", "Paris · at 4:30pm from New York, Fri, Jul 10"},
        {"tomorrow 9am pt in london", "London · at 9am from Pacific, Sat, Jul 11"},
        {"9am yesterday in london", "London · at 9am from New York, Thu, Jul 9"},
        {"9am on monday in london", "London · at 9am from New York, Mon, Jul 13"},
        {"9am friday in london", "London · at 9am from New York, Fri, Jul 10"}, // today is one
        {"9am next friday in london", "London · at 9am from New York, Fri, Jul 17"},
        {"9am in tokyo from sydney", "Tokyo · at 9am from Sydney, Sat, Jul 11"}, // today there
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(detail(text), expected);
    }
    // The doubt is said once, not on each clock of a fan.
    const auto fan = ask("4:30");
    ASSERT_EQ(fan.size(), 3u);
    EXPECT_THAT(fan.back().detail, Not(HasSubstr("morning")));
}

TEST_F(TimeZonesTest, twoClocksAreCompared) {
    const Case cases[] = {
        {"athens vs ET", "7 hours ahead of Eastern"},
        {"et versus athens", "7 hours behind Athens"},
        {"time difference between paris and london", "1 hour ahead of London"},
        {"kathmandu minus delhi", "15 minutes ahead of Delhi"},
        {"time difference mumbai", "9 hours 30 minutes ahead of New York"},
        {"tokyo time from home", "13 hours ahead of New York"},
        {"tokyo from me", ""}, // nothing of it speaks of time
        {"time difference with toronto", "the same time as New York"},
        {"how many hours ahead is tokyo from london", "8 hours ahead of London"},
        {"how many hours behind is tokyo", "13 hours ahead of New York"}, // whatever was supposed
        {"how many hours ahead of london is tokyo", "8 hours ahead of London"},
        {"time difference between trinidad and tobago and athens", "7 hours behind Athens"},
        {"utc offset for mumbai", "5 hours 30 minutes ahead of UTC"},
        {"paris tokyo time difference", "7 hours behind Tokyo"},
        {"time difference new york tokyo", "13 hours behind Tokyo"}, // the blank that parts places
        {"difference tokyo", "13 hours ahead of New York"},
        {"what is the utc offset of india", "5 hours 30 minutes ahead of UTC"},
        {"how many hours is it from london to tokyo", "8 hours behind Tokyo"},
        {"is tokyo ahead of london", "8 hours ahead of London"},
        {"difference engine", ""},
        {"time diff tokyo", "13 hours ahead of New York"},
        {"tokyo time difference", "13 hours ahead of New York"},
        {"paris vs xyzzy", ""},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(values(text), expected);
    }
    EXPECT_EQ(detail("athens vs ET"),
              "time difference between Athens and Eastern · 10pm (+7h) and 3pm (same as home) "
              "there now");
}

TEST_F(TimeZonesTest, aSpanFromNowIsShownOnTheClocksAskedFor) {
    const Case cases[] = {
        {"in 2 hours in tokyo", "6am Sat (+13h)"},
        {"now + 90 min in paris", "10:30pm (+6h)"},
        {"tokyo in 2 hours", "6am Sat (+13h)"},
        {"tokyo + 2h", "6am Sat (+13h)"},
        {"1.5 hours from now in paris", "10:30pm (+6h)"},
        {"in 9 hours in my clocks", "12am (same as home), 5am (+5h), 1pm (+13h)"},
        {"time in tokyo in 2 hours", "6am Sat (+13h)"},
        {"what time will it be in 2 hours", "5pm (same as home)"},
        {"2 hours from now", "5pm (same as home)"},
        {"now + 90 min", "4:30pm (same as home)"},
        {"in two hours in tokyo", "6am Sat (+13h)"},
        {"in an hour in tokyo", "5am Sat (+13h)"},
        {"in half an hour in tokyo", "4:30am Sat (+13h)"},
        {"in 1 hour 30 min in tokyo", "5:30am Sat (+13h)"},
        {"tokyo in 1h30m", "5:30am Sat (+13h)"},
        {"tokyo +2h", "6am Sat (+13h)"},
        {"in 2 hours", "5pm (same as home)"},
        {"in 90 minutes", "4:30pm (same as home)"},
        {"in 99999999999999999999 hours in tokyo", ""},
        {"in 1e5 hours in tokyo", ""},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(values(text), expected);
    }
    EXPECT_EQ(detail("in 2 hours in tokyo"), "in 2 hours · Tokyo");
    EXPECT_EQ(detail("1 hr in tokyo"), "in 1 hour · Tokyo");
}

TEST_F(TimeZonesTest, otherQuestionsGetNoClock) {
    for (const auto* text : {
             "",
             "   ",
             "notes",
             "timer",
             "time",
             "now",
             "clock",
             "world clock",
             "time machine",
             "time zone",
             "happy hour",
             "one hour photo",
             "24 hour fitness",
             "half an hour",
             "what time works",
             "notes at home",
             "meeting at 3pm",
             "safari 5 to 7",
             "5 kg in lb",
             "5 m in ft",
             "3 pt in cups",
             "1 in to cm",
             "10 min in hours",
             "90 minutes in hours",
             "100 usd in paris",
             "100 in thailand", // money; a clock has no such hour
             "20 in thailand",
             "2 + 2",
             "255 in hex",
             "1080p",
             "16:9",
             "24:00",
             "13pm",
             "0am",
             "quarter to 99",
             "5.30 in paris",
             "10am et pt et",
             "half of 8",
             "half past",
             "10 minus 3",
             "days until dec 25",
             "how many hours in a day",
             "4 in a row",
             "time in xyzzy",
             "3pm in xyzzy",
             "3pm xyzzy in athens",
             "utc+15",
             "utc+5:60",
             "christmas time", // these are places too
             "act now",
             "me time",
             "bath time",
             "nice time",
         }) {
        SCOPED_TRACE(text);
        EXPECT_THAT(ask(text), IsEmpty());
    }
}

TEST_F(TimeZonesTest, theGateKnowsTheWordsOfTimeAndDigitsThatMayBeClocks) {
    for (const auto* text :
         {"time in athens", "a vs b", "3pm", "3p et", "8 in paris", "half past 3", "9 to tokyo"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(TimeZones::mightBeAboutTime(text));
    }
    for (const auto* text : {"notes", "paris", "p3", "1080", "half of 8", "a to b", ""}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(TimeZones::mightBeAboutTime(text));
    }
    std::string endless(100'000, '9');
    endless += "pm";
    EXPECT_FALSE(TimeZones::mightBeAboutTime(endless));
}

TEST_F(TimeZonesTest, daylightSavingIsOfTheMomentAskedFor) {
    context.here = context.home;
    context.now = 1793480400; // Saturday 2026-10-31, 5pm in New York; clocks go back that night
    EXPECT_EQ(values("time in london"), "9pm (+4h)"); // Britain's went back a week before
    EXPECT_EQ(values("tomorrow noon in london"), "5pm (+5h)");
    EXPECT_EQ(values("in 12 hours in home"), "4am (same as home)"); // through the hour twice told
    context.now = 1772913600; // Saturday 2026-03-07, 3pm in New York; clocks go forward that night
    EXPECT_EQ(values("tomorrow 2:30am in utc"), "7:30am (+4h)"); // told on from before the change
    EXPECT_EQ(detail("tomorrow 2:30am in utc"), "UTC · at 3:30am from New York, Sun, Mar 8");
}

TEST_F(TimeZonesTest, awayFromHomeAClockIsReadWhereTheComputerIs) {
    context.here = {"Tokyo", "Asia/Tokyo"};
    EXPECT_EQ(values("9am in home"), "8pm Fri (same as home)"); // it is Saturday here
    EXPECT_EQ(values("9am my time in tokyo"), "10pm (+13h)");
    EXPECT_EQ(values("time here"), "4am Sat (+13h)");
    context.home = {"Rome", "Europe/Rome"};
    EXPECT_EQ(values("time in paris"), "9pm (same as Rome)");
}

TEST_F(TimeZonesTest, placesResolveInTheirOrder) {
    context.primary.push_back({"The Office", "Asia/Dubai"});
    context.primary.push_back({"Nowhere", "Mars/Olympus"});
    const auto identifier = [&](std::string_view word) {
        const auto found = TimeZones::resolvePlace(word, context);
        return found ? found->identifier : "";
    };
    const std::pair<const char*, const char*> cases[] = {
        {"mine", "America/New_York"},
        {"et", "America/New_York"},
        {"IST", "Asia/Kolkata"},
        {"utc", "Etc/UTC"},
        {"utc+5:30", "GMT+05:30"},
        {"GMT -3", "GMT-03:00"},
        {"utc−3", "GMT-03:00"}, // the typographic minus
        {"utc+0530", "GMT+05:30"},
        {"utc+15", ""},
        {"the bronx", "America/New_York"},
        {"port au prince", "America/Port-au-Prince"},
        {"Buenos Aires", "America/Argentina/Buenos_Aires"},
        {"tokyo local time", "Asia/Tokyo"},
        {"Bali", "Asia/Makassar"},    // not its country's main clock
        {"maui", "Pacific/Honolulu"}, // nor here
        {"australia", "Australia/Sydney"},
        {"american", "America/New_York"},
        {"France", "Europe/Paris"},
        {"the office", ""}, // "the" is dropped from what is typed alone
        {"office", ""},
        {"nowhere", ""},
        {"", ""},
        {"the", ""},
    };
    for (const auto& [word, expected] : cases) {
        SCOPED_TRACE(word);
        EXPECT_EQ(identifier(word), expected);
    }
    EXPECT_EQ(TimeZones::offsetZone("utc+5:30")->name, "UTC+5:30");
    EXPECT_EQ(TimeZones::offsetZone("gmt-3")->name, "GMT-3");
}

TEST_F(TimeZonesTest, whatIsBrokenCostsNoRowOfTheRest) {
    context.primary = {{"Nowhere", "Mars/Olympus"}, {"Tokyo", "Asia/Tokyo"}};
    EXPECT_EQ(values("3pm"), "4am Sat (+13h)");
    context.primary.clear();
    EXPECT_EQ(values("3pm"), "3pm (same as home)");
    context.home = {"Nowhere", "Mars/Olympus"};
    EXPECT_EQ(values("time in tokyo"), "4am Sat (+9h)"); // from UTC then
    for (const double now : {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(),
                             -1e300}) {
        context.now = now;
        EXPECT_THAT(ask("time in tokyo"), IsEmpty());
    }
}

TEST_F(TimeZonesTest, aFanHasABound) {
    for (int i = 0; i < 100; ++i)
        context.primary.push_back({"Tokyo " + std::to_string(i), "Asia/Tokyo"});
    EXPECT_EQ(ask("my clocks").size(), TimeZones::mostAnswers);
}

TEST(TimeZoneTexts, offsetsAndClocksAreWrittenShort) {
    const auto at = [](int minutes) { return Zone::fixed(std::chrono::minutes(minutes)); };
    EXPECT_EQ(TimeZones::offsetText(at(420), at(0), 0), "+7h");
    EXPECT_EQ(TimeZones::offsetText(at(-180), at(0), 0), "-3h");
    EXPECT_EQ(TimeZones::offsetText(at(330), at(0), 0), "+5:30h");
    EXPECT_EQ(TimeZones::offsetText(at(-30), at(0), 0), "-0:30h");
    EXPECT_EQ(TimeZones::offsetText(at(60), at(60), 0), "same time");
    EXPECT_EQ(TimeZones::clockText(22 * 3600, at(0)), "10pm");
    EXPECT_EQ(TimeZones::clockText(0, at(210)), "3:30am");
    EXPECT_EQ(TimeZones::clockText(5 * 60, at(0)), "12:05am");
    EXPECT_EQ(TimeZones::clockText(0, at(720)), "12pm");
    EXPECT_EQ(TimeZones::differenceWords(60), "1 hour ahead of");
    EXPECT_EQ(TimeZones::differenceWords(-450), "7 hours 30 minutes behind");
    EXPECT_EQ(TimeZones::differenceWords(-1), "1 minute behind");
    EXPECT_EQ(TimeZones::differenceWords(0), "the same time as");
    EXPECT_EQ(TimeZones::cityName("America/Argentina/Buenos_Aires"), "Buenos Aires");
    EXPECT_EQ(TimeZones::cityName("UTC"), "UTC");
}

} // namespace
} // namespace tessarine
