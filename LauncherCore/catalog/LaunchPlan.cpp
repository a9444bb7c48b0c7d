#include "LauncherCore/catalog/LaunchPlan.h"

#include "LauncherCore/catalog/ExecLine.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

struct Terminal {
    std::string_view program;
    std::string_view words; ///< between the program and the command; at most two, blank between
};

/// How each terminal takes a command to run. The first two are the desktop's own choice.
constexpr auto terminals = std::to_array<Terminal>({
    {"xdg-terminal-exec", ""},
    {"x-terminal-emulator", "-e"},
    {"gnome-terminal", "--"},
    {"ptyxis", "--"},
    {"kgx", "-e"},
    {"konsole", "-e"},
    {"xfce4-terminal", "-x"},
    {"mate-terminal", "-x"},
    {"lxterminal", "-e"},
    {"foot", ""},
    {"alacritty", "-e"},
    {"kitty", ""},
    {"wezterm", "start --"},
    {"st", "-e"},
    {"urxvt", "-e"},
    {"xterm", "-e"},
});

constexpr std::string_view usualWords = "-e";

std::vector<std::string> terminalCommand(std::string path, std::string_view words) {
    std::vector<std::string> result{std::move(path)};
    while (!words.empty()) {
        const auto end = std::min(words.find(' '), words.size());
        result.emplace_back(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return result;
}

/// A bus name has at least two parts, none of which begins with a digit.
bool isBusName(std::string_view name) {
    bool hasDot = false;
    bool atStart = true;
    for (const char c : name) {
        const bool digit = c >= '0' && c <= '9';
        const bool letter =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '-';
        if (c == '.' && !atStart) {
            hasDot = atStart = true;
            continue;
        }
        if (!(letter || (digit && !atStart)))
            return false;
        atStart = false;
    }
    return hasDot && !atStart;
}

} // namespace

LaunchPlan LaunchPlans::plan(const InstalledApp& application,
                             std::span<const std::string> uris,
                             std::span<const std::string> terminal) {
    LaunchPlan plan{.uris = {uris.begin(), uris.end()},
                    .workingDirectory = application.workingDirectory};
    if (application.busActivatable && isBusName(application.bundleID))
        plan.busName = application.bundleID;
    const auto words = ExecLine::words(application.exec);
    if (words && application.terminal && terminal.empty()) {
        plan.problem = "it needs a terminal, and none is installed";
    } else if (words) {
        plan.commands = ExecLine::commands(*words,
                                           {.uris = plan.uris,
                                            .icon = application.icon,
                                            .name = application.name,
                                            .path = application.path});
        if (application.terminal) {
            for (auto& command : plan.commands)
                command.insert(command.begin(), terminal.begin(), terminal.end());
        }
    } else if (!plan.busName) {
        plan.problem = "its desktop entry names no program";
    }
    return plan;
}

std::vector<std::string> LaunchPlans::terminalWords(
    std::string_view terminalVariable,
    const std::function<std::optional<std::string>(std::string_view)>& executable) {
    if (!terminalVariable.empty()) {
        if (auto path = executable(terminalVariable)) {
            const auto name = terminalVariable.substr(terminalVariable.rfind('/') + 1);
            const auto known = std::ranges::find(terminals, name, &Terminal::program);
            return terminalCommand(*std::move(path),
                                   known == terminals.end() ? usualWords : known->words);
        }
    }
    for (const auto& [program, words] : terminals) {
        if (auto path = executable(program))
            return terminalCommand(*std::move(path), words);
    }
    return {};
}

} // namespace tessarine
