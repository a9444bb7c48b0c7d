#include "LauncherCore/answers/Units.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

namespace tessarine {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto us = MeasureSystem::usCustomary;
constexpr auto imperial = MeasureSystem::imperial;
constexpr auto metric = MeasureSystem::metric;

const Formats& formats() {
    static const Formats formats({}, Zone::utc());
    return formats;
}

/// The row as a person reads it; empty for none.
std::string answered(std::string_view text, MeasureSystem measure = us) {
    const auto answer = Answers::units(text, measure, formats());
    return answer ? answer->value + " | " + answer->detail : "";
}

std::vector<std::string> fan(std::string_view text, MeasureSystem measure = us) {
    std::vector<std::string> values;
    for (const auto& answer : Answers::unitFan(text, measure, formats()))
        values.push_back(answer.value);
    return values;
}

std::set<std::string_view> keys() {
    std::set<std::string_view> keys;
    for (const auto& row : Tables::rows("units"))
        keys.insert(Tables::list(row.at(3)).front());
    return keys;
}

} // namespace

TEST(UnitTables, areWhole) {
    const auto units = Tables::rows("units");
    EXPECT_EQ(units.size(), 56u);
    std::map<std::string_view, std::string_view> owners; // key by spelling
    for (const auto& row : units) {
        ASSERT_EQ(row.size(), 4u);
        for (const auto name : Tables::list(row[3]))
            EXPECT_TRUE(owners.try_emplace(name, Tables::list(row[3]).front()).second) << name;
    }
    std::size_t aliases = 0;
    for (const auto* table : {"unit-aliases", "unit-spellings"})
        for (const auto& row : Tables::rows(table)) {
            ASSERT_EQ(row.size(), 2u);
            EXPECT_TRUE(keys().contains(row[0])) << row[0];
            aliases += table == std::string_view("unit-aliases") ? Tables::list(row[1]).size() : 0;
            for (const auto spelling : Tables::list(row[1]))
                EXPECT_TRUE(owners.try_emplace(spelling, row[0]).second) << spelling;
        }
    EXPECT_EQ(aliases, 117u);

    for (const auto& [spelling, key] : owners) {
        const auto unit = Answers::readUnit(spelling, us);
        ASSERT_TRUE(unit) << spelling;
        EXPECT_EQ(unit->key, key) << spelling;
        EXPECT_GT(unit->toBase, 0) << spelling;
    }
}

TEST(UnitTables, referToUnitsThatThereAre) {
    const auto all = keys();
    std::set<std::string_view> labelled;
    for (const auto& row : Tables::rows("unit-labels")) {
        ASSERT_EQ(row.size(), 5u) << row[0];
        EXPECT_FALSE(row[1].empty() || row[2].empty()) << row[0];
        EXPECT_TRUE(labelled.insert(row[0]).second) << row[0];
    }
    EXPECT_EQ(labelled, all);

    const auto fans = Tables::rows("unit-fans");
    EXPECT_EQ(fans.size(), 45u);
    for (const auto& row : fans) {
        ASSERT_TRUE(all.contains(row[0])) << row[0];
        for (const auto target : Tables::list(row.at(1))) {
            ASSERT_TRUE(all.contains(target)) << target;
            EXPECT_EQ(Answers::readUnit(target, us)->kind, Answers::readUnit(row[0], us)->kind);
        }
    }
    const auto systems = Tables::rows("measure-systems");
    EXPECT_EQ(systems.size(), 7u);
    for (const auto& row : systems)
        for (const auto key : row)
            EXPECT_TRUE(all.contains(key)) << key;
}

TEST(Units, convertThereAndBack) {
    std::vector<Answers::Unit> units;
    for (const auto key : keys())
        units.push_back(*Answers::readUnit(key, us));
    const auto figure = [](const std::string& value) {
        return Answers::leadingAmount(value).value_or(Answers::LeadingAmount{NAN, {}}).value;
    };
    for (const auto& from : units)
        for (const auto& to : units) {
            const auto name = [](const Answers::Unit& unit) { return std::string(unit.key); };
            const auto there =
                Answers::units("700 " + name(from) + " in " + name(to), us, formats());
            ASSERT_EQ(there.has_value(), from.kind == to.kind) << from.key << " " << to.key;
            if (!there || figure(there->value) < 1)
                continue; // Too few digits are shown to come back from.
            const auto shown = there->value.substr(0, there->value.find(' '));
            if (shown.find('e') != std::string::npos)
                continue;
            const auto back =
                Answers::units(shown + " " + name(to) + " to " + name(from), us, formats());
            ASSERT_TRUE(back) << shown << to.key;
            EXPECT_NEAR(figure(back->value), 700, 0.05) << from.key << " " << to.key;
        }
}

