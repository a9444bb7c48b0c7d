#include "launcherapp/shell/modes/Modes.h"

#include "launcherapp/catalog/AppCatalogSelftest.h"
#include "launcherapp/panel/appearance/AppearanceSelftest.h"
#include "launcherapp/shell/ProductInfo.h"
#include "launcherapp/shell/modes/ClipboardModes.h"
#include "launcherapp/shell/modes/CommandModes.h"
#include "launcherapp/shell/modes/DesktopModes.h"
#include "launcherapp/shell/modes/IndexModes.h"
#include "launcherapp/shell/modes/PanelModes.h"
#include "launcherapp/shell/modes/QueryModes.h"
#include "launcherapp/shell/modes/SearchMode.h"
#include "launcherapp/shell/modes/ShowModes.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

using enum Mode::Value;

constexpr std::string_view updater = "the updater";
constexpr std::string_view dictation = "the dictation doctor";
constexpr std::string_view importer = "the workflow importer";
constexpr std::string_view stallWatch = "the stall watch";
constexpr std::string_view helpMenu = "a menu bar with a Help menu";
constexpr std::string_view clipboardSync = "clipboard sync";
constexpr std::string_view settingsSync = "settings sync";
constexpr std::string_view people = "the contacts source";
constexpr std::string_view voice = "voice search";
constexpr std::string_view statusPictures = "a picture of the status item";
constexpr std::string_view statusSelftest = "the self-test of the status item";
constexpr std::string_view toast = "the copied toast";
constexpr std::string_view graph = "the graph";
constexpr std::string_view wizard = "the permission wizard";
constexpr std::string_view doctor = "the doctor";
constexpr std::string_view chat = "the chat source";
constexpr std::string_view settings = "the settings window";

void runAppCatalogSelftest(ModeContext& context, const std::string&) {
    finish(context, appCatalogSelftest(context.files, context.environment));
}

void runAppearanceSelftest(ModeContext& context, const std::string&) {
    finish(context, appearanceSelftest());
}

/// A mode of the panel's view, if this run has one.
template <PanelModes::Run PanelModes::*mode>
void drawing(ModeContext& context, const std::string& value) {
    if (context.panel && context.panel->*mode) {
        (context.panel->*mode)(context, value);
        return;
    }
    context.print("panel: NOT MEASURED, nothing can be drawn in this run");
    context.finish(static_cast<int>(SelftestResult::Verdict::notMeasured));
}

constexpr std::string_view versionFlag = "--version";

constexpr auto earlyModes = std::to_array<Mode>({
    {versionFlag},
    {"--selftest-updater-location", none, {}, updater},
    {"--fix-wispr", none, {}, dictation},
    {"--wispr-health", none, {}, dictation},
    {"startup", none, {}, "the login item"},
    {"--import-alfred", none, {}, importer},
    {"--selftest-stall-sample", none, {}, stallWatch},
    {"--selftest-help-menu", none, {}, helpMenu},
});

