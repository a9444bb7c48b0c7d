// Matcher::score by kind of name. Bar: 200 ns for an ASCII candidate of 12 to 30 characters, and no
// heap allocation on a miss.

#include "LauncherCore/query/Matcher.h"
#include "benchmarks/Allocations.h"

#include <benchmark/benchmark.h>

#include <string>

namespace tessarine {
namespace {

void score(benchmark::State& state, const std::string& query, const std::string& candidate) {
    const auto before = allocationCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(Matcher::score(query, candidate));
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocationCount() - before), benchmark::Counter::kAvgIterations);
}

// clang-format off: one case a line reads as the table it is
BENCHMARK_CAPTURE(score, asciiMiss12, "xq", "Image Viewer");
BENCHMARK_CAPTURE(score, asciiMiss18, "cl", "Visual Studio Code");
BENCHMARK_CAPTURE(score, asciiMiss30, "terminal", "Software Properties and Update");
BENCHMARK_CAPTURE(score, asciiMissWords, "goo xyz", "Google Chrome Browser Window");
BENCHMARK_CAPTURE(score, asciiExact, "libreoffice calc", "LibreOffice Calc");
BENCHMARK_CAPTURE(score, asciiPrefix, "lib", "LibreOffice Calc");
BENCHMARK_CAPTURE(score, asciiInitials, "gc", "Google Chrome Browser");
BENCHMARK_CAPTURE(score, asciiWordPrefix, "studio", "Visual Studio Code");
BENCHMARK_CAPTURE(score, asciiWords, "goo chr", "Google Chrome Browser");
BENCHMARK_CAPTURE(score, accentedMiss, "xq", "Éditeur de systèmes");
BENCHMARK_CAPTURE(score, accentedPrefix, "edi", "Éditeur de systèmes");
BENCHMARK_CAPTURE(score, cjkMiss, "xq", "日本語入力プログラム設定");
BENCHMARK_CAPTURE(score, cjkPrefix, "日本", "日本語入力プログラム設定");
BENCHMARK_CAPTURE(score, emojiMiss, "xq", "🎨 Paint 👩‍🎨 Studio");
BENCHMARK_CAPTURE(score, rightToLeft, "מחש", "מחשבון מדעי מתקדם");
// clang-format on

} // namespace
} // namespace tessarine

BENCHMARK_MAIN();
