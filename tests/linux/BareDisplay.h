#pragma once

#include "tests/linux/EventLoop.h"

#include <QProcess>
#include <QStringList>
#include <cstdlib>
#include <string>

namespace tessarine {

/// An X server of the test's own, without a window manager, and the display that programs started
/// meanwhile find.
class BareDisplay {
public:
    explicit BareDisplay(const QStringList& options = {}) : before_(::getenv("DISPLAY")) {
        server.start(QStringLiteral("Xvfb"),
                     options + QStringList{QStringLiteral("-displayfd"),
                                           QStringLiteral("1"),
                                           QStringLiteral("-nolisten"),
                                           QStringLiteral("tcp")});
        QByteArray number;
        answers = spinUntil([&] {
            number += server.readAllStandardOutput();
            return number.endsWith('\n');
        });
        ::setenv("DISPLAY", (":" + number.trimmed().toStdString()).c_str(), 1);
    }

    ~BareDisplay() {
        stop();
        ::setenv("DISPLAY", before_.c_str(), 1);
    }

    BareDisplay(const BareDisplay&) = delete;
    BareDisplay& operator=(const BareDisplay&) = delete;

    void stop() {
        server.kill();
        server.waitForFinished();
    }

    QProcess server;
    bool answers = false;

private:
    std::string before_;
};

} // namespace tessarine
