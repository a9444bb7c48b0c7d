#pragma once

#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/modes/Modes.h"
#include "tests/fakes/FakeServices.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

/// A run of the program with these words, over the fakes, and what it prints.
struct ModeRun {
    ModeRun(FakeServices& made,
            SearchModel& searched,
            std::vector<std::string> words,
            const CommandModeServices* commands = nullptr,
            const ClipboardModeServices* clipboard = nullptr)
        : credits(made.catalog, made.platform.files, made.environment),
          commandLine(std::move(words)),
          context{.commandLine = commandLine,
                  .environment = made.environment,
                  .queue = made.platform.queue,
                  .files = made.platform.files,
                  .catalog = made.catalog,
                  .prefs = made.prefs,
                  .model = searched,
                  .credits = credits,
                  .commands = commands,
                  .clipboard = clipboard,
                  .print = [this](std::string_view line) { lines.emplace_back(line); },
                  .printError = [this](std::string_view text) { errors += text; },
                  .finish = [this](int value) { status = value; }} {}

    ModeRun(const ModeRun&) = delete;
    ModeRun& operator=(const ModeRun&) = delete;

    CreditResolver credits;
    CommandLine commandLine;
    std::vector<std::string> lines;
    std::string errors;
    std::optional<int> status;
    ModeContext context;
};

} // namespace tessarine
