#include "launcherapp/platform/linux/system/files/FileManagerEffects.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/system/files/FileManagers.h"

#include <fmt/format.h>

#include <QStringList>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// A yes or no that a program reads and writes: `read` prints "true" or "false".
struct Switch {
    std::vector<std::string> read;
    std::vector<std::string> write; ///< what is to be written comes behind it
    bool mayBeUnset = false;        ///< then it can't be read, and counts as "false"
};

struct SettingsKey {
    HiddenFilesSetting setting;
    std::string_view schema;
    std::string_view key;
};

/// Files reads the key of the GTK that it is made with: 4 from its version 43 on, before that 3.
constexpr auto gsettingsKeys = std::to_array<SettingsKey>({
    {HiddenFilesSetting::gtk, "org.gtk.gtk4.Settings.FileChooser", "show-hidden"},
    {HiddenFilesSetting::gtk, "org.gtk.Settings.FileChooser", "show-hidden"},
    {HiddenFilesSetting::nemo, "org.nemo.preferences", "show-hidden-files"},
    {HiddenFilesSetting::caja, "org.mate.caja.preferences", "show-hidden-files"},
});

std::vector<Switch> switches(const DesktopFacts& facts, HiddenFilesSetting setting) {
    std::vector<Switch> found;
    // Thunar keeps what it showed last, and takes it up in all its windows.
    if (setting == HiddenFilesSetting::thunar && facts.hasProgram("xfconf-query")) {
        const std::vector<std::string> property{
            facts.programs.at("xfconf-query"), "-c", "thunar", "-p", "/last-show-hidden"};
        auto write = property;
        for (const auto* option : {"-n", "-t", "bool", "-s"})
            write.emplace_back(option);
        found.push_back({.read = property, .write = std::move(write), .mayBeUnset = true});
    }
    for (const auto& [of, schema, key] : gsettingsKeys) {
        if (of != setting || !facts.hasProgram("gsettings") ||
            !facts.schemas.contains(std::string(schema)))
            continue;
        const auto& program = facts.programs.at("gsettings");
        found.push_back({.read = {program, "get", std::string(schema), std::string(key)},
                         .write = {program, "set", std::string(schema), std::string(key)}});
    }
    return found;
}

/// All become the opposite of what the first says.
EffectWay toggle(const EffectWays::Doors& doors, std::vector<Switch> found) {
    return [doors, found = std::move(found)](EffectDone done) {
        EffectWays::readProgram(
            doors,
            found.front().read,
            doors->patience.question,
            [doors, found, done = std::move(done)](const EffectWays::ProgramAnswer& answer) {
                if (answer.problem && !found.front().mayBeUnset)
                    return done(answer.problem);
                const auto* wanted = !answer.problem && answer.output == "true" ? "false" : "true";
                std::vector<EffectWay> writes;
                for (const auto& each : found) {
                    auto arguments = each.write;
                    arguments.emplace_back(wanted);
                    writes.push_back(
                        EffectWays::program(doors, std::move(arguments), doors->patience.question));
                }
                EffectWays::allOf(std::move(writes))(done);
            });
    };
}

std::string whyNoSetting(const KnownFileManager& manager) {
    if (manager.hidden == HiddenFilesSetting::none)
        return fmt::format("{} lets no other program change that", manager.name);
    if (manager.hidden == HiddenFilesSetting::thunar)
        return "xfconf-query, which sets it, is not installed";
    return fmt::format("the settings of {} can't be reached with gsettings", manager.name);
}

std::string whyUnknown(const DesktopFacts& facts) {
    if (facts.folderOpener.empty())
        return "no program is set to open folders";
    return fmt::format("it is not known how {} does it", facts.folderOpener);
}

/// Each window's process has a name of its own on the bus, with its number (KDE's services).
constexpr std::string_view dolphinNames = "org.kde.dolphin-";

EffectWay quitOnBus(const EffectWays::Doors& doors, const QDBusConnection& bus) {
    return [doors, bus](EffectDone done) {
        constexpr BusTarget theBus{
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};
        askBus(bus,
               theBus.call("ListNames"),
               doors->patience.question,
               [doors, bus, done = std::move(done)](const QDBusMessage& reply) {
                   std::vector<EffectWay> quits;
                   for (const auto& name : reply.arguments().value(0).toStringList()) {
                       const auto service = name.toStdString();
                       if (!service.starts_with(dolphinNames))
                           continue;
                       const BusTarget window{service.c_str(), "/MainApplication", ""};
                       quits.push_back(
                           EffectWays::call(bus, window.call("quit"), doors->patience.question));
                   }
                   if (quits.empty())
                       done(std::nullopt);
                   else
                       EffectWays::allOf(std::move(quits))(done);
               });
    };
}

} // namespace

Effect FileManagerEffects::toggleHiddenFiles(const EffectContext& context) {
    const auto* const manager = FileManagers::byDesktopID(context.facts.folderOpener);
    if (!manager)
        return Effect::missing(whyUnknown(context.facts));
    auto found = switches(context.facts, manager->hidden);
    return found.empty() ? Effect::missing(whyNoSetting(*manager))
                         : Effect::by(toggle(context.doors, std::move(found)));
}

Effect FileManagerEffects::restart(const EffectContext& context) {
    const auto* const manager = FileManagers::byDesktopID(context.facts.folderOpener);
    if (!manager)
        return Effect::missing(whyUnknown(context.facts));
    const auto program = std::string(manager->program);
    if (manager->quit == QuitWay::none || (manager->quit == QuitWay::bus && !context.session))
        return Effect::missing(
            fmt::format("{} can't be told to end by another program", manager->name));
    if (!context.facts.hasProgram(program))
        return Effect::missing(program + ", which would start it again, is not installed");
    const auto& path = context.facts.programs.at(program);
    const auto& doors = context.doors;
    auto quit = manager->quit == QuitWay::bus
                    ? quitOnBus(doors, *context.session)
                    : EffectWays::program(doors, {path, "-q"}, doors->patience.act);
    // One that is on its way out would still take the new window, and take it along.
    return Effect::by(EffectWays::allOf(
        {std::move(quit),
         EffectWays::after(doors, doors->patience.leaving, EffectWays::detached(doors, {path}))}));
}

} // namespace tessarine
