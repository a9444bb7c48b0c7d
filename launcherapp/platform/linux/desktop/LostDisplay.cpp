#include "launcherapp/platform/linux/desktop/LostDisplay.h"

#include "launcherapp/platform/linux/processes/OwnVariables.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <linux/close_range.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

using namespace std::chrono_literals;

/// Tells the new program that it is one that lost its display.
constexpr auto variable = "TESSARINE_AWAITS_DISPLAY";

/// A compositor that crashed and is started again by its session is back in seconds; whoever logs
/// in anew has another copy started by the session.
constexpr auto patience = 60s;
constexpr auto pause = 250ms;

/// For the main thread to get to it and to save; it mostly takes some milliseconds.
constexpr auto savePatience = 5s;

struct LastMoments {
    char** argv = nullptr;
    std::function<void()> save;
    QtMessageHandler before = nullptr; ///< whom the messages go to in the end
};

/// Qt calls a bare function, so what it needs stands here.
LastMoments lastMoments;

void startAnew(char** argv) {
    ::setenv(variable, std::string(ownVariableValue).c_str(), 1);
    ::close_range(STDERR_FILENO + 1, std::numeric_limits<unsigned>::max(), CLOSE_RANGE_CLOEXEC);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::execv("/proc/self/exe", argv);
}

void saveAndStartAnew() {
    if (const auto save = std::exchange(lastMoments.save, nullptr)) {
        save();
        startAnew(lastMoments.argv);
    }
}

void hear(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    lastMoments.before(type, context, message);
    if (!message.startsWith(QLatin1String("The Wayland connection ")))
        return;
    auto* const application = QCoreApplication::instance();
    if (QThread::currentThread() == application->thread())
        return saveAndStartAnew();
    // Qt's thread for the connection says it, and ends the process as soon as this returns.
    QMetaObject::invokeMethod(application, saveAndStartAnew, Qt::QueuedConnection);
    std::this_thread::sleep_for(savePatience);
}

} // namespace

LostDisplay::LostDisplay(char** argv, std::function<void()> save) {
    lastMoments = {.argv = argv, .save = std::move(save), .before = nullptr};
    lastMoments.before = qInstallMessageHandler(hear);
}

LostDisplay::~LostDisplay() {
    qInstallMessageHandler(lastMoments.before);
    lastMoments = {};
}

bool LostDisplay::awaitReturn() {
    if (!std::getenv(variable))
        return true;
    ::unsetenv(variable);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!WaylandConnection().answers()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

} // namespace tessarine
