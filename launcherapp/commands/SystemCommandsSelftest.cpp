#include "launcherapp/commands/SystemCommandsSelftest.h"

#include "LauncherCore/commands/BuiltinCommands.h"
#include "LauncherCore/commands/SettingsPanes.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/catalog/AppScan.h"
#include "launcherapp/commands/SettingsPaneScan.h"
#include "launcherapp/query/rows/CommandRows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

namespace {

using Commands = std::vector<CommandSpec>;

enum class Reads { asPane, asOther };

struct Fixture {
    std::string_view id;
    std::string_view meaning;
    std::string_view lines;
    Reads reads;
};

/// What a folder of entries holds beside the panes. The desktop is GNOME, and the control centres
/// of GNOME and KDE are installed.
constexpr auto fixtures = std::to_array<Fixture>({
    {"gnome-info-overview-panel",
     "a GNOME panel",
     "Name=About\nExec=gnome-control-center info-overview\nOnlyShowIn=GNOME;Unity;\n"
     "NoDisplay=true\n",
     Reads::asPane},
    {"kcm_kscreen",
     "a KDE module, which any desktop shows",
     "Name=Display Configuration\nExec=systemsettings kcm_kscreen\nNoDisplay=true\n",
     Reads::asPane},
    {"new-panel",
     "a panel that the table doesn't know",
     "Name=Tomorrow\nExec=/usr/bin/gnome-control-center tomorrow\n",
     Reads::asPane},
    {"org.gnome.Settings",
     "the control centre itself",
     "Name=Settings\nExec=gnome-control-center\n",
     Reads::asOther},
    {"systemsettings",
     "a control centre with options alone",
     "Name=S\nExec=systemsettings --x %u\n",
     Reads::asOther},
    {"other-desktop",
     "a panel for another desktop",
     "Name=Displays\nExec=cosmic-settings displays\nOnlyShowIn=COSMIC;\n",
     Reads::asOther},
    {"kcm_krunnersettings",
     "a module whose program is missing",
     "Name=KRunner Settings\nExec=kcmshell6 kcm_krunnersettings\n",
     Reads::asOther},
    {"nameless-panel", "a panel without a name", "Exec=gnome-control-center x\n", Reads::asOther},
    {"removed-panel",
     "a panel that the user removed",
     "Name=Sound\nExec=gnome-control-center sound\nHidden=true\n",
     Reads::asOther},
    {"editor",
     "an application opened with a page's name",
     "Name=Editor\nExec=editor sound\n",
     Reads::asOther},
    {"gnome-tour",
     "an application of the settings' category",
     "Name=Tour\nExec=tour\nCategories=Settings;\n",
     Reads::asOther},
});

constexpr std::string_view aboutName = "About This Computer";

bool isInstalled(std::string_view program) {
    return program.ends_with("gnome-control-center") || program == "systemsettings" ||
           program == "cosmic-settings";
}

/// The panes among the fixtures.
Commands fixturePanes() {
    const std::vector<std::string> desktops{"GNOME"};
    const Launchable::Session session{.currentDesktops = desktops, .canExecute = isInstalled};
    Commands panes;
    for (const auto& fixture : fixtures) {
        const auto text = fmt::format("[Desktop Entry]\nType=Application\n{}", fixture.lines);
        SettingsPanes::Found found{.entryID = std::string(fixture.id),
                                   .path = fmt::format("/invented/{}.desktop", fixture.id)};
        found.entry = DesktopEntry::parse(text, {}).value_or(DesktopEntry());
        if (auto pane = SettingsPanes::command(found, {}, session))
            panes.push_back(*std::move(pane));
    }
    return panes;
}

bool finds(const Commands& commands, std::string_view query, std::string_view id) {
    const auto rows = commandRows(commands, {.verbs = {}, .detail = {}}, query);
    return std::ranges::count(rows, fmt::format("{}{}", commandRowPrefix, id), &ResultRow::id) > 0;
}

bool holds(const Commands& commands, std::string_view id) {
    return std::ranges::count(commands, id, &CommandSpec::id) > 0;
}

/// Actions that nothing typed can find, each as a line.
std::vector<std::string> unreached(const Commands& commands) {
    std::vector<std::string> lines;
    for (const auto action : allSystemActions) {
        const auto row = std::ranges::find(commands, action, &CommandSpec::action);
        if (row == commands.end() || row->name.empty() || !finds(commands, row->name, row->id))
            lines.push_back(fmt::format("{} has no built-in command, so nothing can reach it",
                                        SystemActions::name(action)));
    }
    return lines;
}

/// Panes whose Return would do nothing, each as a line.
std::vector<std::string> unopenable(const Commands& panes) {
    std::vector<std::string> lines;
    for (const auto& pane : panes) {
        if (pane.kind != CommandKind::app || pane.path.value_or("").empty())
            lines.push_back(pane.id + ": no desktop entry to open");
    }
    return lines;
}

CommandSpec own(SystemAction action) {
    return {.id = "mine", .name = "Mine", .kind = CommandKind::system, .action = action};
}

/// How often a command has a word, in whatever case.
std::ptrdiff_t timesOwned(const CommandSpec& command, std::string_view word) {
    auto words = command.aliases.value_or(std::vector<std::string>{});
    words.insert(words.end(), {command.name, command.keyword.value_or("")});
    return std::ranges::count_if(
        words, [&](const std::string& each) { return Folding::equalIgnoringCase(each, word); });
}

class Check {
public:
    SelftestResult run(const FileStore& files, const Environment& environment) {
        checkReach();
        checkGuidance();
        checkShadowing();
        checkInheriting();
        checkPanes();
        countHere(files, environment);
        lines_.say(lines_.passed()
                       ? fmt::format("{} actions are reached and explained, and {} of {} invented "
                                     "entries are panes",
                                     allSystemActions.size(),
                                     fixturePanes().size(),
                                     fixtures.size())
                       : "FAILED, see the lines above");
        return lines_.result();
    }

private:
    void requireNone(const std::vector<std::string>& failures) {
        for (const auto& failure : failures)
            lines_.fail("FAIL " + failure);
    }

