// What the clipboard history costs at its 500 clippings. Bar: 1 ms for the search and the counts of
// one keystroke, the groups of the clippings known.

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/clipboard/ClipIdentity.h"
#include "LauncherCore/clipboard/ClipboardHistory.h"
#include "LauncherCore/clipboard/ClipboardJson.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tessarine {
namespace {

constexpr std::size_t clippingCount = 500;
constexpr std::size_t rowsShown = 50;
constexpr std::size_t bookCharacters = 5'000'000;

std::string repeated(std::string_view piece, std::size_t bytes) {
    std::string text;
    text.reserve(bytes + piece.size());
    while (text.size() < bytes)
        text += piece;
    return text;
}

std::string prose(std::size_t bytes) {
    return repeated("The quick brown fox jumps over a Lazy dog, 1234 times each day.\n", bytes);
}

/// Texts of that size, some addresses and files among them.
ClipboardHistory historyOf(std::size_t bytes) {
    ClipboardHistory history;
    for (std::size_t i = 0; i < clippingCount; ++i) {
        const auto number = std::to_string(i);
        auto text = i % 5 == 0 ? "https://example.org/page/" + number : number + prose(bytes);
        auto entry = ClipboardEntry::make({.id = ClipIdentity::ofText(text),
                                           .kind = i % 7 == 0 ? ClipKind::file : ClipKind::text,
                                           .text = ClipText(std::move(text)),
                                           .at = static_cast<double>(i * 7919 % 1000),
                                           .sourceApp = "Editor"});
        if (i % 3 == 0)
            entry.pastedInto = {{"Mail", "Notes"}};
        history.entries.push_back(std::move(entry));
    }
    return history;
}

/// A usual history with ten whole books in it.
ClipboardHistory historyWithBooks() {
    auto history = historyOf(200);
    for (std::size_t i = 0; i < 10; ++i)
        history.entries[i * 50 + 1].text = ClipText(std::to_string(i) + prose(bookCharacters));
    return history;
}

/// A usual history with texts whose shape makes a look at their beginning or end long.
ClipboardHistory historyWithOddTexts() {
    auto history = historyOf(200);
    for (std::size_t i = 0; i < 10; ++i) {
        auto& text = history.entries[i * 50 + 1].text;
        text = i % 2 == 0 ? ClipText(std::string(bookCharacters, ' ') + std::to_string(i))
                          : ClipText("https://" + std::string(bookCharacters, 'a'));
    }
    return history;
}

ClipGroups severalGroups() {
    ClipGroups groups{ClipGroups::templates()};
    groups.upsert({.name = "Receipts", .symbol = "cart", .match = {.contains = "receipt"}});
    groups.upsert({.name = "Page ones", .symbol = "book", .match = {.regex = "/page/\\d*1$"}});
    groups.upsert({.name = "Files by hand", .symbol = "doc", .match = {.kind = ClipKind::file}});
    return groups;
}

struct Desk {
    explicit Desk(ClipboardHistory its) : history(std::move(its)) {
        runtime.setCurrent(severalGroups());
    }

    ClipboardHistory history;
    ClipGroupsRuntime runtime{[] { return 1.0; },
                              [](const std::string&) { return ClipFileBeginning{.bytes = ""}; }};
};

void runKeystrokes(benchmark::State& state,
                   ClipboardHistory history,
                   const std::string& query,
                   const std::optional<ClipFilterKey>& filter = {}) {
    Desk desk(std::move(history));
    desk.history.counts(desk.runtime); // from here on the groups are known
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            desk.history.search(query, rowsShown, filter, desk.runtime).size());
        benchmark::DoNotOptimize(desk.history.counts(desk.runtime).size());
    }
}

void keystrokeShort(benchmark::State& state, const std::string& query) {
    runKeystrokes(state, historyOf(200), query);
}

void keystroke2kB(benchmark::State& state, const std::string& query) {
    runKeystrokes(state, historyOf(2048), query);
}