TEST(Units, answerWithFigureAndReading) {
    struct Case {
        std::string_view text;
        std::string_view answer;
    };

    const Case cases[] = {
        {"5 kg in lb", "11.0231 lb | 5 kg → lb"},
        {"10 kilogrammes in lbs", "22.0462 lb | 10 kilogrammes → lb"}, // by an alias
        {"5 KG INTO Pounds", "11.0231 pounds | 5 KG → pounds"}, // a whole word gets a whole word
        {"30.48 cm in feet", "1 foot | 30.48 cm → foot"},       // the singular
        {"100 c in f", "212 °F | 100 c → °F"},
        {"32 f in c", "0 °C | 32 f → °C"},
        {"0 k in c", "-273.15 °C | 0 k → °C"},
        {"-459.67 f in k", "0 K | -459.67 f → K"}, // a remnant of rounding is nothing
        {"minus 40 c in f", "-40 °F | -40 c → °F"},
        {"−40 c in f", "-40 °F | -40 c → °F"},            // U+2212
        {"-0 kg in lb", "0 lb | 0 kg → lb"},              // no minus zero
        {"1 mm in mi", "6.2e-7 miles | 1 mm → miles"},    // small isn't nothing
        {"1 mm in km", "0.000001 km | 1 mm → km"},        //
        {"1 kb in tb", "1e-9 TB | 1 kb → TB"},            // beyond eight decimals
        {"1 pint. in ml.", "473.1765 ml | 1 pint. → ml"}, // with full stops
        {"5 acres in m2", "20,234.2821 square meters | 5 acres → square meters"}, // digit in target
        {"1,000 m in km", "1 km | 1,000 m → km"},
        {"1,5 kg in g", "1,500 g | 1.5 kg → g"},   // a decimal comma
        {"0,125 kg in g", "125 g | 0.125 kg → g"}, // which nobody takes for thousands
        {"100km in mi", "62.1371 miles | 100 km → miles"},
        {"5\u00a0kg in lb", "11.0231 lb | 5 kg → lb"}, // copied from a page
    };
    for (const auto& [text, answer] : cases)
        EXPECT_EQ(answered(text), answer) << text;
}

TEST(Units, tellAnInchFromAConnector) {
    struct Case {
        std::string_view text;
        std::string_view answer;
    };

    const Case cases[] = {
        {"12 in in cm", "30.48 cm | 12 in → cm"},
        {"12 in to cm", "30.48 cm | 12 in → cm"},
        {"12 in cm", "30.48 cm | 12 in → cm"},
        {"6 ft in in", "72 in | 6 ft → in"},
        {"how many in in 6 ft", "72 in | 6 ft → in"},
        {"6 ft 2 in cm", "187.96 cm | 6 ft 2 in → cm"}, // the inches go without saying
        {"6 ft 2 in in cm", "187.96 cm | 6 ft 2 in → cm"},
        {"12 in kg", ""}, // no length is asked for
    };
    for (const auto& [text, answer] : cases)
        EXPECT_EQ(answered(text), answer) << text;
}

