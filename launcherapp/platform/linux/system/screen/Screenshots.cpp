#include "launcherapp/platform/linux/system/screen/Screenshots.h"

#include "launcherapp/platform/linux/system/screen/PortalScreenshot.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

enum class Wanted { selection, window };

/// A desktop's own program, which puts the picture into the clipboard by itself.
struct ClipboardTool {
    const char* program;
    std::vector<std::string> selection;
    std::vector<std::string> window;
    std::vector<DesktopKind> desktops;
    const char* windowLine; ///< which window it takes, as none of them lets one be clicked
};

constexpr auto inFront = "Takes the window in front at once; its picture goes to your clipboard";

std::vector<ClipboardTool> clipboardTools() {
    using enum DesktopKind;
    return {
        {.program = "spectacle",
         .selection = {"-r", "-b", "-n", "-c"},
         .window = {"-u", "-b", "-n", "-c"},
         .desktops = {kde},
         .windowLine =
             "Takes the window below the pointer at once; its picture goes to your clipboard"},
        {.program = "xfce4-screenshooter",
         .selection = {"-r", "-c"},
         .window = {"-w", "-c"},
         .desktops = {xfce},
         .windowLine = inFront},
        {.program = "mate-screenshot",
         .selection = {"-a", "-c"},
         .window = {"-w", "-c"},
         .desktops = {mate},
         .windowLine = inFront},
        {.program = "gnome-screenshot",
         .selection = {"-a", "-c"},
         .window = {"-w", "-c"},
         .desktops = {gnome, budgie, cinnamon},
         .windowLine = inFront},
    };
}

