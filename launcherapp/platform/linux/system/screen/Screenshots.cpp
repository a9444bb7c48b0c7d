#include "launcherapp/platform/linux/system/screen/Screenshots.h"

#include "launcherapp/platform/linux/system/screen/PortalScreenshot.h"

#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

enum class Wanted { selection, window };

/// A program that puts the picture into the clipboard by itself.
struct ClipboardTool {
    const char* program;
    std::vector<std::string> selection;
    std::vector<std::string> window;

    bool onlyOn(DesktopKind here) const { return !desktop || *desktop == here; }

    std::optional<DesktopKind> desktop; ///< nothing: wherever it is installed
};

/// Spectacle takes the window below the pointer, the other desktops' programs the active one: none
/// of them lets a window be clicked.
std::vector<ClipboardTool> clipboardTools() {
    return {
        {.program = "spectacle",
         .selection = {"-r", "-b", "-n", "-c"},
         .window = {"-u", "-b", "-n", "-c"},
         .desktop = DesktopKind::kde},
        {.program = "xfce4-screenshooter",
         .selection = {"-r", "-c"},
         .window = {"-w", "-c"},
         .desktop = DesktopKind::xfce},
        {.program = "mate-screenshot",
         .selection = {"-a", "-c"},
         .window = {"-w", "-c"},
         .desktop = DesktopKind::mate},
        {.program = "gnome-screenshot", .selection = {"-a", "-c"}, .window = {"-w", "-c"}},
    };
}

/// Programs for X11 in which a drag takes a part of the screen and a click takes a window: both
/// actions are theirs. The path of the picture comes behind the options.
struct FileTool {
    const char* program;
    std::vector<std::string> options;
};

std::vector<FileTool> fileTools() {
    return {{"maim", {"-s"}}, {"scrot", {"-s"}}, {"import", {}}};
}

std::string freshPicturePath(const Environment& environment) {
    std::random_device random;
    return fmt::format("{}/tessarine-{:08x}{:08x}.png",
                       environment.runtimeDir.value_or(environment.temporaryDir),
                       random(),
                       random());
}

/// The user's change of mind is a failure to the program, and none to us: "Cancelled", "canceled".
EffectWay forgivingCancel(EffectWay way) {
    return [way = std::move(way)](EffectDone done) {
        way([done = std::move(done)](std::optional<std::string> problem) {
            const bool isCancelled = problem && problem->find("ancel") != std::string::npos;
            done(isCancelled ? std::nullopt : std::move(problem));
        });
    };
}

/// The picture's file is ours, and goes once it is in the clipboard.
EffectWay throughFile(const EffectWays::Doors& doors, std::vector<std::string> arguments) {
    return [doors, arguments = std::move(arguments)](EffectDone done) {
        const auto path = freshPicturePath(doors->environment);
        const auto finish =
            [doors, path, done = std::move(done)](std::optional<std::string> problem) {
                doors->work.run(WorkPriority::utility, [path] {
                    std::error_code ignored;
                    std::filesystem::remove(path, ignored);
                });
                done(std::move(problem));
            };
        auto withPath = arguments;
        withPath.push_back(path);
        EffectWays::readProgram(doors,
                                std::move(withPath),
                                doors->patience.user,
                                [doors, path, finish](const EffectWays::ProgramAnswer& answer) {
                                    if (answer.problem)
                                        finish(answer.problem);
                                    else
                                        doors->copyImage(path, finish);
                                });
    };
}

/// The wlroots compositors' own tools, in a pipe: the paths are handed to the shell as arguments.
std::optional<std::vector<std::string>> waylandPipe(const DesktopFacts& facts) {
    for (const auto* each : {"grim", "slurp", "wl-copy"}) {
        if (!facts.hasProgram(each))
            return std::nullopt;
    }
    return std::vector<std::string>{"/bin/sh",
                                    "-c",
                                    "part=$(\"$1\") && \"$2\" -g \"$part\" - | \"$3\" -t image/png",
                                    "screenshot",
                                    facts.programs.at("slurp"),
                                    facts.programs.at("grim"),
                                    facts.programs.at("wl-copy")};
}

std::vector<EffectWay> ways(const EffectContext& context, Wanted wanted) {
    const auto& facts = context.facts;
    std::vector<EffectWay> ways;
    const auto run = [&](std::vector<std::string> arguments) {
        ways.push_back(
            EffectWays::program(context.doors, std::move(arguments), context.doors->patience.user));
    };
    for (const auto& tool : clipboardTools()) {
        if (tool.onlyOn(facts.kind()) && facts.hasProgram(tool.program))
            run(facts.commandLine(tool.program,
                                  wanted == Wanted::window ? tool.window : tool.selection));
    }
    if (ways.empty() && facts.isPlainX11()) {
        for (const auto& tool : fileTools()) {
            if (facts.hasProgram(tool.program))
                ways.push_back(
                    throughFile(context.doors, facts.commandLine(tool.program, tool.options)));
        }
    }
    if (ways.empty() && facts.hasWayland && facts.kind() == DesktopKind::other) {
        if (facts.hasProgram("grimshot"))
            run(facts.commandLine("grimshot",
                                  {"copy", wanted == Wanted::window ? "window" : "area"}));
        else if (auto pipe = waylandPipe(facts); pipe && wanted == Wanted::selection)
            run(*std::move(pipe));
    }
    // Its own window lets the user choose. It comes last, as it leaves the picture in a file too.
    if (context.session && facts.portalTakesPictures)
        ways.push_back(PortalScreenshot::way(context.doors, *context.session));
    return ways;
}

std::string whyNone(const DesktopFacts& facts, Wanted wanted) {
    if (facts.isPlainX11())
        return "no program that takes pictures of the screen is installed; maim would do";
    if (!facts.hasWayland)
        return "there is no screen";
    return wanted == Wanted::window
               ? "no program that takes pictures of a window is installed; grimshot would do"
               : "no program that takes pictures of the screen is installed; grim with slurp and "
                 "wl-clipboard would do";
}

Effect screenshot(const EffectContext& context, Wanted wanted) {
    auto found = ways(context, wanted);
    if (found.empty())
        return Effect::missing(whyNone(context.facts, wanted));
    // One that fails may have let the user choose already: no other asks again.
    return Effect::by(forgivingCancel(std::move(found.front())));
}

} // namespace

Effect Screenshots::selection(const EffectContext& context) {
    return screenshot(context, Wanted::selection);
}

Effect Screenshots::window(const EffectContext& context) {
    return screenshot(context, Wanted::window);
}

} // namespace tessarine