    void checkReach() {
        requireNone(unreached(builtIns_));
        auto without = builtIns_;
        std::erase_if(without, [](const auto& row) { return row.action == SystemAction::sleep; });
        lines_.require(unreached(without).size() == 1,
                       "FAIL control: an action without a row passes for reached");
        auto nameless = builtIns_;
        nameless.front().name.clear();
        lines_.require(unreached(nameless).size() == 1,
                       "FAIL decoy: a row that no word finds passes for reached");
    }

    void checkGuidance() {
        for (const auto action : allSystemActions) {
            if (const auto problem = SystemActions::guidanceProblem(action))
                lines_.fail(fmt::format("FAIL {}: {}", SystemActions::name(action), *problem));
        }
        lines_.require(SystemActions::guidanceProblem("system").has_value(),
                       "FAIL control: the placeholder \"system\" passes for guidance");
    }

    void checkShadowing() {
        const Commands user{own(SystemAction::lockScreen)};
        const auto rest = BuiltinCommands::available(builtIns_, user);
        lines_.require(holds(BuiltinCommands::available(builtIns_, {}), "sys.lock"),
                       "FAIL control: Lock Screen is missing without a command of the user's own");
        lines_.require(!holds(rest, "sys.lock"),
                       "FAIL the user's own lockScreen leaves the built-in beside it");
        lines_.require(holds(rest, "sys.restart") && rest.size() + 1 == builtIns_.size(),
                       "FAIL the user's own lockScreen takes more than its built-in away");
        auto script = user;
        script.front().kind = CommandKind::script;
        lines_.require(holds(BuiltinCommands::available(builtIns_, script), "sys.lock"),
                       "FAIL decoy: a script that merely names an action hides the built-in");
    }

    void checkInheriting() {
        constexpr std::string_view word = "toggle appearance";
        const Commands user{own(SystemAction::toggleDarkMode)};
        lines_.require(!finds(user, word, "mine"),
                       "FAIL control: the user's row has the word before it inherits");
        lines_.require(finds(BuiltinCommands::inheriting(builtIns_, user), word, "mine"),
                       "FAIL \"toggle appearance\" no longer finds anything");
        auto owning = user;
        owning.front().name = "Toggle Appearance";
        owning.front().keyword = "SWITCH APPEARANCE";
        owning.front().aliases = {{"toggle theme"}};
        const auto inherited = BuiltinCommands::inheriting(builtIns_, owning).front();
        for (const auto owned : {"toggle appearance", "switch appearance", "toggle theme"})
            lines_.require(timesOwned(inherited, owned) == 1,
                           fmt::format("FAIL \"{}\" is inherited a second time", owned));
        lines_.require(timesOwned(inherited, "toggle dark mode") == 1,
                       "FAIL control: a word that the user lacks isn't inherited once");
    }

    void checkPanes() {
        const auto panes = fixturePanes();
        for (const auto& fixture : fixtures) {
            const bool isPane =
                holds(panes, fmt::format("{}{}", SettingsPanes::idPrefix, fixture.id));
            const bool expected = fixture.reads == Reads::asPane;
            lines_.require(isPane == expected,
                           fmt::format("FAIL {} ({}): pane={}, expected {}",
                                       fixture.id,
                                       fixture.meaning,
                                       isPane,
                                       expected));
        }
        lines_.require(panes.size() < fixtures.size(), "FAIL the pane filter lets all through");
        lines_.require(std::ranges::count(panes, aboutName, &CommandSpec::name) == 1,
                       fmt::format("FAIL \"{}\" is not among the panes", aboutName));
        requireNone(unopenable(panes));
        auto broken = panes;
        broken.front().path.reset();
        lines_.require(unopenable(broken).size() == 1,
                       "FAIL control: a pane with nothing to open passes");
    }

    void countHere(const FileStore& files, const Environment& environment) {
        const auto apps = AppScan::scan(files, environment, AppScan::roots(environment, {}));
        const auto entries = apps.registry->apps().size();
        if (entries == 0)
            return lines_.say("live: NOT MEASURED, this machine has no desktop entries");
        const auto scan = SettingsPaneScan::scan(files, environment, *apps.registry);
        requireNone(unopenable(scan.panes));
        lines_.require(scan.panes.size() < entries,
                       "FAIL live: every desktop entry reads as a pane");
        lines_.say(fmt::format(
            "live: {} of {} desktop entries are settings panes here", scan.panes.size(), entries));
    }

    const Commands& builtIns_ = BuiltinCommands::actions();
    SelftestLines lines_{"selftest-system-commands: "};
};

} // namespace

SelftestResult systemCommandsSelftest(const FileStore& files, const Environment& environment) {
    return Check().run(files, environment);
}

} // namespace tessarine
