#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/answers/Units.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

namespace {

void requireReadable(const Answer& answer) {
    REQUIRE_LAW(!answer.value.empty() && !answer.detail.empty() && !answer.symbol.empty());
    REQUIRE_LAW(Folding::isUtf8(answer.value) && Folding::isUtf8(answer.detail));
    // A weight credits its chart, which has no page and was never fetched.
    REQUIRE_LAW(!answer.source || (!answer.source->host.empty() && answer.source->url.empty() &&
                                   answer.source->fetched == 0));
    REQUIRE_LAW(!answer.glyph);
}

void requireReadable(const std::vector<Answer>& answers) {
    REQUIRE_LAW(answers.size() <= 3);
    for (const auto& answer : answers)
        requireReadable(answer);
}

} // namespace

std::vector<std::string> fuzzSeeds() {
    return {"5 kg in lb",
            "6 ft 2 in to cm",
            "5'10\" in feet and inches",
            "how many grams of flour are there in 2 and a half cups?",
            "1 1/2 cups of brown sugar in g",
            "-1,234.5 °F = °C",
            "two hundred fifty ml",
            "half of a us cup",
            "½ imperial pint → fl. oz.",
            "9999999999999999999999999 tb",
            "1 cup frobnitz in g",
            "350 degrees in c",
            "2 sticks of butter in tbsp",
            "cups in gallon",
            "1e3 g in kg",
            "1h30m in min",
            "11 stone 6 in kg",
            "$5\u00a0kg"};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Formats formats({}, Zone::utc());
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    if (const auto amount = Answers::leadingAmount(text)) {
        REQUIRE_LAW(std::isfinite(amount->value));
        REQUIRE_LAW(amount->rest.size() < text.size());
    }
    Cooking::ingredient(text);
    for (const auto measure :
         {MeasureSystem::usCustomary, MeasureSystem::imperial, MeasureSystem::metric}) {
        if (const auto quantity = Answers::readQuantity(text, measure)) {
            REQUIRE_LAW(std::isfinite(quantity->value));
            REQUIRE_LAW(Answers::readUnit(quantity->token, measure) == quantity->unit);
        }
        const auto units = Answers::units(text, measure, formats);
        const auto fan = Answers::unitFan(text, measure, formats);
        requireReadable(fan);
        if (units)
            REQUIRE_LAW(fan.size() == 1 && fan.front() == *units);
        if (const auto answer = Cooking::answer(text, measure, formats))
            requireReadable(*answer);
        requireReadable(Cooking::fan(text, measure, formats));
    }
    return 0;
}
