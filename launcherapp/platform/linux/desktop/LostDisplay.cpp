#include "launcherapp/platform/linux/desktop/LostDisplay.h"

#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <linux/close_range.h>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

using namespace std::chrono_literals;

/// Tells the new program that it is one that lost its display, and when that happened.
constexpr auto variable = "TESSARINE_AWAITS_DISPLAY";

/// A compositor that crashed and is started again by its session is back in seconds; whoever logs
/// in anew has another copy started by the session.
constexpr auto patience = 60s;
constexpr auto pause = 250ms;

/// For the main thread to get to it and to save; it mostly takes some milliseconds.
constexpr auto savePatience = 5s;

/// Deaths further apart have nothing to do with each other.
constexpr auto deathsCount = 60s;

struct LastMoments {
    char** argv = nullptr;
    std::function<void(const std::string&)> save;
    QtMessageHandler before = nullptr; ///< whom the messages go to in the end
};

/// Qt calls a bare function, so what it needs stands here.
LastMoments lastMoments;

/// As the program before this one told it.
std::string earlierDeaths;

void startAnew(char** argv, const std::string& deaths) {
    ::setenv(variable, deaths.c_str(), 1);
    ::close_range(STDERR_FILENO + 1, std::numeric_limits<unsigned>::max(), CLOSE_RANGE_CLOEXEC);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::execv("/proc/self/exe", argv);
}

void saveAndStartAnew(const std::string& reason) {
    const auto save = std::exchange(lastMoments.save, nullptr);
    if (!save)
        return;
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    const auto deaths = LostDisplay::deaths(earlierDeaths, now);
    save("the display is gone (" + reason + "): " +
         (deaths ? "starting anew, to wait for it"
                 : "ending, as that happened too often within a minute"));
    if (deaths)
        startAnew(lastMoments.argv, *deaths);
    std::_Exit(1); // what Qt would do in a moment
}

void hear(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (lastMoments.before)
        lastMoments.before(type, context, message);
    if (!message.startsWith(QLatin1String("The Wayland connection ")))
        return;
    auto* const application = QCoreApplication::instance();
    if (QThread::currentThread() == application->thread())
        return saveAndStartAnew(message.toStdString());
    // Qt's thread for the connection says it, and ends the process as soon as this returns.
    QMetaObject::invokeMethod(
        application,
        [reason = message.toStdString()] { saveAndStartAnew(reason); },
        Qt::QueuedConnection);
    std::this_thread::sleep_for(savePatience);
}

} // namespace

LostDisplay::LostDisplay(char** argv, std::function<void(const std::string&)> save) {
    lastMoments = {.argv = argv, .save = std::move(save), .before = nullptr};
    lastMoments.before = qInstallMessageHandler(hear);
}

LostDisplay::~LostDisplay() {
    qInstallMessageHandler(lastMoments.before);
    lastMoments = {};
}

bool LostDisplay::awaitReturn() {
    const char* const deaths = std::getenv(variable);
    if (!deaths)
        return true;
    earlierDeaths = deaths;
    ::unsetenv(variable);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!WaylandConnection().answers()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

std::optional<std::string> LostDisplay::deaths(std::string_view earlier, std::chrono::seconds now) {
    std::istringstream times{std::string(earlier)};
    std::string result;
    std::size_t count = 1;
    for (std::int64_t time = 0; times >> time;) {
        if (now - std::chrono::seconds(time) >= deathsCount)
            continue;
        result += std::to_string(time) + ' ';
        ++count;
    }
    if (count > mostDeaths)
        return std::nullopt;
    return result + std::to_string(now.count());
}

} // namespace tessarine
