// Whatever is typed into the field, through the whole chain of answers.

#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/Emoji.h"
#include "LauncherCore/answers/NumberPhrases.h"
#include "LauncherCore/text/Folding.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {
        "what is 2 + 2?",
        "twenty-five * two million",
        "15% off 80",
        "5 is what % of 20",
        "half of 8",
        "square root of (16)",
        "-0x8000000000000000 in decimal",
        "1,024 to binary",
        "3 months from now",
        "days until dec 25 2027",
        "days since february 29",
        "12/31/9999 + 99999 days",
        "december 25, 2027",
        "2 cups flour in g",
        "70 kgs in pounds",
        "20 eur in usd",
        ":thumbs_up:",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Formats formats({}, *Zone::named("America/New_York"));
    static const RateTable rates{.base = "USD", .rates = {{"EUR", 0.9}}, .fetched = 1};
    static const Calc::Context calculator{.variables = {{"ans", -1.5}, {"rent", 1200}}};
    const std::string_view input(reinterpret_cast<const char*>(data), size);

    const auto answer = Answers::answer(input,
                                        {.rates = &rates,
                                         .now = 1'795'215'600,
                                         .calculator = calculator,
                                         .homeCurrency = "USD",
                                         .formats = formats});
    if (answer) {
        REQUIRE_LAW(!answer->value.empty() && !answer->symbol.empty());
        REQUIRE_LAW(Folding::isUtf8(answer->value) && Folding::isUtf8(answer->detail));
        REQUIRE_LAW(!answer->number || std::isfinite(*answer->number));
        REQUIRE_LAW(answer->value != "-0");
    }
    // Digits have no words left to replace.
    const auto digits = NumberPhrases::inDigits(input);
    REQUIRE_LAW(NumberPhrases::inDigits(digits) == digits);
    REQUIRE_LAW(Emoji::search(input, 3).size() <= 3);
    return 0;
}
