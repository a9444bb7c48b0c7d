#include "launcherapp/platform/linux/wayland/windows/kwin/KWinProgram.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <chrono>

namespace tessarine {

namespace {

using Json = nlohmann::json;

/// How long changes are gathered that come together, as a window's opening and its focus do: less
/// than a picture of the screen lasts, so nobody sees it.
constexpr std::chrono::milliseconds pause{5};

/// KWin 6 says window where KWin 5 said client, and has outputs where it had numbers of screens.
constexpr std::string_view program = R"js(
(function (task) {
    "use strict";
    var isNew = typeof workspace.windowList === "function";

    function all() {
        return isNew ? workspace.windowList() : workspace.clientList();
    }

    function key(w) {
        return String(w.internalId).replace(/[{}-]/g, "").substr(0, 16);
    }

    // Neither a desktop, a bar or a notice, nor what is in no task bar and stays where it is, as
    // other launchers' panels do, and this one's.
    function isListed(w) {
        return !w.deleted && w.managed !== false && !w.specialWindow && !w.popupWindow &&
            (!w.skipTaskbar || w.moveable);
    }

    function isShown(w) {
        if (w.minimized || w.hidden)
            return false;
        if (w.onAllDesktops)
            return true;
        return isNew ? w.desktops.indexOf(workspace.currentDesktop) >= 0
                     : w.desktop === workspace.currentDesktop;
    }

    var lastActive = null;

    function active(windows) {
        var now = isNew ? workspace.activeWindow : workspace.activeClient;
        if (!now || now.desktopWindow) {
            lastActive = null;
        } else if (isListed(now)) {
            lastActive = key(now);
        } else {
            // What has the keyboard gives it back to the window that had it before, else to the
            // highest one.
            var candidates = windows.filter(isShown);
            candidates.sort(function (a, b) { return b.stackingOrder - a.stackingOrder; });
            var before = candidates.filter(function (w) { return key(w) === lastActive; });
            lastActive = before.length > 0 ? lastActive
                       : candidates.length > 0 ? key(candidates[0]) : null;
        }
        return lastActive;
    }

    function rectangle(r) {
        return {x: r.x, y: r.y, width: r.width, height: r.height};
    }

    function isMaximised(w) {
        if (typeof w.maximizeMode === "number")
            return w.maximizeMode === 3;
        // Older versions don't tell, so one that fills the same place counts as maximised.
        var area = workspace.clientArea(KWin.MaximizeArea, w), frame = w.frameGeometry;
        return frame.x === area.x && frame.y === area.y && frame.width === area.width &&
            frame.height === area.height;
    }

    function told(w) {
        return {
            window: key(w), process: w.pid, application: String(w.desktopFileName),
            "class": String(w.resourceClass), instance: String(w.resourceName),
            frame: rectangle(w.frameGeometry), isOrdinary: !w.skipTaskbar, isHidden: w.minimized,
            isFullScreen: w.fullScreen || isMaximised(w), isTiled: !!w.tile,
            x11Window: w.windowId || 0
        };
    }

    function screen(which, name) {
        return {
            name: name, isMain: which === workspace.activeScreen,
            frame: rectangle(workspace.clientArea(KWin.ScreenArea, which, workspace.currentDesktop)),
            workArea: rectangle(workspace.clientArea(KWin.MaximizeArea, which,
                                                     workspace.currentDesktop))
        };
    }

    function screens() {
        var list = [];
        if (isNew) {
            for (var i = 0; i < workspace.screens.length; ++i)
                list.push(screen(workspace.screens[i], workspace.screens[i].name));
        } else {
            for (var number = 0; number < workspace.numScreens; ++number)
                list.push(screen(number, "screen " + (number + 1)));
        }
        return list;
    }

    // What went wrong since it was told last.
    var problems = [];

    function attempt(step) {
        try {
            return step();
        } catch (problem) {
            problems.push(String(problem));
            return undefined;
        }
    }

    function scene() {
        var windows = all().filter(isListed);
        return {windows: windows.map(told), screens: screens(), active: active(windows)};
    }

    function tell() {
        var message = {scene: attempt(scene)};
        if (problems.length > 0)
            message.problem = problems.join("; ");
        problems = [];
        callDBus(task.listener, task.path, task["interface"], task.member, task.script,
                 JSON.stringify(message));
    }

    var verbs = {
        activate: function (w) {
            if (isNew)
                workspace.activeWindow = w;
            else
                workspace.activeClient = w;
        },
        unhide: function (w) { w.minimized = false; },
        makeOrdinary: function (w) {
            w.minimized = false;
            if (w.fullScreen)
                w.fullScreen = false;
            if (w.shade)
                w.shade = false;
            if (w.tile)
                w.tile = null;
            w.setMaximize(false, false);
        },
        place: function (w, order) { w.frameGeometry = rectangle(order); },
        close: function (w) { w.closeWindow(); }
    };

    function carryOut(order) {
        all().filter(isListed).forEach(function (w) {
            if (key(w) === order.window)
                attempt(function () { verbs[order["do"]](w, order); });
        });
    }

    // Changes that come together are told together.
    var pause = null;

    function tellSoon() {
        if (!pause.active)
            pause.start();
    }

    function connect(object, signals) {
        signals.forEach(function (name) {
            if (object[name] && object[name].connect)
                object[name].connect(tellSoon);
        });
    }

    function followWindow(w) {
        connect(w, ["minimizedChanged", "desktopFileNameChanged", "windowClassChanged",
                    "skipTaskbarChanged"]);
    }

    function follow() {
        pause = new QTimer();
        pause.interval = task.pauseMilliseconds;
        pause.singleShot = true;
        pause.timeout.connect(tell);
        connect(workspace, isNew
            ? ["windowAdded", "windowRemoved", "windowActivated", "screensChanged"]
            : ["clientAdded", "clientRemoved", "clientActivated", "numberScreensChanged"]);
        (isNew ? workspace.windowAdded : workspace.clientAdded).connect(followWindow);
        all().forEach(followWindow);
    }

    attempt(function () { task.orders.forEach(carryOut); });
    if (task.follows)
        attempt(follow);
    tell();
})js";

} // namespace

std::string KWinProgram::text(const Task& task) {
    const Json argument{{"listener", task.listener},
                        {"path", path},
                        {"interface", interface},
                        {"member", member},
                        {"script", task.script},
                        {"orders", Json::parse(task.orders)},
                        {"follows", task.follows},
                        {"pauseMilliseconds", pause.count()}};
    // JSON is JavaScript; what is no UTF-8 is nobody's name.
    return fmt::format(
        "{})({});\n", program, argument.dump(-1, ' ', true, Json::error_handler_t::replace));
}

} // namespace tessarine
