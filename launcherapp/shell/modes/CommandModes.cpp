#include "launcherapp/shell/modes/CommandModes.h"

#include "LauncherCore/commands/CommandJson.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/SystemCommandsSelftest.h"
#include "launcherapp/shell/modes/Modes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <optional>

namespace tessarine {

namespace {

constexpr int notFound = 2;
constexpr int notRunnable = 4;

/// For what was handed to others to be on its way before the process ends.
constexpr Seconds settling{0.4};

constexpr int firstAttempt = 0;
constexpr int lastAttempt = 299; ///< about 15 seconds
constexpr Seconds retryAfter{0.05};

bool isSame(const std::string& text, const std::string& name) {
    return Folding::lowercase(text) == Folding::lowercase(name);
}

/// The best that the name may mean; all commands are asked for one thing before the next.
std::optional<CommandSpec> found(const std::vector<CommandSpec>& commands,
                                 const std::string& name) {
    using Meant = bool (*)(const CommandSpec& command, const std::string& name);
    static constexpr auto meanings = std::to_array<Meant>({
        [](const CommandSpec& command, const std::string& id) { return command.id == id; },
        [](const CommandSpec& command, const std::string& text) {
            return isSame(command.name, text);
        },
        [](const CommandSpec& command, const std::string& text) {
            return command.keyword && isSame(*command.keyword, text);
        },
        [](const CommandSpec& command, const std::string& text) {
            return command.aliases && std::ranges::any_of(*command.aliases, [&](const auto& alias) {
                       return isSame(alias, text);
                   });
        },
    });
    for (const auto meant : meanings) {
        const auto command = std::ranges::find_if(
            commands, [&](const CommandSpec& each) { return meant(each, name); });
        if (command != commands.end())
            return *command;
    }
    return std::nullopt;
}

std::vector<CommandSpec> allCommands(const CommandModeServices& services) {
    auto commands = services.store.file().commands;
    if (services.builtIn) {
        auto builtIn = services.builtIn(commands);
        std::ranges::move(builtIn, std::back_inserter(commands));
    }
    return commands;
}

/// The catalog's first scan may still be reading a slow disk; what it has not found by the last
/// attempt is not waited for.
void whenScanned(ModeContext& context, int attempt, const std::function<void()>& then) {
    if (context.catalog.lastScan() || attempt == lastAttempt)
        then();
    else
        context.queue.postAfter(
            retryAfter, [&context, attempt, then] { whenScanned(context, attempt + 1, then); });
}

/// The words that follow the flag's own value, up to the next flag.
std::vector<std::string> wordsAfter(const CommandLine& commandLine, const std::string& value) {
    const auto& arguments = commandLine.arguments();
    const auto first = std::ranges::find(arguments, value);
    std::vector<std::string> words;
    for (auto word = std::next(first); word != arguments.end() && !word->starts_with("--"); ++word)
        words.push_back(*word);
    return words;
}

void runNamed(ModeContext& context, const std::string& name) {
    auto& store = context.commands->store;
    if (!store.lastLoad() && !store.error())
        store.load();
    if (store.error())
        context.print(*store.error());

    const auto command = found(allCommands(*context.commands), name);
    if (!command) {
        context.print(fmt::format("NOT_FOUND: no command matched \"{}\"", name));
        context.finish(notFound);
        return;
    }
    const auto kind = CommandJson::kindName(command->kind);
    if (command->kind == CommandKind::files || command->kind == CommandKind::list) {
        context.print(fmt::format("NOT_RUNNABLE: \"{}\" (kind: {}) is a live search mode in the "
                                  "panel, not a one-shot action. Use --search instead.",
                                  name,
                                  kind));
        context.finish(notRunnable);
        return;
    }
    context.commands->runtime.run(*command, context.commandLine.value("--arg").value_or(""));
    context.queue.postAfter(settling,
                            [&context, line = fmt::format("RAN: \"{}\" ({})", name, kind)] {
                                context.print(line);
                                context.finish(0);
                            });
}

} // namespace

void CommandModes::run(ModeContext& context, const std::string& name) {
    if (!context.commands) {
        context.print("run: NOT MEASURED, this run has no commands");
        context.finish(notFound);
        return;
    }
    // Links and applications are opened by what the catalog found.
    whenScanned(context, firstAttempt, [&context, name] { runNamed(context, name); });
}

void CommandModes::jumpPressProbe(ModeContext& context, const std::string& bundleID) {
    if (!context.commands) {
        context.print("jump-press-probe: NOT MEASURED, this run has no commands");
        context.finish(notFound);
        return;
    }
    whenScanned(context, firstAttempt, [&context, bundleID] {
        context.commands->probe(bundleID,
                                wordsAfter(context.commandLine, bundleID),
                                [&context](const std::string& line) {
                                    context.print(line);
                                    context.finish(line.starts_with("PRESSED") ? 0 : 1);
                                });
    });
}

void CommandModes::selftestSystemCommands(ModeContext& context, const std::string&) {
    const auto result = systemCommandsSelftest(context.files, context.environment);
    context.print(result.report);
    context.finish(static_cast<int>(result.verdict));
}

} // namespace tessarine
