// What a user of a Wayland compositor feels of the panel: how long after the call that a key
// binding makes it is there. Run as PanelToggleBench PROGRAM, on a compositor with a layer shell. A
// window of this program has the keyboard and loses it when the panel's first frame is committed,
// since the compositor gives the panel the keyboard with it; the clock runs from just before the
// call is sent. Bar: 12 ms in the median.

#include "benchmarks/StolenTime.h"
#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/panel/wayland/WaylandSeat.h"
#include "tests/wayland/TestKeyboard.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>
#include <QVariantMap>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <vector>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int rounds = 200;
constexpr double medianBar = 12; ///< milliseconds
constexpr auto rest = 30ms;      ///< after each step, so that nothing of it is left to the next

QString busName() {
    return QStringLiteral("com.corvane.tessarine");
}

void toggle() {
    auto call = QDBusMessage::createMethodCall(busName(),
                                               QStringLiteral("/com/corvane/tessarine"),
                                               QStringLiteral("org.freedesktop.Application"),
                                               QStringLiteral("ActivateAction"));
    call << QStringLiteral("toggle") << QVariantList() << QVariantMap();
    QDBusConnection::sessionBus().send(call);
}

bool runUntil(const QtWayland& connection,
              const std::function<bool()>& holds,
              Clock::duration limit) {
    const auto end = Clock::now() + limit;
    while (!holds()) {
        if (Clock::now() >= end)
            return false;
        connection.waitUntil(holds, 1ms);
        QCoreApplication::processEvents();
    }
    return true;
}

bool run(const QString& program) {
    const TestKeyboard keyboard;
    QtWayland connection;
    const WaylandSeat seat(connection);
    QWidget front;
    front.show();
    const auto hasKeyboard = [&] { return seat.keyboardFocus() != nullptr; };
    const auto isPanelUp = [&] { return !hasKeyboard(); };
    const auto never = [] { return false; };

    QProcess subject;
    subject.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    subject.start(program, {});
    const auto isThere = [] {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(busName()).value();
    };
    if (!runUntil(connection, isThere, 10s) || !runUntil(connection, hasKeyboard, 10s)) {
        std::puts("NOT MEASURED: the program or the window before it never came");
        return false;
    }
    runUntil(connection, never, 2s); // what it does after its start

    std::vector<double> times;
    StolenTime stolen;
    for (int i = 0; i < rounds; ++i) {
        stolen.wasTaken();
        const auto called = Clock::now();
        toggle();
        if (!runUntil(connection, isPanelUp, 2s)) {
            std::puts("the panel never came");
            return false;
        }
        const std::chrono::duration<double, std::milli> time = Clock::now() - called;
        // What the host of a virtual machine took away says nothing of the program.
        if (i > 0 && !stolen.wasTaken())
            times.push_back(time.count());
        runUntil(connection, never, rest);
        toggle();
        if (!runUntil(connection, hasKeyboard, 2s)) {
            std::puts("the keyboard never came back");
            return false;
        }
        runUntil(connection, never, rest);
    }
    subject.terminate();
    subject.waitForFinished();
    if (times.empty())
        return false;
    std::ranges::sort(times);
    const double median = times[times.size() / 2];
    std::printf("call to first committed frame: median %.2f ms, worst %.2f ms over %zu; of the bar "
                "%.2f\n",
                median,
                times.back(),
                times.size(),
                median / medianBar);
    return median <= medianBar;
}

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (!tessarine::QtWayland::isThere() || argc < 2) {
        std::puts("NOT MEASURED: there is no Wayland display, or no program was named");
        return 2;
    }
    return tessarine::run(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
