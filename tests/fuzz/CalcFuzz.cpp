// Whatever is typed as a sum, with whatever was calculated before; and the history that a person
// may have edited.

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/CalcHistoryJson.h"
#include "LauncherCore/text/Formats.h"
#include "tests/fuzz/FuzzHarness.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

using namespace tessarine;

namespace {

/// Far above the millisecond that an answer may take, since the machine may be busy.
constexpr std::chrono::milliseconds patience{250};

/// A context with the input's own bytes as its numbers, whatever they come to.
Calc::Context contextOf(std::string_view input) {
    Calc::Context context;
    if (input.size() % 2 == 1)
        context.angle = Calc::AngleMode::radians;
    for (const auto* name : {"ans", "x", "rent"}) {
        double value = 0;
        if (input.size() < sizeof value)
            break;
        std::memcpy(&value, input.data(), sizeof value);
        input.remove_prefix(sizeof value);
        context.variables[name] = value;
    }
    return context;
}

void checkExpression(std::string_view text, const Calc::Context& context) {
    static const Formats formats({}, Zone::utc());
    const auto started = std::chrono::steady_clock::now();
    const auto evaluation = Calc::evaluate(text, context);
    REQUIRE_LAW(std::chrono::steady_clock::now() - started < patience);
    if (!evaluation)
        return;
    REQUIRE_LAW(std::isfinite(evaluation->value));
    REQUIRE_LAW(!evaluation->assignedName || !evaluation->assignedName->empty());
    REQUIRE_LAW(!Calc::format(evaluation->value, formats).empty());
    const auto readBack = Calc::evaluate("0+(" + Calc::plain(evaluation->value) + ")");
    REQUIRE_LAW(readBack && std::abs(*readBack - evaluation->value) <=
                                1e-6 * std::max(std::abs(evaluation->value), 1e-2));
    if (const auto hexadecimal = Calc::inBase(evaluation->value, 16))
        REQUIRE_LAW(Calc::evaluate("0+(" + *hexadecimal + ")") == evaluation->value);
}

void checkHistory(std::string_view text) {
    const auto history = CalcHistoryJson::decoded(text);
    if (!history)
        return;
    REQUIRE_LAW(CalcHistoryJson::decoded(CalcHistoryJson::encoded(*history)) == history);
    for (const auto& entry : history->search("1", 3))
        REQUIRE_LAW(std::isfinite(entry.value));
}

} // namespace

std::vector<std::string> fuzzSeeds() {
    return {
        "x = 2(3+4)^-2 - 10% + max(1,000, ans) mod 7",
        "sin(30)+cos(x)*atan2(1,2)+log(2, 8)+round(2.345, 2)+median(3,1,2)+gcd(12,18)+lcm(4,6)",
        "~0xff << 70 >> -3 and 0b101 xor 6 | 9 & rent",
        "5! 3 \u00d7 2\u03c0 \u00f7 1e-3 \u2212 1_000 ** 2 \u2013 [1+{2}]",
        "0.1 + .5 + 5. + \u0663 + 9999^9999999 + 170!! + random(1,2) + fact(5) + root(3, 27)",
        R"({"entries":[{"id":"a","expression":"2+2","formatted":"4","value":4,"detail":"= 2+2",)"
        R"("kind":"math","at":1.5,"pinned":true,"name":"x"},{"id":"b","expression":"5 km",)"
        R"("formatted":"3.1","value":3.1,"kind":"unit","at":2,"pinned":false}]})",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto context = contextOf(input);
    checkExpression(input, context);
    // Most mutations break a long expression; the beginnings of it often hold.
    for (std::size_t length = 1; length <= std::min<std::size_t>(size, 16); ++length)
        checkExpression(input.substr(0, length), context);
    checkHistory(input);
    return 0;
}