constexpr auto residentModes = std::to_array<Mode>({
    {"--selftest-fsevents", none, {}, {}, IndexModes::selftestFsevents},
    {"--show", none, {}, {}, ShowModes::show},
    {"--selftest-show", none, Seconds{1.5}, {}, ShowModes::selftestShow},
    {"--render-sheet", next, Seconds{1}, {}, drawing<&PanelModes::renderSheet>},
    {"--render-shortcuts", next, Seconds{1.5}, {}, drawing<&PanelModes::renderShortcuts>},
    {"--render-settings", next, Seconds{1.5}, settings},
    {"--pasteboard-types", none, {}, {}, ClipboardModes::pasteboardTypes},
    {"--desktop-abilities", none, {}, {}, DesktopModes::abilities},
    {"--settings-sync-probe", none, {}, settingsSync},
    {"--sync-probe", none, {}, clipboardSync},
    {"--selftest-keychain", none, {}, clipboardSync},
    {"--selftest-sync", none, {}, clipboardSync},
    {"--selftest-index", none, Seconds{3}, {}, IndexModes::selftestIndex},
    {"--selftest-recompute", none, Seconds{3}, {}, QueryModes::selftestRecompute},
    {"--bench-favorites", none, {}, {}, QueryModes::benchFavorites},
    {"--bench-answers", next, {}, {}, QueryModes::benchAnswers},
    {"--bench-stages", next, Seconds{8}, {}, QueryModes::benchStages},
    {"--actions-check", next, Seconds{2.5}, {}, QueryModes::actionsCheck},
    {"--people-check", next, Seconds{6}, people},
    {"--mic-check", none, {}, voice},
    {"--mic-request", none, {}, voice},
    {"--clip-groups", none, {}, {}, ClipboardModes::clipGroups},
    {"--selftest-appearance", none, {}, {}, runAppearanceSelftest},
    {"--selftest-render-purity", none, {}, {}, drawing<&PanelModes::selftestRenderPurity>},
    {"--selftest-shortcut", none, {}, {}, drawing<&PanelModes::selftestShortcut>},
    {"--selftest-settings", none, {}, {}, QueryModes::selftestSettings},
    {"--menubar-sheet", next, Seconds{0.4}, statusPictures},
    {"--menubar-variants", next, Seconds{0.3}, statusPictures},
    {"--menubar-menu-shot", next, Seconds{0.4}, statusPictures},
    {"--contact-card", next, {}, people},
    {"--selftest-clip-sacred", none, {}, {}, ClipboardModes::selftestClipSacred},
    {"--selftest-clip-file", none, {}, {}, ClipboardModes::selftestClipFile},
    {"--selftest-contact-card", none, {}, people},
    {"--selftest-app-catalog", none, {}, {}, runAppCatalogSelftest},
    {"--selftest-system-commands", none, {}, {}, CommandModes::selftestSystemCommands},
    {"--selftest-menubar", none, {}, statusSelftest},
    {"--selftest-menu-contrast", none, {}, statusSelftest},
    {"--selftest-index-duty", none, {}, {}, IndexModes::selftestIndexDuty},
    {"--selftest-volumes", none, {}, {}, IndexModes::selftestVolumes},
    {"--selftest-walker", none, {}, {}, IndexModes::selftestWalker},
    {"--selftest-supportdir", none, {}, {}, QueryModes::selftestSupportDirectory},
    {"--selftest-delta", none, {}, {}, IndexModes::selftestDelta},
    {"--selftest-update-hold", none, {}, updater},
    {"--selftest-copied-toast", none, {}, toast},
    {"--selftest-companion-pack", next, {}, "the companion packs"},
    {"--watch-stalls", next, {}, stallWatch},
    {"--index-soak", next, Seconds{0.5}, {}, IndexModes::indexSoak},
    {"--drive-probe", none, {}, {}, IndexModes::driveProbe},
    {"--selftest-at-rest", none, {}, {}, QueryModes::selftestAtRest},
    {"--walker-diff", none, {}, {}, IndexModes::walkerDiff},
    {"--copied-toast-shot", next, {}, toast},
    {"--copied-toast-live", none, {}, toast},
    {"--selftest-graph-shot", none, {}, graph},
    {"--graph-shot", next, {}, graph},
    {"--permission-lint", none, {}, wizard},
    {"--wizard-shot", next, Seconds{1.5}, wizard},
    {"--doctor", none, Seconds{2}, doctor},
    {"--bench", next, Seconds{8}, {}, QueryModes::bench},
    {"--bench-firstshow", none, {}, {}, ShowModes::benchFirstShow},
    {"--run", next, Seconds{0.3}, {}, CommandModes::run},
    {"--jump-press-probe", next, Seconds{0.3}, {}, CommandModes::jumpPressProbe},
    {"--search", next, Seconds{2.5}, {}, SearchMode::run},
    {"--selftest-slack", none, Seconds{2.5}, chat},
    {"--selftest-get-sun-mode", none, Seconds{2.5}, "the companion bridges"},
    {"--selftest-contact-verbs", none, Seconds{2.5}, people},
    {"--selftest-chrome-profiles", none, Seconds{2.5}, "the browser profiles source"},
    {"--slack-refresh", none, {}, chat},
    {"--render", next, Seconds{2.5}, {}, drawing<&PanelModes::render>},
});

/// Options that only qualify a mode of the tables above, or the whole run.
constexpr auto qualifiers = std::to_array<std::string_view>({
    "--actions",     "--apply",
    "--arg",         "--browse",
    "--clip",        "--clip-filter",
    "--clip-rows",   "--demo",
    "--filter-menu", "--filter-menu-row",
    "--footer",      "--height",
    "--json",        "--mark",
    "--name",        "--panel-actions",
    "--person",      "--preview-placement",
    "--query",       "--scan-timing",
    "--select",      "--settle",
    "--skin",
});

/// "selftest-index: NOT MEASURED, …", by the convention of every self-test and probe.
std::string notMeasured(const Mode& mode) {
    auto name = mode.flag;
    while (name.starts_with('-'))
        name.remove_prefix(1);
    return fmt::format("{}: NOT MEASURED, {} is not built yet", name, mode.needs);
}

} // namespace

