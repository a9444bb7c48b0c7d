#include "launcherapp/platform/linux/surroundings/DesktopLook.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/input/X11InputDevices.h"
#include "launcherapp/platform/linux/portal/DesktopPortal.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/HyprlandIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/LocalSocket.h"
#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScripts.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QGuiApplication>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr auto portalInterfaces = std::to_array<const char*>({"GlobalShortcuts", "Settings"});

/// The variable outlives the sway that set it.
bool isSwayThere() {
    const char* const path = std::getenv("SWAYSOCK");
    return path && LocalSocket(path).isOpen();
}

bool isX11Compositors() {
    const X11Connection display;
    return display.answers() && isWaylandsDisplay(display.xcb());
}

bool isQtOnX11() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) &&
           QGuiApplication::platformName() == QLatin1String("xcb");
}

bool isThere(const std::string& path) {
    std::error_code failed;
    return std::filesystem::exists(path, failed);
}

/// In the order of sway(1).
DesktopSurroundings withSwayConfig(DesktopSurroundings found, const Environment& environment) {
    const std::array paths{environment.home + "/.sway/config",
                           environment.configHome + "/sway/config",
                           environment.home + "/.i3/config",
                           environment.configHome + "/i3/config"};
    const auto own = std::ranges::find_if(paths, isThere);
    found.hasSwayConfig = own != paths.end();
    found.swayConfig = Paths::shown(found.hasSwayConfig ? *own : paths[1], environment.home);
    return found;
}

bool isOnPath(const Environment& environment, const std::string& program) {
    return std::ranges::any_of(environment.programDirs, [&](const std::string& folder) {
        return isThere(folder + '/' + program);
    });
}

QDBusMessage namesCall() {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("ListNames"));
}

/// A portal has an interface where the desktop has given it what stands behind it.
QDBusMessage versionCall(const char* interface) {
    auto message = QDBusMessage::createMethodCall(DesktopPortal::service(),
                                                  DesktopPortal::path(),
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("Get"));
    message << QStringLiteral("org.freedesktop.portal.") + QLatin1String(interface)
            << QStringLiteral("version");
    return message;
}

/// Nothing but what came in time.
QDBusMessage answerTo(QDBusPendingCall& call) {
    call.waitForFinished();
    return call.reply();
}

DesktopSurroundings withCompositor(DesktopSurroundings found) {
    const WaylandConnection compositor;
    // The variable may be left of another session, or the program kept from what it names.
    if (!compositor.display() && found.hasX11)
        found.hasWayland = false;
    if (!compositor.answers())
        return found;
    for (const auto& global : compositor.registry().globals())
        found.globals.insert(global.interface);
    if (DesktopTable::isKWin(found))
        found.hasKWinScripts =
            KWinScripts::areTaken(KWinScripts::Clock::now() + CompositorIpc::patience);
    return found;
}

} // namespace

DesktopSurroundings DesktopLook::display(const Environment& environment) {
    DesktopSurroundings found{.hasX11 = environment.hasX11,
                              .hasWayland = environment.hasWayland,
                              .hasSessionBus = sessionBusAddress().has_value(),
                              .isShownOnX11 = isQtOnX11(),
                              .hasSway = isSwayThere(),
                              .hasHyprland = HyprlandIpc::runningFolder().has_value(),
                              .lacksGapplication = !isOnPath(environment, "gapplication"),
                              .desktops = environment.desktops};
    found = withSwayConfig(std::move(found), environment);
    if (found.hasWayland)
        found = withCompositor(std::move(found));
    // Beside a compositor it is that one's in any case, and may have to be started first.
    if (found.hasX11 && !found.hasWayland)
        found.isX11Compositors = isX11Compositors();
    return found;
}

DesktopSurroundings DesktopLook::withBus(DesktopSurroundings surroundings,
                                         std::chrono::milliseconds patience) {
    const auto bus = sessionBus();
    surroundings.hasSessionBus = bus.has_value();
    if (!bus)
        return surroundings;
    const auto limit = static_cast<int>(patience.count());
    // All are asked before the first answer is waited for, so that the limit is one for all.
    auto names = bus->asyncCall(namesCall(), limit);
    std::vector<std::pair<const char*, QDBusPendingCall>> versions;
    for (const auto* interface : portalInterfaces)
        versions.emplace_back(interface, bus->asyncCall(versionCall(interface), limit));
    const auto owned = answerTo(names);
    for (const auto& name : owned.arguments().value(0).toStringList())
        surroundings.busNames.insert(name.toStdString());
    for (auto& [interface, call] : versions) {
        const auto answer = answerTo(call);
        if (answer.type() == QDBusMessage::ReplyMessage)
            surroundings.portals.insert(interface);
    }
    return surroundings;
}

} // namespace tessarine
