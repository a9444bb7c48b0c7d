#include "launcherapp/commands/CommandRuntime.h"

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/commands/CommandTemplates.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Printable.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/ActivationTokens.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view entrySuffix = ".desktop";

/// A script is to find what a terminal finds, and a desktop session's PATH may be bare.
std::string programPath(const Environment& environment) {
    auto folders = environment.programDirs;
    const auto add = [&](const std::string& folder) {
        if (std::ranges::find(folders, folder) == folders.end())
            folders.push_back(folder);
    };
    for (const auto* folder : {"/usr/local/bin", "/usr/bin", "/bin", "/usr/sbin", "/sbin"})
        add(folder);
    add(Paths::normalized(environment.home + "/.local/bin"));
    return fmt::format("{}", fmt::join(folders, ":"));
}

/// What a script printed, as the end of a log line.
std::string printed(const ProcessEnd& end) {
    std::string_view output = end.output;
    while (output.ends_with('\n') || output.ends_with('\r'))
        output.remove_suffix(1);
    const auto shown = Printable::beginning(output, CommandRuntime::loggedOutput);
    const bool isCut = end.isCut || shown.size() < output.size();
    return Printable::line(shown) + (isCut ? "…" : "");
}

} // namespace

CommandRuntime::CommandRuntime(Services services, const Environment& environment)
    : services_(services), environment_(environment) {}

void CommandRuntime::run(const CommandSpec& command, const std::string& argument) {
    requireMainThread(services_.queue);
    switch (command.kind) {
    case CommandKind::open:
        open(filledIn(command, command.urls.value_or(std::vector<std::string>()), argument),
             Activation::foreground);
        return;
    case CommandKind::search:
        open(filledIn(command, {command.url.value_or("")}, argument), Activation::foreground);
        return;
    case CommandKind::script:
        runScript({.text = command.script.value_or(""),
                   .shell = command.shell,
                   .argument = argument,
                   .name = command.id});
        return;
    case CommandKind::app:
        launchApp(command);
        return;
    case CommandKind::system:
        if (command.action && system)
            system(*command.action);
        return;
    case CommandKind::jump:
        if (jump)
            jump(command, argument);
        return;
    case CommandKind::files:
    case CommandKind::list:
        return;
    }
}

void CommandRuntime::open(std::vector<std::string> urls, Activation activation) {
    services_.links.open(std::move(urls), activation);
}

std::vector<std::string> CommandRuntime::filledIn(const CommandSpec& command,
                                                  const std::vector<std::string>& templates,
                                                  const std::string& argument) const {
    std::vector<std::string> urls;
    for (const auto& text : templates) {
        if (auto url = resolve(CommandTemplates::filled(text, argument)))
            urls.push_back(*std::move(url));
        else
            services_.diagnostics.log(fmt::format("open: \"{}\" of {} is no link",
                                                  Printable::line(text),
                                                  Printable::line(command.id)));
    }
    return urls;
}

std::optional<std::string> CommandRuntime::resolve(std::string_view text) const {
    const auto target = Folding::trimmed(text);
    if (target.starts_with('/') || target.starts_with('~')) {
        const auto path = expandingTilde(environment_, target);
        return path.starts_with('/') ? std::optional(Urls::fileUrl(path)) : std::nullopt;
    }
    return Urls::withScheme(target);
}

void CommandRuntime::launchApp(const CommandSpec& command) {
    const auto path = expandingTilde(environment_, Folding::trimmed(command.path.value_or("")));
    const auto told = [&diagnostics = services_.diagnostics,
                       id = command.id](const std::optional<std::string>& problem) {
        if (problem)
            diagnostics.log(
                fmt::format("app command {} failed: {}", Printable::line(id), *problem));
    };
    if (const auto* application = services_.catalog.registry()->named(path)) {
        ++launching_;
        services_.catalog.launch(
            *application,
            [this, told, weak = std::weak_ptr(alive_)](const std::optional<std::string>& problem) {
                if (weak.expired())
                    return;
                --launching_;
                told(problem);
            });
        return;
    }
    if (path.empty() || path.ends_with(entrySuffix)) {
        told(path.empty() ? "it has no path" : path + " is no installed application");
        return;
    }
    try {
        services_.processes.startDetached(
            {.arguments = {path},
             .environment = activationVariables(services_.tokens.take(Activation::foreground)),
             .name = command.id});
    } catch (const ProcessError& error) {
        told(error.what());
    }
}

void CommandRuntime::reveal(const std::vector<std::string>& urls) {
    requireMainThread(services_.queue);
    for (const auto& url : urls) {
        if (const auto path = Urls::filePath(url))
            services_.opener.reveal(*path);
        else
            services_.diagnostics.log(fmt::format("reveal: {} is no file", Printable::line(url)));
    }
}

ProcessSpec CommandRuntime::scriptProcess(const Script& script) const {
    const auto shell = script.shell.value_or("");
    return {
        .arguments = {shell.empty() ? std::string(usualShell) : shell,
                      "-c",
                      script.text,
                      "launcher",
                      script.argument},
        .environment = {{"PATH", programPath(environment_)}, {"LAUNCHER_QUERY", script.argument}},
        .workingDirectory = environment_.home,
        .name = script.name};
}

void CommandRuntime::runScript(const Script& script) {
    requireMainThread(services_.queue);
    const auto log = [&diagnostics = services_.diagnostics,
                      name = Printable::line(script.name)](std::string_view what) {
        diagnostics.log(fmt::format("script {} {}", name, what));
    };
    if (script.text.empty()) {
        log("could not start: it has no text");
        return;
    }
    auto process = scriptProcess(script);
    process.environment.merge(activationVariables(services_.tokens.take(Activation::foreground)));
    try {
        services_.programs.start(
            process, {}, [log, weak = std::weak_ptr(alive_)](const ProcessEnd& end) {
                if (!weak.expired())
                    log(fmt::format("exit {}: {}", end.status, printed(end)));
            });
    } catch (const ProcessError& error) {
        log(fmt::format("could not start: {}", error.what()));
    }
}

} // namespace tessarine
