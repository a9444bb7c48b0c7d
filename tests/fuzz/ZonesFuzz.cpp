#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"
#include "LauncherCore/text/Zone.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {"what time is it in paris, rome and my clocks?",
            "quarter to nine tomorrow night pt in São Paulo",
            "15:30 utc+5:30 on next friday to tokyo from home",
            "time difference between trinidad & tobago and the bronx",
            "in half an hour in 11:59pm pt/utc",
            "is tokyo ahead of london",
            "now + 99999999999.9 hours in st. john's",
            "when it's 12 o'clock in tokyo what time is it in australia",
            "how many hours ahead of gmt−3 is kathmandu"};
}

/// A question as the panel would ask it, at one of some moments of the twentieth century on.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Formats formats({}, Zone::utc());
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    constexpr double step = 12'345'678;
    const double now = static_cast<double>(size) * step - 1e9;
    const TimeZones::Context context{
        .home = {"Athens", "Europe/Athens"},
        .here = {"Apia", "Pacific/Apia"},
        .primary = {{"Lord Howe", "Australia/Lord_Howe"}, {"Nowhere", "Mars/Olympus"}},
        .now = now};
    const auto rows = TimeZones::answers(text, context, formats);
    REQUIRE_LAW(rows.size() <= TimeZones::mostAnswers);
    for (const auto& row : rows) {
        REQUIRE_LAW(!row.value.empty() && Folding::isUtf8(row.value));
        REQUIRE_LAW(!row.detail.empty() && Folding::isUtf8(row.detail));
        REQUIRE_LAW(row.symbol == "clock");
        REQUIRE_LAW(!row.glyph || !row.glyph->empty());
    }
    // What follows a place's name in a question is a place alone.
    if (const auto place = TimeZones::resolvePlace(text, context))
        REQUIRE_LAW(!place->name.empty() && Zone::named(place->identifier));
    return 0;
}
