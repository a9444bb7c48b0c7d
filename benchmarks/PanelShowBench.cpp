// What a warm show takes from the call until the panel is drawn, as the program itself counts it on
// every use, to more digits than its log has. Run on a display, whose round trips are part of it.
// Bar: 2 ms in the median on X11; on Wayland 6 ms until the compositor has the first frame. An
// empty window that is shown and drawn goes before it, as the limit.

#include "benchmarks/StolenTime.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/operations/StageMarks.h"
#include "launcherapp/operations/Updater.h"
#include "launcherapp/panel/PanelController.h"
#include "launcherapp/panel/view/LauncherPanel.h"
#include "launcherapp/panel/view/QueryField.h"
#include "launcherapp/platform/linux/desktop/NoWindowList.h"
#include "launcherapp/platform/linux/desktop/QtApplication.h"
#include "launcherapp/platform/linux/desktop/X11WindowList.h"
#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/processes/ProcessEnvironment.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/fakes/FakeChords.h"
#include "tests/panel/FakePanelServices.h"

#include <QApplication>
#include <QLineEdit>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int rounds = 200;

/// Milliseconds.
double medianBar() {
    return QtWayland::isThere() ? 6 : 2;
}

std::unique_ptr<WindowList> windowList() {
    if (QtWayland::isThere())
        return std::make_unique<NoWindowList>("the bench asks for none");
    return std::make_unique<X11WindowList>();
}

constexpr auto rest = 20ms; ///< after each step, so that nothing of it is left to the next

/// The panel over a real window, everything else in memory.
struct Panel : FakePanelServices {
    QtMainQueue queue;
    LauncherPanel panel{view()};
    QtPanelWindow window{panel, panel.field(), makePanelSurface()};
    std::unique_ptr<WindowList> windows = windowList();
    FakeChords chords{services.diagnostics};
    StageMarks stages;
    Updater updater;
    PanelController controller{{.queue = queue,
                                .diagnostics = services.diagnostics,
                                .prefs = services.prefs,
                                .model = model,
                                .window = window,
                                .windows = *windows,
                                .hotkey = chords.hotkey,
                                .stages = stages,
                                .updater = updater}};
};

void runFor(Clock::duration time) {
    const auto end = Clock::now() + time;
    while (Clock::now() < end)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
}

/// Until it holds; false after two seconds.
template <typename Condition> bool runUntil(Condition holds) {
    const auto end = Clock::now() + 2s;
    while (!holds()) {
        if (Clock::now() >= end)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    return true;
}

/// As the program recorded it; nothing when the panel was never drawn.
std::optional<double> showOnce(Panel& panel) {
    constexpr double none = -1; // the record is a list that never tells how many it has seen
    auto& diagnostics = panel.services.diagnostics;
    diagnostics.recordShow(none);
    panel.controller.show();
    if (!runUntil([&] { return diagnostics.showTimes().back() != none; }))
        return std::nullopt;
    const double time = diagnostics.showTimes().back();
    runFor(rest);
    panel.controller.hide();
    runFor(rest);
    return time;
}

/// The least that can be shown in the same kind of window.
std::optional<double> showLeast(QtPanelWindow& window) {
    bool isDrawn = false;
    window.setEvents({.painted = [&] { isDrawn = true; }});
    const auto started = Clock::now();
    window.show();
    if (!runUntil([&] { return isDrawn; }))
        return std::nullopt;
    const std::chrono::duration<double, std::milli> time = Clock::now() - started;
    runFor(rest);
    window.hide();
    runFor(rest);
    return time.count();
}

/// The median of so many shows after one that warms up; nothing when one never came.
template <typename Show> std::optional<double> measure(const char* what, Show show) {
    show();
    std::vector<double> times;
    StolenTime stolen;
    for (int i = 0; i < rounds; ++i) {
        stolen.wasTaken();
        const auto time = show();
        if (!time) {
            std::printf("%s: the panel was never drawn\n", what);
            return std::nullopt;
        }
        // What the host of a virtual machine took away says nothing of the program.
        if (!stolen.wasTaken())
            times.push_back(*time);
    }
    const auto median = Diagnostics::median(times);
    if (median)
        std::printf("%s: median %.2f ms, worst %.2f ms over %zu\n",
                    what,
                    *median,
                    std::ranges::max(times),
                    times.size());
    return median;
}

bool run() {
    {
        QLineEdit field;
        QtPanelWindow window(field, field, makePanelSurface());
        window.setFrame({.x = 280, .y = 150, .width = 720, .height = 97});
        measure("an empty field in such a window", [&] { return showLeast(window); });
    }
    Panel panel;
    panel.controller.start(); // makes the warm pass
    runFor(rest);
    const auto median = measure("inside show, warm", [&] { return showOnce(panel); });
    if (median)
        std::printf("of the bar %.2f\n", *median / medianBar());
    return median && *median <= medianBar();
}

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    const auto application = tessarine::makeQtApplication(
        argc, argv, tessarine::QtSurface::windows, tessarine::processEnvironment());
    if (!qobject_cast<QApplication*>(application.get())) {
        std::puts("NOT MEASURED: there is no display");
        return 2;
    }
    return tessarine::run() ? 0 : 1;
}
