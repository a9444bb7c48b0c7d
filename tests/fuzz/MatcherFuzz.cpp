#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "tests/fuzz/FuzzHarness.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {"goo chr\nGoogle Chrome",
            "cl\nCrispLabel",
            "cafe\u0301\nCafé Müller",
            "ﾃｽﾄ\nテスト 文字",
            "🇩🇪\n🇩🇪🇫🇷 👨‍👩‍👧",
            "\u1100\u1161\n가\u11a8"};
}

/// The query stands before the first line end, the candidate behind it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto query = input.substr(0, input.find('\n'));
    const auto candidate = input.substr(std::min(query.size() + 1, input.size()));

    const auto normalized = Matcher::normalize(candidate);
    REQUIRE_LAW(Folding::isUtf8(normalized));
    const auto length = static_cast<std::int64_t>(Graphemes::count(normalized));

    const auto match = Matcher::score(query, candidate);
    if (!match)
        return 0;
    REQUIRE_LAW(match->score == 0 || (match->score >= 6000 && match->score <= 9000));
    REQUIRE_LAW(std::ranges::is_sorted(match->positions));
    REQUIRE_LAW(std::ranges::adjacent_find(match->positions) == match->positions.end());
    for (const auto position : match->positions)
        REQUIRE_LAW(position >= 0 && position < length);
    return 0;
}
