// What the user's commands cost, at 1,000 of them. Bar: 5 ms to read their file, as a reload does
// on the main thread.

#include "LauncherCore/commands/CommandFile.h"
#include "launcherapp/query/rows/CommandRows.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

constexpr int commandCount = 1000;

/// One of each kind in turn, with the fields that people write for it.
CommandSpec command(int number) {
    CommandSpec spec{.id = fmt::format("command-{}", number),
                     .name = fmt::format("Command number {}", number),
                     .keyword = fmt::format("c{}", number),
                     .kind = static_cast<CommandKind>(number % 8)};
    switch (spec.kind) {
    case CommandKind::open:
        spec.urls = {{"https://example.org/board", "https://example.org/tickets?state=open"}};
        spec.hotkey = "ctrl+alt+k";
        break;
    case CommandKind::list:
        spec.onSelect = "git switch \"$1\"";
        [[fallthrough]];
    case CommandKind::script:
        spec.script = "cd ~/project && git log --oneline --grep=\"$1\" | head -n 20 | jq -R .";
        break;
    case CommandKind::app:
        spec.path = "/usr/share/applications/org.example.Editor.desktop";
        break;
    case CommandKind::search:
        spec.url = "https://example.org/search?q={query}";
        spec.aliases = {{fmt::format("also{}", number), "project tracker"}};
        break;
    case CommandKind::system:
        spec.action = SystemAction::lockScreen;
        break;
    case CommandKind::files:
        spec.extensions = {{"pdf", "odt"}};
        break;
    case CommandKind::jump:
        spec.path = "/usr/share/applications/org.example.Editor.desktop";
        spec.press = {{"File", "Open recent"}};
        break;
    }
    return spec;
}

const CommandFile& file() {
    static const CommandFile made = [] {
        CommandFile result;
        for (int i = 0; i < commandCount; ++i)
            result.commands.push_back(command(i));
        return result;
    }();
    return made;
}

/// A reload, as far as the main thread does it.
void readAThousandCommands(benchmark::State& state) {
    const auto text = file().encoded();
    for (auto _ : state) {
        auto [commands, unreadable] = CommandFile::decodeLenient(text);
        benchmark::DoNotOptimize(commands.problems());
    }
    state.counters["bytes"] = static_cast<double>(text.size());
}

void rowsOfOneKeystroke(benchmark::State& state, const std::string& query) {
    const RowVerbs verbs;
    const std::function<std::optional<std::string>(const CommandSpec&)> detail;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            commandRows(file().commands, {.verbs = verbs, .detail = detail}, query));
}

BENCHMARK(readAThousandCommands)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rowsOfOneKeystroke, everyName, "c")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(rowsOfOneKeystroke, oneName, "number 77")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(rowsOfOneKeystroke, nothing, "firefox")->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace tessarine

BENCHMARK_MAIN();
