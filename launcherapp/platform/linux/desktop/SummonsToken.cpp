#include "launcherapp/platform/linux/desktop/SummonsToken.h"

#include <QGuiApplication>

namespace tessarine {

namespace {

constexpr auto variable = "XDG_ACTIVATION_TOKEN";

} // namespace

SummonsToken::SummonsToken(const QString& token)
    : isSet_(!token.isEmpty() &&
             QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
    if (isSet_)
        qputenv(variable, token.toUtf8());
}

std::optional<std::string> SummonsToken::take() {
    const auto token = qgetenv(variable);
    qunsetenv(variable);
    return token.isEmpty() ? std::nullopt : std::optional(token.toStdString());
}

SummonsToken::~SummonsToken() {
    if (isSet_)
        qunsetenv(variable);
}

} // namespace tessarine
