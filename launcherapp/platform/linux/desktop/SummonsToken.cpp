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

SummonsToken::~SummonsToken() {
    if (isSet_)
        qunsetenv(variable);
}

} // namespace tessarine
