#include "LauncherCore/answers/Cooking.h"

#include "LauncherCore/answers/Units.h"
#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace tessarine {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto us = MeasureSystem::usCustomary;

const Formats& formats() {
    static const Formats formats({}, Zone::utc());
    return formats;
}

/// The row as a person reads it; empty for none.
std::string answered(std::string_view text, MeasureSystem measure = us) {
    const auto answer = Cooking::answer(text, measure, formats());
    return answer ? answer->value + " | " + answer->detail : "";
}

std::vector<std::string> fan(std::string_view text, MeasureSystem measure = us) {
    std::vector<std::string> values;
    for (const auto& answer : Cooking::fan(text, measure, formats()))
        values.push_back(answer.value);
    return values;
}

} // namespace

TEST(Ingredients, areWhole) {
    const auto rows = Tables::rows("ingredients");
    EXPECT_EQ(rows.size(), 121u);
    std::set<std::string_view> names;
    std::size_t count = 0;
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 3u);
        EXPECT_TRUE(row[1].starts_with("King Arthur Baking ingredient weight chart") ||
                    row[2] == "water")
            << row[1];
        const auto first = Tables::list(row[2]).front();
        for (const auto name : Tables::list(row[2])) {
            EXPECT_TRUE(names.insert(name).second) << name;
            const auto found = Cooking::ingredient(name);
            ASSERT_TRUE(found) << name;
            EXPECT_EQ(found->names.front(), first) << name;
            EXPECT_EQ(found->source, row[1]);
            ++count;
        }
    }
    EXPECT_EQ(count, 258u);
}

TEST(Ingredients, weighWhatTheirBracketsSay) {
    // "(1/4 cup = 28 g)": the figure that the chart prints gives the one for a cup.
    struct Measure {
        std::string_view text;
        double inACup;
    };

    const Measure measures[] = {{"1/2 cup = ", 2},
                                {"1/4 cup = ", 4},
                                {"1 tbsp = ", 16},
                                {"2 tbsp = ", 8},
                                {"1 tsp = ", 48},
                                {"1/2 tsp = ", 96}};
    std::size_t read = 0;
    for (const auto& row : Tables::rows("ingredients"))
        for (const auto& [text, inACup] : measures)
            if (const auto at = row.at(1).find(text); at != std::string_view::npos) {
                const auto printed = Answers::leadingAmount(row[1].substr(at + text.size()));
                ASSERT_TRUE(printed) << row[1];
                const auto name = Tables::list(row.at(2)).front();
                EXPECT_EQ(Cooking::ingredient(name)->gramsPerCup, printed->value * inACup) << name;
                ++read;
            }
    EXPECT_GT(read, 40u);
}

TEST(Ingredients, areFoundAsTheyAreSpokenOf) {
    struct Case {
        std::string_view text;
        double grams;
    };

    const Case cases[] = {
        {"flour", 120},
        {" Of The FLOUR!", 120},
        {"some sugar", 198},
        {"almond", 142},    // the name is in the plural
        {"flours", 120},    // the name is in the singular
        {"cornflour", 112}, // cornstarch
        {"treacle", 340},
        {"mayo", 226},
        {"brown sugar", 213},
        {"powdered sugar", 113},
        {"honey", 336},
        {"butter", 226},
        {"oil", 198},
        {"olive oil", 200},
        {"milk", 227},
        {"water", 236.5882365},
        {"salt", 288},
        {"kosher salt", 256},
        {"diamond crystal kosher salt", 128},
        {"oats", 89},
        {"cocoa", 84},
        {"baking powder", 192},
        {"baking soda", 288},
        {"yeast", 144},
        {"Crème Fraîche", 227},
    };
    for (const auto& [text, grams] : cases) {
        const auto found = Cooking::ingredient(text);
        ASSERT_TRUE(found) << text;
        EXPECT_EQ(found->gramsPerCup, grams) << text;
    }
    for (const auto text : {"", "s", "of", "the of flour", "flour and sugar", "frobnitz"})
        EXPECT_FALSE(Cooking::ingredient(text)) << text;
}