TEST(Units, readWhatPeopleType) {
    struct Case {
        std::string_view text;
        std::string_view answer;
    };

    const Case cases[] = {
        {"6 ft 2 in to cm", "187.96 cm | 6 ft 2 in → cm"},
        {"5'10\" in cm", "177.8 cm | 5 ft 10 in → cm"},
        {"5’10 in cm", "177.8 cm | 5 ft 10 in → cm"}, // as a phone types it
        {"six feet and two inches in cm", "187.96 cm | 6 ft 2 in → cm"},
        {"-6 ft 2 in to cm", "-187.96 cm | -6 ft 2 in → cm"}, // the sign is of the whole
        {"11st 6lb in kg", "72.5748 kg | 11 stone 6 lb → kg"},
        {"2h30 in minutes", "150 minutes | 2 hours 30 minutes → minutes"},
        {"180 cm in feet and inches", "5 feet 10.8661 inches | 180 cm → feet and inches"},
        {"182.88 cm in ft and in", "6 ft 0 in | 182.88 cm → ft and in"}, // not 5 ft 12 in
        {"350 degrees in c", "176.6667 °C | 350 °F → °C"},
        {"350° in f", "662 °F | 350 °C → °F"},
        {"how many cm in 6 ft?", "182.88 cm | 6 ft → cm"},
        {"seconds in a day", "86,400 seconds | 1 day → seconds"},
        {"6 ft is how many cm", "182.88 cm | 6 ft → cm"},
        {"how much is 5 kg in lb", "11.0231 lb | 5 kg → lb"},
        {"5 kg = lb", "11.0231 lb | 5 kg → lb"},
        {"5 kg → lb", "11.0231 lb | 5 kg → lb"}, // the detail, typed again
        {"5 kg in lb =", "11.0231 lb | 5 kg → lb"},
        {"kg to lb", "2.2046 lb | 1 kg → lb"}, // one is meant
        {"kg in lb", "2.2046 lb | 1 kg → lb"},
        {"miles to km", "1.6093 km | 1 miles → km"},
        {"cups to ml", "236.5882 ml | 1 cups → ml"},
        {"cups in gallon", "16 US cups | 1 gallon → US cups"}, // the smaller is counted
        {"ounces in grams", "28.3495 grams | 1 ounces → grams"},
        {"grams in ounces", "0.0353 ounces | 1 grams → ounces"},
        {"c to f", "33.8 °F | 1 c → °F"},
        {"10k in miles", "6.2137 miles | 10 k → miles"}, // as runners say
        {"10k in c", "-263.15 °C | 10 k → °C"},
        {"1h 30m in min", "90 minutes | 1 hour 30 minutes → minutes"}, // no metres
        {"1h30m in minutes", "90 minutes | 1 hour 30 minutes → minutes"},
        {"1e3 g in kg", "1 kg | 1,000 g → kg"}, // a number elsewhere too
        {"100 minutes in hours and minutes", "1 hour 40 minutes | 100 minutes → hours and minutes"},
        {"half a cup in ml", "118.2941 ml | 0.5 cup → ml"},
        {"5 million km in miles", "3,106,855.9612 miles | 5,000,000 km → miles"},
    };
    for (const auto& [text, answer] : cases)
        EXPECT_EQ(answered(text), answer) << text;
}

