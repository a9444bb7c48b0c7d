#include "launcherapp/platform/linux/desktop/DesktopFileManager.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <utility>

namespace tessarine {

DesktopFileManager::DesktopFileManager(MainQueue& queue, ActivationTokens& tokens)
    : queue_(queue), tokens_(tokens) {}

void DesktopFileManager::reveal(const std::string& path,
                                Seconds timeout,
                                std::function<void(std::optional<std::string>)> done) {
    auto bus = sessionBus();
    if (!bus) {
        queue_.post([done = std::move(done)] { done("there is no session bus"); });
        return;
    }
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                                  QStringLiteral("/org/freedesktop/FileManager1"),
                                                  QStringLiteral("org.freedesktop.FileManager1"),
                                                  QStringLiteral("ShowItems"));
    const auto token = tokens_.take(Activation::foreground).value_or("");
    message << QStringList{QString::fromStdString(Urls::fileUrl(path))}
            << QString::fromStdString(token);
    callBus(*bus, message, timeout, std::move(done));
}

std::optional<std::string> DesktopFileManager::trash(const std::string& path) {
    const auto name = QFile::decodeName(path.c_str());
    if (!QFileInfo::exists(name) && !QFileInfo(name).isSymLink())
        return path + " is no longer there";
    QFile file(name);
    if (file.moveToTrash())
        return std::nullopt;
    return path + " could not be moved to the trash: " + file.errorString().toStdString();
}

} // namespace tessarine