TEST(Cooking, weighsWhatIsMeasured) {
    struct Case {
        std::string_view text;
        std::string_view answer;
    };

    const Case cases[] = {
        {"2 cups flour in g", "240 g | flour · 120 g per US cup"},
        {"240 g flour in cups", "2 US cups | flour · 120 g per US cup"},
        {"1 tbsp butter in g", "14.125 g | butter · 226 g per US cup"},
        {"a cup of flour in grams", "120 grams | flour · 120 g per US cup"},
        {"1/2 cup flour in g", "60 g | flour · 120 g per US cup"},
        {"2 fl oz honey in oz", "2.963 oz | honey · 336 g per US cup"}, // a unit of two words
        {"0.01 g yeast in cups", "0.00006944 US cups | yeast · 144 g per US cup"}, // eight decimals
        {"1 cup 2 tbsp milk in g", "255.375 g | milk · 227 g per US cup"},
        {"1 gal 2% milk in kg", "3.632 kg | milk · 227 g per US cup"},
        {"1 lb half and half in cups", "1.9982 US cups | cream · 227 g per US cup"},
        {"2 c flour in g", "240 g | flour · 120 g per US cup"}, // cups, not degrees
        {"1 cup confectioners’ sugar in g", "113 g | powdered sugar · 113 g per US cup"},
        {"1 cup (packed) brown sugar in g", "213 g | brown sugar · 213 g per US cup"},
        {"cup of flour in grams", "120 grams | flour · 120 g per US cup"}, // one is meant
        {"cup flour in g", "120 g | flour · 120 g per US cup"},
        {"grams in cup of flour", "120 grams | flour · 120 g per US cup"},
        {"1 stick of butter in g", "113 g | butter · 226 g per US cup"},
        {"2 sticks butter in cups", "1 US cup | butter · 1 us cup → US cup"},
        {"1 cup butter in tablespoons", "16 tablespoons | butter · 1 cup → tablespoons"},
        {"1 cup flour in ml", "236.5882 ml | flour · 1 cup → ml"}, // needs no weight
        {"1 lb flour in g", "453.5924 g | flour · 1 lb → g"},
        {"how many grams in a cup of flour", "120 grams | flour · 120 g per US cup"},
        {"how many grams of flour in 2 cups?", "240 grams | flour · 120 g per US cup"},
    };
    for (const auto& [text, answer] : cases)
        EXPECT_EQ(answered(text), answer) << text;
    EXPECT_EQ(answered("1 cup flour in g", MeasureSystem::imperial),
              "144.114 g | flour · 120 g per US cup · Imperial (UK) measures");
    EXPECT_EQ(answered("1 cup flour in g", MeasureSystem::metric),
              "126.8026 g | flour · 120 g per US cup · Metric measures");
    EXPECT_EQ(answered("1 us cup flour in g", MeasureSystem::metric),
              "120 g | flour · 120 g per US cup"); // nothing of it depends on the system
}

TEST(Cooking, creditsTheChartForAWeight) {
    const auto weighed = Cooking::answer("1 cup cornstarch in g", us, formats());
    ASSERT_TRUE(weighed && weighed->source);
    EXPECT_EQ(weighed->source->line(0, formats()),
              "King Arthur Baking ingredient weight chart (1/4 cup = 28 g)");
    EXPECT_EQ(Cooking::answer("1 cup butter in tbsp", us, formats())->source, std::nullopt);
}

TEST(Cooking, asksForTheIngredient) {
    EXPECT_EQ(answered("2 cups in g"),
              "Which ingredient? | Cups to grams needs a density: try 2 cups flour in g");
    EXPECT_EQ(answered("cups to grams"),
              "Which ingredient? | Cups to grams needs a density: try 1 cups flour in g");
    EXPECT_EQ(answered("200 g in cups"),
              "Which ingredient? | Grams to cups needs a density: try 200 g flour in cups");
    EXPECT_EQ(answered("1 cup frobnitz in g"),
              "Which ingredient? | No weight on file for frobnitz. About 121 ingredients are known "
              "(flour, sugar, butter, honey, oats…); the closest name wins.");
}

TEST(Cooking, leavesOtherTextsAlone) {
    const std::string_view decoys[] = {
        "",
        "1 cup in ml",          // one kind: units
        "1 cup frobnitz in ml", // needs no weight, but something that is known
        "3 min egg in oz",      // a time
        "5 kg in lb",
        "2 cups flour", // no target
        "1 cup 2 in g", // not finished
        "2 coffees in paris",
    };
    for (const auto text : decoys)
        EXPECT_EQ(answered(text), "") << text;
}

TEST(CookingFan, showsTheOtherWayOfMeasuring) {
    EXPECT_THAT(fan("2 cups flour"), ElementsAre("240 g"));
    EXPECT_THAT(fan("240 g of flour"), ElementsAre("2 US cups"));
    EXPECT_THAT(fan("250 g water", MeasureSystem::metric), ElementsAre("1 metric cup"));
    for (const auto text : {"flour", "2 cups", "2 cups frobnitz", "2 flour", "2 cups flour in g"})
        EXPECT_THAT(fan(text), IsEmpty()) << text;
}

} // namespace tessarine
