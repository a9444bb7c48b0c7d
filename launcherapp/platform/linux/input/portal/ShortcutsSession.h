#pragma once

#include "launcherapp/platform/linux/input/portal/PortalShortcut.h"
#include "launcherapp/platform/linux/portal/PortalRequest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tessarine {

/// One session of the desktop portal's global shortcuts (org.freedesktop.portal.GlobalShortcuts).
/// Shortcuts are bound once in a session's life: another set of them is another session. Deleting
/// it gives the shortcuts back. Main thread only.
class ShortcutsSession : public QObject {
    Q_OBJECT

public:
    enum class End {
        declined, ///< by the user
        refused,  ///< by the portal, which would do so again
        failed,   ///< as it may not the next time
    };

    /// None may delete the session; all are called later.
    struct Events {
        /// What the desktop has given, and again whenever the user changes it.
        std::function<void(const PortalTriggers& triggers)> bound;
        /// There are no shortcuts, or none any more; with the reason in words, but of what the user
        /// declined. The last event.
        std::function<void(End end, const std::string& reason)> ended;
        /// A shortcut went down; `time` is the display's, in milliseconds. Its activation token is
        /// there during the call: see SummonsToken.
        std::function<void(const std::string& name, std::uint32_t time)> activated;
        std::function<void(const std::string& name)> deactivated;
    };

    /// Asks for the shortcuts. The desktop may show its user a window.
    ShortcutsSession(QDBusConnection bus, std::vector<PortalShortcut> shortcuts, Events events);
    ~ShortcutsSession() override;
    ShortcutsSession(const ShortcutsSession&) = delete;
    ShortcutsSession& operator=(const ShortcutsSession&) = delete;

    /// Gives the shortcuts back, or takes the question back; nothing is told any more.
    void close();

private Q_SLOTS:
    void activated(const QDBusMessage& message);
    void deactivated(const QDBusMessage& message);
    void changed(const QDBusMessage& message);
    void closed(const QDBusMessage& message);

private:
    void created(const PortalRequest::Answer& answer);
    void bind();
    void ask(const char* method,
             const QVariantList& arguments,
             QVariantMap options,
             std::function<void(const PortalRequest::Answer& answer)> answered);
    void readBack();
    void answered(const PortalRequest::Answer& answer, bool isReadBack);
    void listen(const QString& path, const char* interface, const char* signal, const char* slot);
    void end(End how, const std::string& reason);
    void endAs(const PortalRequest::Answer& answer);
    bool isOurs(const QDBusMessage& message, const char* signature) const;

    QDBusConnection bus_;
    std::vector<PortalShortcut> shortcuts_;
    Events events_;
    QPointer<PortalRequest> request_; ///< the last one
    bool isAnswered_ = false;         ///< the shortcuts are bound
    QString handle_; ///< the session's object; empty until it is made and after its end
};

} // namespace tessarine
