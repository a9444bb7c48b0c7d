#include "launcherapp/shell/modes/CommandModes.h"

#include "LauncherCore/commands/CommandJson.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/commands/CommandCatalog.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/SystemCommandsSelftest.h"
#include "launcherapp/shell/modes/ModeWaits.h"
#include "launcherapp/shell/modes/Modes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

namespace tessarine {

namespace {

constexpr int notFound = 2;
constexpr int notRunnable = 4;

/// For what was handed to others to be on its way before the process ends.
constexpr Seconds settling{0.4};

constexpr std::string_view probeFlag = "--jump-press-probe";

bool isSame(const std::string& text, const std::string& name) {
    return Folding::lowercase(text) == Folding::lowercase(name);
}

/// The best that the name may mean; all commands are asked for one thing before the next.
std::optional<CommandSpec> found(std::span<const CommandSpec> commands, const std::string& name) {
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

/// The words that follow the flag's own value, up to the next flag.
std::vector<std::string> wordsAfter(const CommandLine& commandLine, std::string_view flag) {
    const auto& arguments = commandLine.arguments();
    auto word = std::ranges::find(arguments, flag);
    std::ranges::advance(word, 2, arguments.end());
    const auto end = std::ranges::find_if(
        word, arguments.end(), [](const std::string& each) { return each.starts_with("--"); });
    return {word, end};
}

/// Ends once nothing that was started is still to be handed over, which is looked for twice: what
/// goes on after the first look may start more.
void endOnceSettled(ModeContext& context, const std::string& line, Seconds deadline) {
    const bool isSettled = context.commands->isSettled();
    context.queue.postAfter(settling, [&context, line, deadline, isSettled] {
        const bool isDone = isSettled && context.commands->isSettled();
        if (!isDone && context.queue.uptime() < deadline) {
            endOnceSettled(context, line, deadline);
            return;
        }
        context.print(line);
        if (!isDone)
            context.print(fmt::format("run: NOT MEASURED, what it started was still under way "
                                      "after {:.0f} s",
                                      ModeWaits::patience.count()));
        context.finish(0);
    });
}

void runNamed(ModeContext& context, const std::string& name) {
    auto& services = *context.commands;
    if (services.store.error())
        context.print(*services.store.error());

    const auto command = found(services.catalog.all(), name);
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
    services.runtime.run(*command, context.commandLine.value("--arg").value_or(""));
    endOnceSettled(context,
                   fmt::format("RAN: \"{}\" ({})", name, kind),
                   context.queue.uptime() + ModeWaits::patience);
}

} // namespace

void CommandModes::run(ModeContext& context, const std::string& name) {
    if (!context.commands) {
        context.print("run: NOT MEASURED, this run has no commands");
        context.finish(notFound);
        return;
    }
    ModeWaits::whenReady(context, [&context, name] { runNamed(context, name); });
}

void CommandModes::jumpPressProbe(ModeContext& context, const std::string& bundleID) {
    if (!context.commands) {
        context.print("jump-press-probe: NOT MEASURED, this run has no commands");
        context.finish(notFound);
        return;
    }
    ModeWaits::whenReady(context, [&context, bundleID] {
        context.commands->probe(bundleID,
                                wordsAfter(context.commandLine, probeFlag),
                                [&context](const std::string& line) {
                                    context.print(line);
                                    context.finish(line.starts_with("PRESSED") ? 0 : 1);
                                });
    });
}

void CommandModes::selftestSystemCommands(ModeContext& context, const std::string&) {
    finish(context, systemCommandsSelftest(context.files, context.environment));
}

} // namespace tessarine