/// On plain X11 GNOME's works on any desktop; what other Wayland compositors give it is black.
bool worksOn(const ClipboardTool& tool, const DesktopFacts& facts) {
    const bool isOfGnome = std::ranges::count(tool.desktops, DesktopKind::gnome) > 0;
    return std::ranges::count(tool.desktops, facts.kind()) > 0 || (isOfGnome && facts.isPlainX11());
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

/// A program that leaves the picture in a file of ours, whose path comes behind its arguments, and
/// what brings that file into the clipboard. The file goes afterwards.
EffectWay throughFile(const EffectWays::Doors& doors,
                      std::vector<std::string> arguments,
                      std::function<void(const std::string& path, EffectDone done)> copy) {
    return [doors, arguments = std::move(arguments), copy = std::move(copy)](EffectDone done) {
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
        const auto take = EffectWays::program(doors, std::move(withPath), doors->patience.user);
        take([path, copy, finish](const std::optional<std::string>& problem) {
            if (problem)
                finish(problem);
            else
                copy(path, finish);
        });
    };
}

/// The wlroots compositors' own tools: the paths are handed to the shell as arguments. The picture
/// is whole before it takes the clipboard's place, and no window of ours is needed for that.
std::optional<EffectWay> grimAndSlurp(const EffectContext& context) {
    const auto& programs = context.facts.programs;
    for (const auto* each : {"grim", "slurp", "wl-copy"}) {
        if (!context.facts.hasProgram(each))
            return std::nullopt;
    }
    return throughFile(
        context.doors,
        {"/bin/sh",
         "-c",
         R"(part=$("$1") && "$2" -g "$part" "$3")",
         "screenshot",
         programs.at("slurp"),
         programs.at("grim")},
        [doors = context.doors, copier = programs.at("wl-copy")](const std::string& path,
                                                                 EffectDone done) {
            const auto copy = EffectWays::program(
                doors,
                {"/bin/sh", "-c", R"("$1" -t image/png < "$2")", "screenshot", copier, path},
                doors->patience.act);
            copy(std::move(done));
        });
}

/// In these a drag takes a part of the screen and a click a window.
std::optional<EffectWay> byPointer(const EffectContext& context) {
    if (!context.facts.isPlainX11())
        return std::nullopt;
    for (const auto& tool : fileTools()) {
        if (context.facts.hasProgram(tool.program))
            return throughFile(context.doors,
                               context.facts.commandLine(tool.program, tool.options),
                               context.doors->copyImage);
    }
    return std::nullopt;
}

std::optional<Effect> byDesktopsTool(const EffectContext& context, Wanted wanted) {
    for (const auto& tool : clipboardTools()) {
        if (!worksOn(tool, context.facts) || !context.facts.hasProgram(tool.program))
            continue;
        const bool isWindow = wanted == Wanted::window;
        auto effect = Effect::by(EffectWays::program(
            context.doors,
            context.facts.commandLine(tool.program, isWindow ? tool.window : tool.selection),
            context.doors->patience.user));
        if (isWindow)
            effect.manner.line = tool.windowLine;
        return effect;
    }
    return std::nullopt;
}

/// sway tells grimshot where its windows are.
bool knowsWindows(const DesktopFacts& facts) {
    return std::ranges::count(facts.desktops, "sway") > 0 && facts.hasProgram("swaymsg");
}

std::optional<EffectWay> byWlroots(const EffectContext& context, Wanted wanted) {
    const auto& facts = context.facts;
    if (!facts.isWayland() || facts.kind() != DesktopKind::other)
        return std::nullopt;
    const bool isWindow = wanted == Wanted::window;
    if (facts.hasProgram("grimshot") && (!isWindow || knowsWindows(facts)))
        return EffectWays::program(
            context.doors,
            facts.commandLine("grimshot", {"copy", isWindow ? "window" : "area"}),
            context.doors->patience.user);
    return isWindow ? std::nullopt : grimAndSlurp(context);
}

/// The first that is here, so that no other asks the user again after one that failed. For a window
/// one that lets it be clicked is better than the desktop's own. The portal comes last, as it
/// leaves the picture in a file too.
std::optional<Effect> found(const EffectContext& context, Wanted wanted) {
    auto pointer = byPointer(context);
    if (pointer && wanted == Wanted::window)
        return Effect::by(*std::move(pointer));
    if (auto tool = byDesktopsTool(context, wanted))
        return tool;
    if (pointer)
        return Effect::by(*std::move(pointer));
    if (auto way = byWlroots(context, wanted))
        return Effect::by(*std::move(way));
    if (!context.session || !context.facts.portalTakesPictures)
        return std::nullopt;
    auto effect = Effect::by(PortalScreenshot::way(context.doors, *context.session));
    effect.manner.line = "Asks what to take a picture of; the picture goes to your clipboard";
    return effect;
}

std::string whyNone(const DesktopFacts& facts, Wanted wanted) {
    constexpr auto wouldDo =
        "no program that takes pictures of the screen is installed; {} would do";
    if (facts.isPlainX11())
        return fmt::format(wouldDo, "maim");
    if (!facts.isWayland())
        return "there is no screen";
    for (const auto& tool : clipboardTools()) {
        if (worksOn(tool, facts))
            return fmt::format(wouldDo, tool.program);
    }
    if (facts.kind() == DesktopKind::other && wanted == Wanted::selection)
        return fmt::format(wouldDo, "grim with slurp and wl-clipboard");
    if (knowsWindows(facts))
        return fmt::format(wouldDo, "grimshot");
    return fmt::format("it is not known how {} takes such a picture", facts.desktopName());
}

Effect screenshot(const EffectContext& context, Wanted wanted) {
    auto effect = found(context, wanted);
    if (!effect)
        return Effect::missing(whyNone(context.facts, wanted));
    effect->perform = EffectWays::forgivingCancel(std::move(effect->perform));
    return *std::move(effect);
}

} // namespace

Effect Screenshots::selection(const EffectContext& context) {
    return screenshot(context, Wanted::selection);
}

Effect Screenshots::window(const EffectContext& context) {
    return screenshot(context, Wanted::window);
}

} // namespace tessarine
