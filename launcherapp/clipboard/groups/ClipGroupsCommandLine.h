#pragma once

#include "LauncherCore/clipboard/ClipboardHistory.h"

#include <optional>
#include <string>

namespace tessarine {

class ClipGroupStore;
class ClipGroupsRuntime;

/// `--clip-groups <verb> [--json <json>] [--name <name>]`: taught groups for scripts and agents,
/// answered in JSON.
namespace ClipGroupsCommandLine {

struct Request {
    std::optional<std::string> verb;
    std::optional<std::string> json;
    std::optional<std::string> name;
};

struct Reply {
    std::string output;  ///< for standard output; empty after a mistake in the words
    std::string problem; ///< for standard error
    int status = 0;      ///< 0 done, 1 refused, 2 a mistake in the words
};

/// Main thread only, as the store.
Reply reply(const Request& request,
            const ClipboardHistory& history,
            ClipGroupStore& store,
            ClipGroupsRuntime& runtime);

} // namespace ClipGroupsCommandLine
} // namespace tessarine