TEST(Units, followTheMeasureSystem) {
    struct Case {
        std::string_view text;
        std::string_view us;
        std::string_view imperial;
        std::string_view metric;
    };

    const Case cases[] = {
        {"1 cup in ml",
         "236.5882 ml | 1 cup → ml",
         "284.1306 ml | 1 cup → ml · Imperial (UK) measures",
         "250 ml | 1 cup → ml · Metric measures"},
        {"1 us cup in ml", // a particular one stays that
         "236.5882 ml | 1 us cup → ml",
         "236.5882 ml | 1 us cup → ml",
         "236.5882 ml | 1 us cup → ml"},
        {"1 imperial pint in ml", // and it says nothing of a system that it doesn't depend on
         "568.2613 ml | 1 imperial pint → ml",
         "568.2613 ml | 1 imperial pint → ml",
         "568.2613 ml | 1 imperial pint → ml"},
        {"1 pint in ml", // there is no metric one
         "473.1765 ml | 1 pint → ml",
         "568.2613 ml | 1 pint → ml · Imperial (UK) measures",
         "473.1765 ml | 1 pint → ml"},
        {"30 ml in tbsp", // the target is re-read too
         "2.0288 tbsp | 30 ml → tbsp",
         "2 metric tablespoons | 30 ml → metric tablespoons · Imperial (UK) measures",
         "2 metric tablespoons | 30 ml → metric tablespoons · Metric measures"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(answered(row.text, us), row.us) << row.text;
        EXPECT_EQ(answered(row.text, imperial), row.imperial) << row.text;
        EXPECT_EQ(answered(row.text, metric), row.metric) << row.text;
    }
    EXPECT_EQ(Answers::systemUnit("gal", imperial)->key, "imperialgal");
    EXPECT_EQ(Answers::systemUnit("gal", metric), std::nullopt);
    EXPECT_EQ(Answers::systemUnit("cup", us), std::nullopt);
}

TEST(Units, leaveOtherTextsAlone) {
    const std::string_view decoys[] = {
        "",
        "5 kg",               // no target
        "1 mile in kg",       // two kinds
        "5 kg in",            // not finished
        "5 kg in lb or so",   // no unit
        "files in downloads", // a search
        "100 in thailand",    // money
        "8 in paris",         // a clock
        "in 3 days",          // a date
        "9 to 5",
        "2 in 1",
        "report 3 f in c",   // a word that doesn't ask
        "5 ft3 in l",        // an unknown unit, not feet and inches
        "2 cups flour in g", // cooking
        "1/0 kg in lb",
    };
    for (const auto text : decoys)
        EXPECT_EQ(answered(text), "") << text;
    EXPECT_EQ(answered(std::string(100'000, '9').append(" kg in lb")), "");
    EXPECT_EQ(answered(std::string("5 kg in ").append(100'000, 'x')), "");
    EXPECT_EQ(answered("5 kg in \xff\xfe"), "");
}

TEST(UnitFan, showsAQuantityInWhatPeopleWantToSee) {
    EXPECT_THAT(fan("5 kg"), ElementsAre("11.0231 lb", "176.3698 oz", "5,000 g"));
    EXPECT_THAT(fan("5 kg in oz"), ElementsAre("176.3698 oz"));
    EXPECT_THAT(fan("5 ft 10"), ElementsAre("1.778 m", "70 in", "177.8 cm"));
    EXPECT_THAT(fan("an ounce"), ElementsAre("28.3495 g", "0.0625 lb"));
    EXPECT_THAT(fan("500 ml", metric),
                ElementsAre("100 metric teaspoons", "16.907 US fluid ounces", "2 metric cups"));
    EXPECT_THAT(
        fan("1 cup", imperial),
        ElementsAre("284.1306 ml", "10 Imperial fluid ounces", "18.942 metric tablespoons"));
}

TEST(UnitFan, staysAwayFromOtherQueries) {
    const std::string_view decoys[] = {"amazon",
                                       "a m",
                                       "an f",
                                       "half life",
                                       "1st",
                                       "3d",
                                       "7 zip",
                                       "5 ft3",
                                       "12",
                                       "one note",
                                       "m5"};
    for (const auto text : decoys)
        EXPECT_THAT(fan(text), IsEmpty()) << text;
}

TEST(LeadingAmount, readsDigitsAndWords) {
    struct Case {
        std::string_view text;
        double value;
        std::string_view rest;
    };

    const Case cases[] = {
        {"1 1/2 cups", 1.5, "cups"},
        {"1-1/2 cups", 1.5, "cups"}, // as recipes have it
        {"1/2 cup", 0.5, "cup"},
        {"½ cup", 0.5, "cup"},
        {"2 ¾ cups", 2.75, "cups"},
        {"-2½kg", -2.5, "kg"},
        {"1,000.5 m", 1000.5, "m"},
        {".5 m", 0.5, "m"},
        {"12,34 m", 12.34, "m"},
        {"5. m", 5, ". m"}, // no decimals, no point
        {"1e3 g", 1000, "g"},
        {"2.5e-2 m", 0.025, "m"},
        {"1e999 m", 1, "e999 m"}, // no measure has it
        {"5eggs", 5, "eggs"},
        {"half a cup", 0.5, "cup"},
        {"a half cup", 0.5, "cup"},
        {"half of a cup", 0.5, "cup"},
        {"two thirds cup", 2.0 / 3, "cup"},
        {"2 and a half cups", 2.5, "cups"},
        {"two hundred fifty grams", 250, "grams"},
        {"twenty-five kg", 25, "kg"},
        {"a pint", 1, "pint"},
        {"one two kg", 1, "two kg"}, // two numbers are no number
    };
    for (const auto& [text, value, rest] : cases) {
        const auto amount = Answers::leadingAmount(text);
        ASSERT_TRUE(amount) << text;
        EXPECT_DOUBLE_EQ(amount->value, value) << text;
        EXPECT_EQ(amount->rest, rest) << text;
    }
    for (const auto text : {"", "kg", "-", ",5 kg", "1,2,3 kg", "ton", "\xff", "ordinary"})
        EXPECT_FALSE(Answers::leadingAmount(text)) << text;
}

TEST(ReadQuantity, takesAPrefixThatAsks) {
    EXPECT_EQ(Answers::readQuantity("$5 kg", us)->value, 5);
    EXPECT_EQ(Answers::readQuantity("convert 5 kg", us)->value, 5);
    EXPECT_EQ(Answers::readQuantity("what is half a mile", us)->token, "mile");
    EXPECT_EQ(Answers::readQuantity("minus 3 f", us)->value, -3);
    EXPECT_FALSE(Answers::readQuantity("report 3 f", us));
    EXPECT_FALSE(Answers::readQuantity("-report 3 f", us));
}

TEST(UnitLabel, isSingularForWhatIsShownAsOne) {
    EXPECT_EQ(Answers::unitLabel("cup", 1.00004), "US cup");
    EXPECT_EQ(Answers::unitLabel("cup", 1.00006), "US cups");
    EXPECT_EQ(Answers::unitLabel("imperialcup", 2), "imperial cups");
    EXPECT_EQ(Answers::unitLabel("kg", 2), "kg");
    EXPECT_EQ(Answers::unitLabel("furlong", 2), "furlong");
}

} // namespace tessarine
