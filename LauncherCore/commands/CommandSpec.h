#pragma once

#include "LauncherCore/commands/SystemAction.h"

#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// What running a command means. The order is the one of the commands file's documentation.
enum class CommandKind { open, script, app, search, system, files, list, jump };

/// One command as the user wrote it. Which fields count depends on `kind`; the others are kept
/// and ignored.
struct CommandSpec {
    std::string id;   ///< also the row's identity (after "cmd:") and the hotkey's
    std::string name; ///< what the row shows
    std::optional<std::string> keyword;
    CommandKind kind = CommandKind::open;
    std::optional<std::vector<std::string>> urls; ///< open: the links, in order
    std::optional<std::string> script;            ///< script, list: the program text
    std::optional<std::string> shell;             ///< script, list: nothing means /bin/bash
    std::optional<std::string> path;              ///< app, jump: the application; "~" allowed
    std::optional<std::string> url;               ///< search: the template; jump: the deep link
    std::optional<SystemAction> action;           ///< system
    std::optional<std::vector<std::string>> extensions; ///< files: nothing means every extension
    std::optional<bool> foldersOnly;                    ///< files
    std::optional<std::string> hotkey;                  ///< a chord as text
    std::optional<std::vector<std::string>> aliases;    ///< more keywords
    std::optional<std::string> icon;                    ///< a symbol's name
    std::optional<std::string> onSelect;                ///< list: run on the chosen row
    std::optional<std::string> notes;                   ///< for the user; no effect
    std::optional<std::vector<std::string>> press;      ///< jump: buttons to press, in order
    std::optional<bool> activate;                       ///< jump: bring the application forward
    std::optional<std::string> source;                  ///< the importer or pack it came from

    bool operator==(const CommandSpec&) const = default;

    /// Whether typing after the keyword means anything.
    bool takesArgument() const;

    /// What is wrong with it, in words for the user, each beginning with its id; it is kept and
    /// offered all the same.
    std::vector<std::string> problems() const;

    /// The symbol of its row: the user's own, else one for its kind.
    std::string defaultSymbol() const;
};

} // namespace tessarine
