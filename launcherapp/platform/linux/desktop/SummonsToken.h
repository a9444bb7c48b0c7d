#pragma once

#include <QString>
#include <QVariantMap>
#include <optional>
#include <string>

namespace tessarine {

/// The activation token that came with a press of the desktop's, while it is handled: a compositor
/// that lets windows have the keyboard only by the user's wish wants to see it. Qt, whose window
/// the panel may be, looks for it in the variable that started programs look in too. Under X11 and
/// for an empty token nothing is done. Main thread only.
class SummonsToken {
public:
    explicit SummonsToken(const QString& token);
    ~SummonsToken();
    SummonsToken(const SummonsToken&) = delete;
    SummonsToken& operator=(const SummonsToken&) = delete;

    /// The token of the press that is being handled, for something else than the panel: nobody
    /// finds it any more. Nothing without one.
    static std::optional<std::string> take();

    /// What the values hold that come with a call by the desktop entry standard; empty for none.
    static QString inPlatformData(const QVariantMap& values) {
        return values.value(QStringLiteral("activation-token")).toString();
    }

    /// What the values hold that come with a key of the desktop portal's; empty for none.
    static QString inShortcutOptions(const QVariantMap& values) {
        return values.value(QStringLiteral("activation_token")).toString();
    }

private:
    bool isSet_;
};

} // namespace tessarine