void finish(ModeContext& context, const SelftestResult& result) {
    context.print(result.report);
    context.finish(static_cast<int>(result.verdict));
}

std::span<const Mode> Modes::early() {
    return earlyModes;
}

std::span<const Mode> Modes::resident() {
    return residentModes;
}

const std::vector<std::string_view>& Modes::knownFlags() {
    static const auto flags = [] {
        std::vector<std::string_view> result(qualifiers.begin(), qualifiers.end());
        for (const auto modes : {early(), resident()}) {
            for (const auto& mode : modes) {
                if (mode.flag.starts_with("--"))
                    result.push_back(mode.flag);
            }
        }
        std::ranges::sort(result);
        return result;
    }();
    return flags;
}

std::span<const std::string_view> Modes::families() {
    static constexpr auto prefixes = std::to_array<std::string_view>({
        "--selftest",
        "--render",
        "--bench",
        "--menubar-",
        "--copied-toast-shot",
        "--graph-shot",
    });
    return prefixes;
}

std::optional<std::string> Modes::refusal(const CommandLine& commandLine) {
    const auto unknown = commandLine.firstUnknown(knownFlags(), families());
    if (!unknown)
        return std::nullopt;
    return fmt::format("{}: unknown option {}\nknown options: {}\nsubcommands: startup\n",
                       ProductInfo::name,
                       *unknown,
                       fmt::join(knownFlags(), " "));
}

std::optional<Modes::Ending> Modes::endEarly(const CommandLine& commandLine) {
    for (const auto modes : {early(), resident()}) {
        for (const auto& mode : modes) {
            if (!isAsked(mode, commandLine))
                continue;
            if (mode.flag == versionFlag)
                return Ending{.lines = {fmt::format("{} {} ({})",
                                                    ProductInfo::name,
                                                    ProductInfo::version,
                                                    ProductInfo::build)}};
            if (!mode.run)
                return Ending{.lines = {notMeasured(mode)}, .status = 2};
        }
    }
    return std::nullopt;
}

bool Modes::isAsked(const Mode& mode, const CommandLine& commandLine) {
    // A subcommand is the first word: the same word may well be what somebody searches for.
    if (!mode.flag.starts_with("--"))
        return !commandLine.arguments().empty() && commandLine.arguments().front() == mode.flag;
    return mode.value == none ? commandLine.has(mode.flag)
                              : commandLine.value(mode.flag).has_value();
}

bool Modes::draws(const CommandLine& commandLine) {
    static constexpr auto drawn = std::to_array<std::string_view>(
        {"--render", "--render-sheet", "--render-shortcuts", "--selftest-render-purity"});
    return std::ranges::any_of(resident(), [&](const Mode& mode) {
        return std::ranges::count(drawn, mode.flag) > 0 && isAsked(mode, commandLine);
    });
}

bool Modes::showsPanel(const CommandLine& commandLine) {
    return !endsByItself(commandLine) || commandLine.has("--selftest-show");
}

bool Modes::endsByItself(const CommandLine& commandLine) {
    return std::ranges::any_of(resident(), [&](const Mode& mode) {
        return mode.run && mode.run != ShowModes::show && isAsked(mode, commandLine);
    });
}

bool Modes::isHeadlessRun(const CommandLine& commandLine) {
    constexpr auto beginnings =
        std::to_array<std::string_view>({"--selftest", "--render", "--bench", "--menubar-"});
    constexpr auto words = std::to_array<std::string_view>({"--search",
                                                            "--desktop-abilities",
                                                            "--doctor",
                                                            "--watch-stalls",
                                                            "--copied-toast-live",
                                                            "--copied-toast-shot",
                                                            "--permission-lint",
                                                            "--wizard-shot",
                                                            "--walker-diff",
                                                            "--slack-refresh"});
    return std::ranges::any_of(commandLine.arguments(), [&](const std::string& argument) {
        return std::ranges::count(words, argument) > 0 ||
               std::ranges::any_of(beginnings, [&](std::string_view beginning) {
                   return argument.starts_with(beginning);
               });
    });
}

void Modes::schedule(ModeContext& context) {
    for (const auto& mode : resident()) {
        if (!mode.run || !isAsked(mode, context.commandLine))
            continue;
        context.queue.postAfter(mode.delay, [&context, &mode] {
            const auto value =
                mode.value == none ? std::nullopt : context.commandLine.value(mode.flag);
            mode.run(context, value.value_or(""));
        });
    }
}

} // namespace tessarine
