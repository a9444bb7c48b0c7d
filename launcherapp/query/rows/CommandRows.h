#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/query/Keywords.h"
#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Before a command's id in its row's id.
inline constexpr std::string_view commandRowPrefix = "cmd:";

/// What the rows of commands are made of.
struct CommandRowSources {
    const RowVerbs& verbs;
    /// What the row of a command says of it; nothing for its keyword. May be empty.
    const std::function<std::optional<std::string>(const CommandSpec& command)>& detail;
    /// Puts a text in the place of the query.
    std::function<void(const std::string& text)> typeWord = {};
};

/// Rows of the commands that `query` names, by name, keyword or alias, in the given order.
std::vector<ResultRow> commandRows(std::span<const CommandSpec> commands,
                                   const CommandRowSources& sources,
                                   std::string_view query);

/// What to type so that the command takes what follows: its keyword, else its first alias, and a
/// blank. Nothing for a command without a word that can be typed so, or that takes nothing.
std::optional<std::string> wordToType(const CommandSpec& command);

/// The row of one command; Return runs it with `argument`, or, of one that is a list of its own,
/// types its word.
ResultRow commandRow(const CommandSpec& command,
                     const CommandRowSources& sources,
                     const std::string& argument = {});

/// A query that begins with the keyword of a command which takes what follows.
struct Engagement {
    CommandSpec command;
    std::string argument;
};

/// The first such command; nothing without a blank in the query.
std::optional<Engagement> engagement(std::span<const CommandSpec> commands, std::string_view query);

/// The list while a command has the field: its one row, which Return runs with the argument.
std::vector<ResultRow> engagedRows(const CommandSpec& command,
                                   const CommandRowSources& sources,
                                   const std::string& argument);

/// The program's own modes that are there as rows, found by their words and names. Return types
/// the word through `typeWord`.
std::vector<ResultRow> featureRows(const Keywords& keywords,
                                   std::string_view query,
                                   const std::function<bool(BuiltinKeyword keyword)>& isThere,
                                   const std::function<void(const std::string& text)>& typeWord);

} // namespace tessarine
