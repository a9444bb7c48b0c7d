#pragma once

#include "LauncherCore/commands/CommandSpec.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string_view>

/// The JSON form of commands. Pure; any thread.
namespace tessarine::CommandJson {

/// Throws CommandFileError, in words for the user, where the text is no JSON, holds a number that
/// none of ours can, or is nested so deeply (256) that nobody can have meant it.
nlohmann::json parsed(std::string_view text);

/// Nothing when a key that is required is absent, one has another type than it should, or names a
/// kind or an action that this version doesn't know. Null stands for absent; other keys are
/// ignored.
std::optional<CommandSpec> command(const nlohmann::json& object);

/// The document's "version": 4.0 counts as 4, and what is no whole number, or none at all, as 1.
std::int64_t version(const nlohmann::json& root);

/// As the commands file spells it: "open".
std::string_view kindName(CommandKind kind);

/// Without the keys of what is absent.
nlohmann::json encoded(const CommandSpec& command);

} // namespace tessarine::CommandJson
