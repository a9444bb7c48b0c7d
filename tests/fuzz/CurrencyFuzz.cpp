// Typed money and places, and the documents that rates come in.

#include "LauncherCore/answers/Currency.h"
#include "LauncherCore/answers/RateTableJson.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Formats.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

namespace {

constexpr double now = 1767225600;

void requireSane(const RateTable& table) {
    for (const auto& [code, rate] : table.rates)
        REQUIRE_LAW(rate > 0 && std::isfinite(rate));
    REQUIRE_LAW(table.available().size() >= table.rates.size());
}

void readDocuments(std::string_view input) {
    if (const auto answer = RateTableJson::decodedAnswer(input))
        requireSane(*answer);
    if (const auto table = RateTableJson::decoded(input)) {
        requireSane(*table);
        REQUIRE_LAW(RateTableJson::decoded(RateTableJson::encoded(*table)) == table);
    }
}

} // namespace

std::vector<std::string> fuzzSeeds() {
    return {
        "1,234.5k usd in eur",
        "how many euros are there in $50 cad",
        "100 usd -> ₹",
        "3,50e2 eur usd",
        "$12 in paris",
        "minus €5 as canadian dollars",
        "two hundred thousand dollars into ¥",
        "how much is 20 british pounds in usd?",
        "100 in thailand",
        "5 Côte d’Ivoire",
        "half a million yen in trinidad & tobago",
        R"({"base":"USD","rates":{"EUR":0.92,"JPY":150},"fetched":1,"host":"h","checkURL":"p"})",
        R"({"base_code":"EUR","rates":{"USD":1.08,"x":1e308,"y":-1,"z":"1"}})",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Formats formats({}, Zone::utc());
    static const RateTable rates{
        .base = "USD", .rates = {{"EUR", 0.92}, {"JPY", 150}, {"GBP", 0.8}}, .fetched = now};
    static const std::vector<std::string> favorites = {"EUR", "JPY"};
    const std::string_view input(reinterpret_cast<const char*>(data), size);

    if (const auto answer = Answers::currency(input, &rates, now, "USD", formats, nullptr)) {
        REQUIRE_LAW(!answer->value.empty() && !answer->detail.empty());
        REQUIRE_LAW(Folding::isUtf8(answer->value) && Folding::isUtf8(answer->detail));
    }
    if (const auto reading = Answers::amountReading(input, "USD", Answers::BareNumbers::read)) {
        REQUIRE_LAW(std::isfinite(reading->amount));
        REQUIRE_LAW(Answers::resolveCurrency(reading->code));
        const auto fan = Answers::currencyFan(
            input, &rates, favorites, "USD", now, Answers::BareNumbers::read, formats);
        REQUIRE_LAW(fan.size() <= favorites.size() + 1);
    }
    REQUIRE_LAW(Folding::isUtf8(Places::key(input)));
    readDocuments(input);
    return 0;
}
