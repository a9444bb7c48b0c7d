// What one keystroke pays for the answers. Bars: 2 µs for the gate on an ordinary word, 50 µs for
// the longest path of a family, 150 µs (median) for all answer families of one keystroke, 30 ms to
// build the tables.

#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/answers/Currency.h"
#include "LauncherCore/answers/Emoji.h"
#include "LauncherCore/answers/Places.h"
#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/answers/Units.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr double now = 1'795'215'600; // November 20, 2026

const Formats& formats() {
    static const Formats english({}, *Zone::named("America/New_York"));
    return english;
}

const RateTable& rates() {
    static const RateTable table{.base = "USD",
                                 .rates = {{"EUR", 0.9}, {"GBP", 0.8}, {"JPY", 150}, {"CHF", 0.88}},
                                 .fetched = now - 600,
                                 .host = "rates.example",
                                 .checkURL = "https://rates.example/"};
    return table;
}

const TimeZones::Context& clocks() {
    static const TimeZones::Context context{.home = {"New York", "America/New_York"},
                                            .here = {"New York", "America/New_York"},
                                            .primary = {{"London", "Europe/London"},
                                                        {"Tokyo", "Asia/Tokyo"},
                                                        {"Athens", "Europe/Athens"},
                                                        {"Sydney", "Australia/Sydney"},
                                                        {"Los Angeles", "America/Los_Angeles"}},
                                            .now = now};
    return context;
}

std::optional<Answer> answerTo(const std::string& text) {
    static const Calc::Context calculator{.variables = {{"ans", 42}, {"rent", 1200}}};
    return Answers::answer(
        text, {.rates = &rates(), .now = now, .calculator = calculator, .formats = formats()});
}

/// Everything that one recompute asks the answers for.
void allFamilies(const std::string& text) {
    static const std::vector<std::string> favorites{"EUR", "GBP", "JPY"};
    benchmark::DoNotOptimize(answerTo(text));
    benchmark::DoNotOptimize(Answers::currencyFan(
        text, &rates(), favorites, "USD", now, Answers::BareNumbers::ignored, formats()));
    benchmark::DoNotOptimize(Answers::unitFan(text, MeasureSystem::usCustomary, formats()));
    benchmark::DoNotOptimize(Cooking::fan(text, MeasureSystem::usCustomary, formats()));
    benchmark::DoNotOptimize(TimeZones::answers(text, clocks(), formats()));
}

const std::vector<std::string>& questions() {
    static const std::vector<std::string> all{
        "firefox",
        "a1",
        "half life",
        "2+2*(3-4)",
        "sin(30) + ln(e)",
        "12% of 50",
        "twenty-five * 2",
        "what is 2 + 2?",
        "5 kg in lb",
        "6 ft 2 in to cm",
        "5 kg",
        "2 cups flour in g",
        "a cup of flour",
        "20 eur in usd",
        "20 eur",
        "100 usd in paris",
        "255 in hex",
        "days until dec 25",
        "time in athens",
        "3pm ET in athens",
        "athens vs ET",
        "3pm",
        "time in my clocks",
        "in 2 hours in tokyo",
        "one thing that nobody can answer in any of the families",
        "report 2026 final version 3 to print"};
    return all;
}

void gate(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Answers::couldBeAnAnswer(text));
}

void answer(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        benchmark::DoNotOptimize(answerTo(text));
}

void keystroke(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        allFamilies(text);
}

/// The median over every beginning of every question, as they are typed.
void mixedKeystrokes(benchmark::State& state) {
    std::vector<double> times;
    for (auto _ : state) {
        for (const auto& question : questions())
            for (std::size_t length = 1; length <= question.size(); ++length) {
                const auto begin = Clock::now();
                allFamilies(question.substr(0, length));
                times.push_back(Microseconds(Clock::now() - begin).count());
            }
    }
    std::ranges::sort(times);
    state.counters["median_us"] = times[times.size() / 2];
    state.counters["worst_1000_us"] = times[times.size() - times.size() / 1000 - 1];
}

double secondsOf(const std::function<void()>& work) {
    const auto begin = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// Once in a process: tables are built on first use.
void tables(benchmark::State& state) {
    for (auto _ : state) {
        state.SetIterationTime(secondsOf([] {
            TimeZones::warm();
            Places::warm();
            Emoji::warm();
            allFamilies("5 kg in lb");
        }));
    }
}

BENCHMARK(tables)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(gate, word, "firefox");
BENCHMARK_CAPTURE(gate, words, "notes about the meeting");
BENCHMARK(mixedKeystrokes)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    using namespace tessarine;
    for (const auto& question : questions()) {
        benchmark::RegisterBenchmark(("answer/" + question).c_str(), answer, question);
        benchmark::RegisterBenchmark(("keystroke/" + question).c_str(), keystroke, question);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
