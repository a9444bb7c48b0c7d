#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Where the user keeps things, by the names that desktops agree on. Absolute paths; empty for
/// one that the user turned off.
struct UserFolders {
    std::string downloads;
    std::string desktop;
    std::string documents;

    bool operator==(const UserFolders&) const = default;
};

/// What the process was told by its environment, read once at start. A value.
struct Environment {
    std::string home;                      ///< absolute; "/" when there is none
    std::string dataHome;                  ///< XDG_DATA_HOME
    std::string configHome;                ///< XDG_CONFIG_HOME
    std::vector<std::string> dataDirs;     ///< XDG_DATA_DIRS, best first
    std::vector<std::string> configDirs;   ///< XDG_CONFIG_DIRS, best first
    std::optional<std::string> runtimeDir; ///< XDG_RUNTIME_DIR; nothing outside a login session
    std::vector<std::string> programDirs;  ///< PATH, in order
    UserFolders userFolders;
    std::string temporaryDir = "/tmp";   ///< TMPDIR
    std::vector<std::string> desktops;   ///< XDG_CURRENT_DESKTOP, in order
    std::string languagePriority;        ///< LANGUAGE; may be empty
    std::string messagesLocale;          ///< of LC_ALL, LC_MESSAGES, LANG; "C" when none is set
    std::string collationLocale;         ///< of LC_ALL, LC_COLLATE, LANG; "C" when none is set
    std::string numbersLocale;           ///< of LC_ALL, LC_NUMERIC, LANG
    std::string moneyLocale;             ///< of LC_ALL, LC_MONETARY, LANG
    std::string datesLocale;             ///< of LC_ALL, LC_TIME, LANG
    std::optional<std::string> timeZone; ///< TZ
    std::string terminal;                ///< TERMINAL; may be empty
    bool hasX11 = false;                 ///< DISPLAY is set
    bool hasWayland = false;             ///< WAYLAND_DISPLAY is set
    bool isStartedByBus = false;         ///< DBUS_STARTER_ADDRESS is set
    bool isHarmless = false; ///< TESSARINE_HARMLESS is set: the machine's actions do nothing

    bool operator==(const Environment&) const = default;
};

/// Reads the variables with the defaults of the XDG base directory standard (0.8); values that
/// aren't absolute paths are ignored, as it asks. `variable` gives nothing for one that is unset,
/// `accountHome` is the home folder of the user's account for when HOME is unset.
Environment
readEnvironment(const std::function<std::optional<std::string>(std::string_view name)>& variable,
                std::string_view accountHome);

/// The folders as "user-dirs.dirs" names them (xdg-user-dirs), those that it doesn't name as they
/// are called in English. One that is the home folder itself is turned off.
UserFolders userFolders(const Environment& environment, std::string_view userDirs);

/// A path that may begin "~" or "~/", with the home folder in its place; else `path` itself.
std::string expandingTilde(const Environment& environment, std::string_view path);

} // namespace tessarine
