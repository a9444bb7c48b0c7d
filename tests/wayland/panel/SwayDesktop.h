#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "tests/linux/EventLoop.h"

#include <QColor>
#include <QImage>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <optional>
#include <string>

namespace tessarine {

/// Has the compositor carry out a command of its configuration's language.
inline bool sway(const std::string& command) {
    QProcess process;
    process.start(QStringLiteral("swaymsg"),
                  {QStringLiteral("--"), QString::fromStdString(command)});
    return process.waitForFinished() && process.exitCode() == 0;
}

/// Until the window of that application has the keyboard; false when it doesn't in ten seconds.
inline bool waitForFocus(const std::string& applicationID) {
    return spinUntil([&] { return sway("[con_id=__focused__ app_id=" + applicationID + "] nop"); });
}

/// What the screens show, side by side.
inline QImage screenshot() {
    const QTemporaryDir folder;
    const auto file = folder.filePath(QStringLiteral("screen.png"));
    return QProcess::execute(QStringLiteral("grim"), {file}) == 0 ? QImage(file) : QImage();
}

/// The smallest rectangle that holds all pixels of a colour; nothing when none has it.
inline std::optional<Rectangle> extent(const QImage& image, const QColor& color) {
    std::optional<QRect> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color.rgb())
                found = found.value_or(QRect(x, y, 1, 1)).united(QRect(x, y, 1, 1));
        }
    }
    if (!found)
        return std::nullopt;
    return Rectangle{.x = static_cast<double>(found->x()),
                     .y = static_cast<double>(found->y()),
                     .width = static_cast<double>(found->width()),
                     .height = static_cast<double>(found->height())};
}

} // namespace tessarine