void keystrokeFiltered(benchmark::State& state) {
    runKeystrokes(state, historyOf(2048), "o", ClipFilterKey::group("Files by hand"));
}

void keystrokeBooks(benchmark::State& state, const std::string& query) {
    runKeystrokes(state, historyWithBooks(), query);
}

void keystrokeOddTexts(benchmark::State& state, const std::string& query) {
    runKeystrokes(state, historyWithOddTexts(), query);
}

BENCHMARK_CAPTURE(keystrokeShort, everything, "")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystrokeShort, common, "fox")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke2kB, everything, "")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke2kB, common, "fox")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke2kB, nowhere, "receipt")->Unit(benchmark::kMicrosecond);
BENCHMARK(keystrokeFiltered)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystrokeBooks, everything, "")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystrokeBooks, common, "fox")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystrokeBooks, nowhere, "receipt")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystrokeOddTexts, everything, "")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystrokeOddTexts, nowhere, "receipt")->Unit(benchmark::kMicrosecond);

/// The first keystroke after a rule was taught.
void countsWithUnknownGroups(benchmark::State& state, bool books) {
    Desk desk(books ? historyWithBooks() : historyOf(2048));
    for (auto _ : state) {
        desk.runtime.forgetAll();
        benchmark::DoNotOptimize(desk.history.counts(desk.runtime).size());
    }
}

/// The first keystroke after what is known of files has aged. Bar: 1 ms, as for any other.
void countsWithAgedFiles(benchmark::State& state) {
    double now = 1;
    const auto history = historyWithBooks();
    ClipGroupsRuntime runtime([&now] { return now; },
                              [](const std::string&) { return ClipFileBeginning{.bytes = ""}; });
    runtime.setCurrent(severalGroups());
    history.counts(runtime);
    for (auto _ : state) {
        now += ClipGroupsRuntime::fileFactTTL;
        benchmark::DoNotOptimize(history.counts(runtime).size());
    }
}

BENCHMARK(countsWithAgedFiles)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(countsWithUnknownGroups, of2kB, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(countsWithUnknownGroups, withBooks, true)->Unit(benchmark::kMillisecond);

void makeText(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ClipText(text).characters());
}

BENCHMARK_CAPTURE(makeText, ascii5M, prose(bookCharacters))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(makeText, japanese5M, repeated("日本語の文字", 3 * bookCharacters))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(makeText, joined5M, repeated("e\u0301", 3 * bookCharacters))
    ->Unit(benchmark::kMillisecond);

/// One rule, one book: what bounds a lookup whatever the user wrote. Bar: 10 ms of the
/// processor, 25 for comparisons.
void expression(benchmark::State& state, const std::string& regex, const std::string& text) {
    const ClipMatcher rule{.regex = regex};
    const ClipText book(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(rule.matches(book));
}

BENCHMARK_CAPTURE(expression, endless, "(a+)+b", std::string(bookCharacters, 'a'))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expression, lookAhead, "(?=.*).z", std::string(bookCharacters, 'a'))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expression, comparison, "(.*)\\1z", std::string(bookCharacters, 'a'))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expression, fromEachPlace, "\\w\\dQ", prose(bookCharacters))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expression, alternatives, "fax|dig|zebra", prose(bookCharacters))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expression, japanese, "\\w\\dQ", repeated("日本語の文字", 3 * bookCharacters))
    ->Unit(benchmark::kMillisecond);

void encode(benchmark::State& state) {
    const auto history = historyOf(2048);
    for (auto _ : state)
        benchmark::DoNotOptimize(ClipboardJson::encoded(history).size());
}

void decode(benchmark::State& state) {
    const auto text = ClipboardJson::encoded(historyOf(2048));
    for (auto _ : state)
        benchmark::DoNotOptimize(ClipboardJson::decoded(text).has_value());
    state.counters["bytes"] = static_cast<double>(text.size());
}

BENCHMARK(encode)->Unit(benchmark::kMillisecond);
BENCHMARK(decode)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tessarine

BENCHMARK_MAIN();
