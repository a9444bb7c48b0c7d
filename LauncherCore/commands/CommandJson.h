#pragma once

#include "LauncherCore/commands/CommandSpec.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string_view>

/// The JSON form of commands. Pure; any thread.
namespace tessarine::CommandJson {

/// Throws CommandFileError, in words for the user, where the text is no JSON or is nested so
/// deeply that nobody can have meant it.
nlohmann::json parsed(std::string_view text);

/// Nothing when a key that is required is absent, one has another type than it should, or names a
/// kind or an action that this version doesn't know. Null stands for absent; other keys are
/// ignored.
std::optional<CommandSpec> command(const nlohmann::json& object);

/// Without the keys of what is absent.
nlohmann::json encoded(const CommandSpec& command);

} // namespace tessarine::CommandJson
