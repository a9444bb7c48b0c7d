#include "LauncherCore/commands/SystemAction.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>

namespace tessarine {

namespace {

struct Known {
    SystemAction action;
    std::string_view name;
    std::string_view title;
    std::string_view plainEnglish;
    bool asksFirst = false;
};

constexpr auto table = std::to_array<Known>({
    {SystemAction::eject,
     "eject",
     "Eject all external drives",
     "Safely ejects every external drive and disk image at once"},
    {SystemAction::lockScreen,
     "lockScreen",
     "Lock screen (sleep display)",
     "Locks this computer right away; your apps keep running behind the password"},
    {SystemAction::sleep,
     "sleep",
     "Sleep",
     "Puts this computer to sleep now; everything picks up where you left off"},
    {SystemAction::emptyTrash,
     "emptyTrash",
     "Empty Trash",
     "Permanently deletes everything in the Trash"},
    {SystemAction::toggleDarkMode,
     "toggleDarkMode",
     "Toggle dark mode",
     "Switches between light and dark, whichever you are not in now"},
    {SystemAction::restart,
     "restart",
     "Restart",
     "Asks first, then restarts this computer; apps are asked to quit so you can save",
     true},
    {SystemAction::shutDown,
     "shutDown",
     "Shut down",
     "Asks first, then shuts this computer down; apps are asked to quit so you can save",
     true},
    {SystemAction::logOut,
     "logOut",
     "Log out",
     "Asks first, then logs you out; apps are asked to quit so you can save",
     true},
    {SystemAction::quitAll,
     "quitAll",
     "Quit all apps",
     "Quits every open app except Finder and Tessarine"},
    {SystemAction::sleepDisplays,
     "sleepDisplays",
     "Sleep displays",
     "Turns the screens off while this computer keeps working"},
    {SystemAction::screenSaver, "screenSaver", "Start screen saver", "Starts the screen saver now"},
    {SystemAction::showTrash,
     "showTrash",
     "Show Trash",
     "Opens the Trash in Finder so you can look before you empty it"},
    {SystemAction::toggleHiddenFiles,
     "toggleHiddenFiles",
     "Show or hide hidden files",
     "Shows or hides hidden files in Finder, then refreshes Finder"},
    {SystemAction::forceQuitDialog,
     "forceQuitDialog",
     "Force Quit apps",
     "Lists the open apps so you can pick one that stopped responding"},
    {SystemAction::restartFinder,
     "restartFinder",
     "Restart Finder",
     "Relaunches Finder, which clears most stuck windows and sidebars"},
    {SystemAction::restartDock,
     "restartDock",
     "Restart Dock",
     "Relaunches the Dock, which fixes a stuck Dock or Mission Control"},
    {SystemAction::screenshotSelection,
     "screenshotSelection",
     "Screenshot a selection",
     "Drag over any part of the screen; the picture goes to your clipboard"},
    {SystemAction::screenshotWindow,
     "screenshotWindow",
     "Screenshot a window",
     "Click a window; its picture goes to your clipboard"},
    {SystemAction::restartImmediately,
     "restartImmediately",
     "Restart immediately",
     "Restarts this computer right away, without asking first"},
    {SystemAction::shutDownImmediately,
     "shutDownImmediately",
     "Shut down immediately",
     "Shuts this computer down right away, without asking first"},
    {SystemAction::logOutImmediately,
     "logOutImmediately",
     "Log out immediately",
     "Logs you out right away, without asking first"},
    {SystemAction::darkMode, "darkMode", "Dark mode", "Turns dark mode on and keeps it on"},
    {SystemAction::lightMode, "lightMode", "Light mode", "Turns light mode on and keeps it on"},
    {SystemAction::autoAppearance,
     "autoAppearance",
     "Auto appearance (light by day, dark at night)",
     "Lets this computer switch between light and dark with the time of day"},
    {SystemAction::timeHomeHere,
     "timeHomeHere",
     "Time answers: home is wherever this Mac is",
     "For travel: time answers count from where this computer is right now"},
    {SystemAction::timeHomeClocks,
     "timeHomeClocks",
     "Time answers: home is my first clock",
     "Back home: time answers count from your first clock again"},
    {SystemAction::fixWispr,
     "fixWispr",
     "Fix Wispr Flow",
     "Restarts Wispr Flow and checks that it is listening again"},
});

constexpr bool isInOrder() {
    if (table.size() != allSystemActions.size())
        return false;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].action != allSystemActions[i] ||
            static_cast<std::size_t>(table[i].action) != i)
            return false;
    }
    return true;
}

static_assert(isInOrder(), "an action's place in the table is its value");

const Known& known(SystemAction action) {
    return table[static_cast<std::size_t>(action)];
}

/// Lines that stood under rows before there was guidance, and their like.
constexpr auto placeholders = std::to_array<std::string_view>(
    {"system", "command", "action", "system command", "system action", "todo", "tbd"});

std::size_t wordCount(std::string_view text) {
    std::size_t count = 0;
    bool isInWord = false;
    for (const char c : text) {
        const bool isBlank = c == ' ' || c == '\t' || c == '\n';
        if (!isBlank && !isInWord)
            ++count;
        isInWord = !isBlank;
    }
    return count;
}

} // namespace

std::string_view SystemActions::name(SystemAction action) {
    return known(action).name;
}

std::optional<SystemAction> SystemActions::named(std::string_view name) {
    const auto found = std::ranges::find(table, name, &Known::name);
    return found == table.end() ? std::nullopt : std::optional(found->action);
}

std::string_view SystemActions::title(SystemAction action) {
    return known(action).title;
}

std::string_view SystemActions::plainEnglish(SystemAction action) {
    return known(action).plainEnglish;
}

bool SystemActions::asksFirst(SystemAction action) {
    return known(action).asksFirst;
}

std::optional<std::string> SystemActions::guidanceProblem(std::string_view text) {
    constexpr std::size_t fewestWords = 4;
    const auto trimmed = Folding::trimmed(text);
    if (trimmed.empty())
        return "empty";
    const auto lower = Folding::lowercase(trimmed);
    if (std::ranges::count(placeholders, std::string_view(lower)) > 0)
        return "the placeholder \"" + std::string(trimmed) + "\"";
    if (wordCount(trimmed) < fewestWords)
        return "too short to explain anything: " + std::string(trimmed);
    if (text.find("—") != std::string_view::npos)
        return "an em dash: " + std::string(trimmed);
    return std::nullopt;
}

std::optional<std::string> SystemActions::guidanceProblem(SystemAction action) {
    return guidanceProblem(plainEnglish(action));
}

} // namespace tessarine
