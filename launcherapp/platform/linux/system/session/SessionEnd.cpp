#include "launcherapp/platform/linux/system/session/SessionEnd.h"

#include "launcherapp/platform/linux/system/BusTargets.h"
#include "launcherapp/platform/linux/system/session/LogindPower.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// A method of a session manager; without one it has no such.
struct Request {
    const char* method = nullptr;
    QVariantList values = {};
};

struct SessionManager {
    BusTarget target;
    std::vector<DesktopKind> desktops;      ///< whose it is; empty: wherever its name is owned
    std::optional<DesktopKind> startableOn; ///< where the bus may start it
    Farewell farewell = Farewell::none;     ///< of the three that follow
    Request restart;
    Request shutDown;
    Request logOut;
    Request logOutAtOnce;
};

constexpr BusTarget gnomes{
    "org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager"};

/// Logout's first value: with a question, or without.
constexpr unsigned normally = 0;
constexpr unsigned unconfirmed = 1;

/// GNOME's name is taken by the session managers of Cinnamon and MATE too, and MATE's can't
/// restart. Those that know several names have the newest first.
std::vector<SessionManager> sessionManagers() {
    using enum DesktopKind;
    return {
        {.target = gnomes,
         .desktops = {gnome, budgie, pantheon, cinnamon},
         .farewell = Farewell::userAndApps,
         .restart = {"Reboot"},
         .shutDown = {"Shutdown"},
         .logOut = {"Logout", {normally}},
         .logOutAtOnce = {"Logout", {unconfirmed}}},
        {.target = gnomes,
         .desktops = {mate},
         .farewell = Farewell::userAndApps,
         .shutDown = {"Shutdown"},
         .logOut = {"Logout", {normally}},
         .logOutAtOnce = {"Logout", {unconfirmed}}},
        {.target = gnomes, .desktops = {other}, .logOutAtOnce = {"Logout", {unconfirmed}}},
        {.target = {"org.kde.Shutdown", "/Shutdown", "org.kde.Shutdown"},
         .startableOn = kde,
         .farewell = Farewell::apps,
         .restart = {"logoutAndReboot"},
         .shutDown = {"logoutAndShutdown"},
         .logOut = {"logout"},
         .logOutAtOnce = {"logout"}},
        // Plasma 5. No question; 0 logs out, 1 restarts, 2 shuts down; as usual.
        {.target = {"org.kde.ksmserver", "/KSMServer", "org.kde.KSMServerInterface"},
         .farewell = Farewell::apps,
         .restart = {"logout", {0, 1, 0}},
         .shutDown = {"logout", {0, 2, 0}},
         .logOut = {"logout", {0, 0, 0}},
         .logOutAtOnce = {"logout", {0, 0, 0}}},
        // The session may be saved; logging out has no dialog.
        {.target = {"org.xfce.SessionManager",
                    "/org/xfce/SessionManager",
                    "org.xfce.Session.Manager"},
         .farewell = Farewell::apps,
         .restart = {"Restart", {true}},
         .shutDown = {"Shutdown", {true}},
         .logOut = {"Logout", {false, true}},
         .logOutAtOnce = {"Logout", {false, true}}},
        // It ends its programs without asking them.
        {.target = {"org.lxqt.session", "/LXQtSession", "org.lxqt.session"},
         .logOutAtOnce = {"logout"}},
    };
}

bool isHere(const DesktopFacts& facts, const SessionManager& manager) {
    if (!manager.desktops.empty() && std::ranges::count(manager.desktops, facts.kind()) == 0)
        return false;
    return facts.owns(manager.target.service) ||
           (manager.startableOn == facts.kind() && facts.answers(manager.target.service));
}

struct Asked {
    std::vector<BusRequest> calls;
    Farewell farewell = Farewell::none;
};

/// Those that are here and know the request.
Asked askManagers(const EffectContext& context, Request SessionManager::*request, Seconds timeout) {
    Asked asked;
    for (const auto& manager : sessionManagers()) {
        const auto& [method, values] = manager.*request;
        if (!context.session || !method || !isHere(context.facts, manager))
            continue;
        asked.calls.push_back({*context.session, manager.target.call(method, values), timeout});
        asked.farewell = manager.farewell;
    }
    return asked;
}

/// What the managers refuse is done in no other way: that would not ask.
Effect asking(const EffectContext& context, Request SessionManager::*request, Effect immediate) {
    auto asked = askManagers(context, request, context.doors->patience.user);
    if (asked.calls.empty())
        return immediate;
    auto effect =
        Effect::by(EffectWays::forgivingCancel(EffectWays::firstOf(std::move(asked.calls), {})));
    effect.manner.farewell = asked.farewell;
    return effect;
}

} // namespace

Effect SessionEnd::askingRestart(const EffectContext& context) {
    if (auto why = LogindPower::whyNoRestart(context.facts))
        return Effect::missing(*std::move(why));
    return asking(context, &SessionManager::restart, LogindPower::restart(context));
}

Effect SessionEnd::askingShutDown(const EffectContext& context) {
    if (auto why = LogindPower::whyNoPowerOff(context.facts))
        return Effect::missing(*std::move(why));
    return asking(context, &SessionManager::shutDown, LogindPower::powerOff(context));
}

Effect SessionEnd::askingLogOut(const EffectContext& context) {
    return asking(context, &SessionManager::logOut, logOut(context));
}

Effect SessionEnd::logOut(const EffectContext& context) {
    auto calls =
        askManagers(context, &SessionManager::logOutAtOnce, context.doors->patience.act).calls;
    if (auto call = BusTargets::ownSession(context, "Terminate"); call && calls.empty())
        calls.push_back(*std::move(call));
    return Effect::byFirst(
        std::move(calls), {}, "neither a session manager nor logind is there to end the session");
}

} // namespace tessarine
