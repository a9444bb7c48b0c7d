#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"
#include "launcherapp/platform/linux/system/LinuxSystemEffects.h"
#include "tests/linux/system/SystemFixture.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A desktop as it was found.
struct Desktop {
    const char* name = "";
    bool isWayland = false;
    std::vector<const char*> owned = {};
    std::vector<const char*> programs = {};
    std::vector<const char*> running = {};
    const char* opener = "";
    bool hasSession = true;                          ///< that logind knows
    std::vector<const char*> sessionTypes = {"x11"}; ///< without regard to Wayland's
    std::vector<const char*> startable = {};
};

struct AbilityCase {
    const char* reason;
    Desktop desktop;
    SystemAction action;
    std::vector<std::string> does = {}; ///< what is run and called, in order
    const char* missing = "";           ///< a part of why it can't be had
    const char* line = "";              ///< of the row, where it isn't the action's own
};

/// Decides from a desktop what an action does there, and does it to the tests' stand-ins.
class DesktopAbilities : public SystemFixture {
protected:
    using Case = AbilityCase;

    Effect effect(const Desktop& desktop, SystemAction action) {
        DesktopFacts facts{.desktops = {desktop.name},
                           .hasX11 = true,
                           .hasWayland = desktop.isWayland,
                           .folderOpener = desktop.opener,
                           .owned = {desktop.owned.begin(), desktop.owned.end()},
                           .startable = {desktop.startable.begin(), desktop.startable.end()},
                           .schemas = {"org.gnome.desktop.interface",
                                       "org.x.apps.portal",
                                       "org.gtk.gtk4.Settings.FileChooser",
                                       "org.gtk.Settings.FileChooser",
                                       "org.nemo.preferences"},
                           .logind = LogindFacts{}};
        facts.running.insert(desktop.running.begin(), desktop.running.end());
        facts.sessionTypes.insert(desktop.sessionTypes.begin(), desktop.sessionTypes.end());
        if (desktop.hasSession)
            facts.logind->session = "/session/c7";
        std::filesystem::remove_all(scratch.path("/bin"));
        scratch.folder("/bin");
        for (const auto* program : desktop.programs)
            install(program);
        // As the probe finds them, so that one that it doesn't look for fails here too.
        facts.programs = DesktopFinds::programs({scratch.path("/bin")});
        return effectOf(action,
                        {.doors = std::make_shared<const SystemDoors>(doors()),
                         .facts = std::move(facts),
                         .session = sessionBus(),
                         .system = sessionBus()});
    }

    void expect(const Case& each) {
        SCOPED_TRACE(each.reason);
        services.calls.clear();
        ran.clear();
        launcher.started.clear();
        const auto made = effect(each.desktop, each.action);
        EXPECT_EQ(made.ability.available, each.does.size() > 0) << made.ability.reason;
        EXPECT_THAT(made.ability.reason, testing::HasSubstr(each.missing));
        EXPECT_FALSE(made.ability.reason.ends_with('.'));
        EXPECT_THAT(made.manner.line.value_or(""), testing::HasSubstr(each.line));
        EXPECT_EQ(made.manner.line.has_value(), *each.line != 0);
        if (!made.perform)
            return;
        EXPECT_EQ(ended(made.perform), std::nullopt);
        EXPECT_THAT(did(), testing::ElementsAreArray(each.does));
    }

    /// What was run, started to stay, and called since the last case.
    std::vector<std::string> did() {
        auto all = ran;
        for (const auto& spec : launcher.started)
            all.push_back(commandLine(spec) + " &");
        // Programs that greet whoever comes onto the bus are none of ours.
        std::ranges::copy_if(services.calls, std::back_inserter(all), [](const auto& call) {
            return call.find("RegisterClient") == std::string::npos &&
                   call.find("Properties.GetAll") == std::string::npos;
        });
        return all;
    }

    /// False where the bus has such a service already: then it is no bus of the tests'.
    [[nodiscard]] bool own(const std::vector<const char*>& names) {
        return std::ranges::all_of(names, [this](const char* name) { return services.own(name); });
    }
};

} // namespace tessarine
