#include "launcherapp/platform/Environment.h"

#include "LauncherCore/text/Paths.h"

#include <initializer_list>
#include <utility>

namespace tessarine {

namespace {

using Variable = std::function<std::optional<std::string>(std::string_view)>;

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        if (end > 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

/// So that joining gives one slash.
std::string tidied(std::string_view path) {
    return std::string(Paths::withoutEndSlashes(path));
}

std::string folder(const Variable& variable, std::string_view name, const std::string& otherwise) {
    auto value = variable(name).value_or("");
    return value.starts_with('/') ? tidied(value) : otherwise;
}

std::vector<std::string>
folders(const Variable& variable, std::string_view name, std::string_view otherwise) {
    const auto value = variable(name).value_or("");
    std::vector<std::string> result;
    for (auto& each : split(value.empty() ? otherwise : value, ':')) {
        if (each.starts_with('/'))
            result.push_back(tidied(std::move(each)));
    }
    return result;
}

/// The first that is set and not empty.
std::string locale(const Variable& variable, std::initializer_list<std::string_view> names) {
    for (const auto name : names) {
        if (auto value = variable(name); value && !value->empty())
            return *value;
    }
    return "C";
}

bool isSet(const Variable& variable, std::string_view name) {
    return !variable(name).value_or("").empty();
}

/// The path in a line like `XDG_DESKTOP_DIR="$HOME/Desktop"`; empty for the home folder itself.
/// Nothing when the line sets something else, or no absolute path.
std::optional<std::string>
userDir(std::string_view line, std::string_view assignment, const std::string& home) {
    if (!line.starts_with(assignment))
        return std::nullopt;
    line.remove_prefix(assignment.size());
    std::string value;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\\' && i + 1 < line.size())
            value += line[++i];
        else if (line[i] != '"')
            value += line[i];
    }
    constexpr std::string_view homeVariable = "$HOME";
    if (value.starts_with(homeVariable))
        value = home + value.substr(homeVariable.size());
    if (!value.starts_with('/'))
        return std::nullopt;
    value = tidied(value);
    return value == home ? std::string() : value;
}

} // namespace

Environment readEnvironment(const Variable& variable, std::string_view accountHome) {
    Environment environment;
    const auto account = accountHome.starts_with('/') ? std::string(accountHome) : "/";
    environment.home = folder(variable, "HOME", tidied(account));
    const auto below = environment.home == "/" ? "" : environment.home;
    environment.dataHome = folder(variable, "XDG_DATA_HOME", below + "/.local/share");
    environment.configHome = folder(variable, "XDG_CONFIG_HOME", below + "/.config");
    environment.dataDirs = folders(variable, "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    environment.configDirs = folders(variable, "XDG_CONFIG_DIRS", "/etc/xdg");
    if (auto runtime = folder(variable, "XDG_RUNTIME_DIR", ""); !runtime.empty())
        environment.runtimeDir = std::move(runtime);
    environment.programDirs = folders(variable, "PATH", "/usr/local/bin:/usr/bin:/bin");
    environment.temporaryDir = folder(variable, "TMPDIR", "/tmp");
    environment.desktops = split(variable("XDG_CURRENT_DESKTOP").value_or(""), ':');
    environment.languagePriority = variable("LANGUAGE").value_or("");
    environment.messagesLocale = locale(variable, {"LC_ALL", "LC_MESSAGES", "LANG"});
    environment.numbersLocale = locale(variable, {"LC_ALL", "LC_NUMERIC", "LANG"});
    environment.moneyLocale = locale(variable, {"LC_ALL", "LC_MONETARY", "LANG"});
    environment.datesLocale = locale(variable, {"LC_ALL", "LC_TIME", "LANG"});
    environment.timeZone = variable("TZ");
    environment.collationLocale = locale(variable, {"LC_ALL", "LC_COLLATE", "LANG"});
    environment.terminal = variable("TERMINAL").value_or("");
    environment.userFolders = userFolders(environment, "");
    environment.hasX11 = isSet(variable, "DISPLAY");
    environment.hasWayland = isSet(variable, "WAYLAND_DISPLAY");
    environment.isStartedByBus = isSet(variable, "DBUS_STARTER_ADDRESS");
    environment.isHarmless = isSet(variable, "TESSARINE_HARMLESS");
    return environment;
}

UserFolders userFolders(const Environment& environment, std::string_view userDirs) {
    const auto below = environment.home == "/" ? "" : environment.home;
    UserFolders folders{.downloads = below + "/Downloads",
                        .desktop = below + "/Desktop",
                        .documents = below + "/Documents"};
    for (const auto& line : split(userDirs, '\n')) {
        if (auto path = userDir(line, "XDG_DOWNLOAD_DIR=", environment.home))
            folders.downloads = *std::move(path);
        else if (path = userDir(line, "XDG_DESKTOP_DIR=", environment.home); path)
            folders.desktop = *std::move(path);
        else if (path = userDir(line, "XDG_DOCUMENTS_DIR=", environment.home); path)
            folders.documents = *std::move(path);
    }
    return folders;
}

std::string expandingTilde(const Environment& environment, std::string_view path) {
    if (path == "~" || path.starts_with("~/"))
        return environment.home + std::string(path.substr(1));
    return std::string(path);
}

} // namespace tessarine
