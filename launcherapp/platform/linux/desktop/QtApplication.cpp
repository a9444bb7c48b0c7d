#include "launcherapp/platform/linux/desktop/QtApplication.h"

#include "launcherapp/platform/linux/desktop/LastFrames.h"
#include "launcherapp/platform/linux/processes/OwnVariables.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QLocale>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <optional>
#include <string>

namespace tessarine {

namespace {

/// Sets LC_ALL to a UTF-8 locale for as long as Qt starts, when the user's locale is another or is
/// broken: Qt would say so on standard error and then do the same. Programs started later see the
/// user's own setting.
class Utf8LocaleWhileStarting {
public:
    Utf8LocaleWhileStarting() {
        std::setlocale(LC_ALL, "");
        if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0)
            return;
        changed_ = true;
        if (const char* value = std::getenv("LC_ALL"))
            before_ = value;
        ::setenv("LC_ALL", "C.UTF-8", 1);
    }

    ~Utf8LocaleWhileStarting() {
        if (!changed_)
            return;
        if (before_)
            ::setenv("LC_ALL", before_->c_str(), 1);
        else
            ::unsetenv("LC_ALL");
    }

    Utf8LocaleWhileStarting(const Utf8LocaleWhileStarting&) = delete;
    Utf8LocaleWhileStarting& operator=(const Utf8LocaleWhileStarting&) = delete;

private:
    bool changed_ = false;
    std::optional<std::string> before_;
};

constexpr auto platformVariable = "QT_QPA_PLATFORM";

/// Qt ends the process when the display it is told of doesn't answer, so it is asked first.
bool x11Answers() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

/// The same of a compositor; one that stands still costs `WaylandConnection::patience`.
bool waylandAnswers() {
    return WaylandConnection().answers();
}

/// Qt also ends the process when it lacks the plugin that it is told to take.
bool hasWaylandPlugin() {
    const auto folders = QCoreApplication::libraryPaths();
    return std::ranges::any_of(folders, [](const QString& folder) {
        return QFileInfo::exists(folder + QStringLiteral("/platforms/libqwayland-generic.so"));
    });
}

/// Qt's name for the display to be on; nothing without one that answers. What the user asked for is
/// taken where it is to be had.
std::optional<QByteArray> displayPlatform(const Environment& environment) {
    const auto wanted = qgetenv(platformVariable);
    const bool wantsWayland = wanted.startsWith("wayland");
    if ((wanted.isEmpty() || wantsWayland) && environment.hasWayland && waylandAnswers()) {
        if (hasWaylandPlugin())
            return "wayland";
        std::fputs("Tessarine: the package qt6-wayland is missing, so there are no windows of "
                   "Wayland\n",
                   stderr);
    }
    if (environment.hasX11 && x11Answers())
        return wanted.isEmpty() || wantsWayland ? QByteArray("xcb") : wanted;
    return std::nullopt;
}

/// Says it for this process alone: what it starts is to see the display that there is.
std::unique_ptr<QCoreApplication> madeOn(const QByteArray& platform, int& argc, char** argv) {
    const bool isSet = qEnvironmentVariableIsSet(platformVariable);
    const auto before = qgetenv(platformVariable);
    qputenv(platformVariable, platform);
    auto application = std::make_unique<QApplication>(argc, argv);
    isSet ? qputenv(platformVariable, before) : qunsetenv(platformVariable);
    return application;
}

/// Qt reads both with each window: that one may be left without a role of an ordinary window, and
/// that windows keep the place that they are told.
void allowLayers() {
    for (const auto* name :
         {"QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "QT_WAYLAND_DISABLE_FIXED_POSITIONS"}) {
        if (!qEnvironmentVariableIsSet(name))
            qputenv(name, QByteArray(ownVariableValue.data(), ownVariableValue.size()));
    }
}

std::unique_ptr<QCoreApplication> madeOnWayland(int& argc, char** argv) {
    allowLayers();
    auto application = madeOn("wayland", argc, argv);
    auto* const lastFrames = new LastFrames(*application);
    lastFrames->setParent(application.get());
    return application;
}

std::unique_ptr<QCoreApplication>
made(int& argc, char** argv, QtSurface surface, const Environment& environment) {
    if (surface == QtSurface::none)
        return std::make_unique<QCoreApplication>(argc, argv);
    const auto platform = displayPlatform(environment);
    if (platform == "wayland")
        return madeOnWayland(argc, argv);
    if (platform)
        return madeOn(*platform, argc, argv);
    if (surface == QtSurface::pictures)
        return madeOn("offscreen", argc, argv);
    return std::make_unique<QCoreApplication>(argc, argv);
}

/// They are of this program's own start: what it starts later would come forward in its name.
void forgetOwnActivation() {
    for (const auto* name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
        qunsetenv(name);
}

QString desktopFile() {
    return QStringLiteral("com.corvane.tessarine");
}

/// What the desktop knows the program by: its tray, screen readers and window switchers ask Qt.
void identify(const Environment& environment) {
    QCoreApplication::setApplicationName(QStringLiteral("tessarine"));
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Tessarine"));
    QGuiApplication::setDesktopFileName(desktopFile());
    // Qt itself goes by a translation of its own texts, of which none is shown here.
    if (readsRightToLeft(environment))
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

} // namespace

bool readsRightToLeft(const Environment& environment) {
    return QLocale(QString::fromStdString(environment.messagesLocale)).textDirection() ==
           Qt::RightToLeft;
}

std::unique_ptr<QCoreApplication>
makeQtApplication(int& argc, char** argv, QtSurface surface, const Environment& environment) {
    const Utf8LocaleWhileStarting locale;
    auto application = made(argc, argv, surface, environment);
    forgetOwnActivation();
    identify(environment);
    return application;
}

void setApplicationIcon() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    // The installed one follows the icon theme; run from its build folder it has its own.
    const QIcon own(QStringLiteral(":/tessarine/icons/%1.svg").arg(desktopFile()));
    QGuiApplication::setWindowIcon(QIcon::fromTheme(desktopFile(), own));
}

} // namespace tessarine
