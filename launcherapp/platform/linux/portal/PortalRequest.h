#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <string>

namespace tessarine {

/// A question to the desktop portal that is answered by a signal, as its user may be asked first
/// (XDG Desktop Portal, "Request"). It deletes itself once it is answered; deleting it before takes
/// the question back, and a window that asks the user goes. Main thread only.
class PortalRequest : public QObject {
    Q_OBJECT

public:
    struct Answer {
        enum class Kind {
            given,
            declined, ///< by the user
            refused,  ///< by the portal, which doesn't say why
            missing,  ///< this desktop's portal has no such interface
            failed,   ///< it could not be asked or understood
        };
        Kind kind = Kind::given;
        QVariantMap results = {}; ///< empty unless given
        std::string problem = {}; ///< in words; empty unless failed
    };

    /// For the portal to take a question: the bus may have to start it first.
    static constexpr Seconds ordinaryPatience{30};

    /// Sends the call, whose last argument, the options, is added here with the request's token.
    /// `answered` is called once, later. It waits that long for the portal to take the question,
    /// and without end for the user.
    PortalRequest(QDBusConnection bus,
                  QDBusMessage call,
                  QVariantMap options,
                  std::function<void(const Answer& answer)> answered,
                  QObject* parent,
                  Seconds patience = ordinaryPatience);
    ~PortalRequest() override;
    PortalRequest(const PortalRequest&) = delete;
    PortalRequest& operator=(const PortalRequest&) = delete;

    /// Whether the answer has been told; then it is about to go.
    bool isAnswered() const { return !answered_; }

    /// A word that no other request or session of this program has.
    static QString freshToken();

private Q_SLOTS:
    void responded(const QDBusMessage& message);

private:
    void listen(const QString& path);
    void accepted(const QDBusMessage& reply);
    void finish(Answer answer);

    QDBusConnection bus_;
    QString path_; ///< the request's object
    std::function<void(const Answer& answer)> answered_;
};

} // namespace tessarine
