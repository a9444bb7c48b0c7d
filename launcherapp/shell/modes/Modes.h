#pragma once

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/CommandLine.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AnswerService;
class AppCatalog;
class CreditResolver;
class FileStore;
class Prefs;
class SearchModel;
struct ClipboardModeServices;
struct CommandModeServices;
struct DesktopSurroundings;
struct IndexModeServices;
struct PanelModes;
struct SelftestResult;

/// What a mode may use: the services of the running program, and the way out.
/// Main thread only; the references live until the process ends.
struct ModeContext {
    const CommandLine& commandLine;
    const Environment& environment;
    Seconds launchedAt; ///< when the process began, by the queue's uptime
    MainQueue& queue;
    FileStore& files;
    AppCatalog& catalog;
    Prefs& prefs;
    SearchModel& model;
    CreditResolver& credits;
    AnswerService* answers = nullptr;                         ///< null where none run
    const IndexModeServices* indexing = nullptr;              ///< null where no index runs
    const CommandModeServices* commands = nullptr;            ///< null where none run
    const ClipboardModeServices* clipboard = nullptr;         ///< null where there is none
    const PanelModes* panel = nullptr;                        ///< null where nothing can be drawn
    std::function<DesktopSurroundings()> desktop;             ///< looks and waits, a second or two
    std::function<std::unique_ptr<SearchModel>()> freshModel; ///< wired as `model`, never used
    std::function<void(std::string_view line)> print;         ///< one line to standard output
    std::function<void(std::string_view text)> printError;    ///< to standard error, as it is
    std::function<void(int status)> finish; ///< ends the process, once it gets there
};

/// Prints what a self-test found out, and ends with the status that says so.
void finish(ModeContext& context, const SelftestResult& result);

/// One option of the command line that does something. A self-test or probe of a subsystem is one
/// line in the table of Modes.cpp.
struct Mode {
    enum class Value {
        none,
        next, ///< the word after the flag; without one the mode counts as absent
    };

    std::string_view flag; ///< with its hyphens
    Value value = Value::none;
    Seconds delay{0};       ///< from start to `run`, so that the services have settled
    std::string_view needs; ///< the subsystem it can't run without yet; empty when it runs
    /// On the main thread. `value` is empty for a mode that takes none. Null when it can't run.
    void (*run)(ModeContext& context, const std::string& value) = nullptr;
};

namespace Modes {

/// Modes that need no application object, in the order in which they are tested.
std::span<const Mode> early();

/// Modes that run inside the started application, in the order in which they are handled.
std::span<const Mode> resident();

/// Every option, those that only qualify a mode included, sorted.
const std::vector<std::string_view>& knownFlags();

/// How words begin that are options whatever follows.
std::span<const std::string_view> families();

/// The three lines that refuse a word which is no option, each with its line end; nothing when
/// every word may stand.
std::optional<std::string> refusal(const CommandLine& commandLine);

/// What a mode prints that ends the process before the application exists, and its status.
struct Ending {
    std::vector<std::string> lines;
    int status = 0;
};

/// Runs the first early mode of the command line, or says what the first mode lacks that can't
/// run; nothing when the application is to start.
std::optional<Ending> endEarly(const CommandLine& commandLine);

/// Whether the command line has this mode, with its value if it takes one.
bool isAsked(const Mode& mode, const CommandLine& commandLine);

/// Whether the panel may come up in this run, for which Qt needs a display's windows.
bool showsPanel(const CommandLine& commandLine);

/// Whether a mode is asked for that draws the panel, and so needs windows, if only offscreen.
bool draws(const CommandLine& commandLine);

/// Whether any mode is asked for that ends the process; without one the program stays resident.
bool endsByItself(const CommandLine& commandLine);

/// Whether the run is one that must not walk the user's files: its answers stay the same, and it
/// can't get in the way of a resident copy.
bool isHeadlessRun(const CommandLine& commandLine);

/// Schedules every resident mode of the command line after its delay.
void schedule(ModeContext& context);

} // namespace Modes
} // namespace tessarine
