#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <csignal>
#include <stdexcept>

namespace tessarine {

/// A second compositor, which a test may stop or kill; what connects while this lives connects to
/// it. Main thread only.
class CompositorOfItsOwn {
public:
    /// Throws std::runtime_error when it doesn't start.
    CompositorOfItsOwn() : displayBefore_(qgetenv("WAYLAND_DISPLAY")) {
        program_.start(qEnvironmentVariable("WITH_SWAY"),
                       {QStringLiteral("sh"),
                        QStringLiteral("-c"),
                        QStringLiteral("echo $WAYLAND_DISPLAY $COMPOSITOR_PROCESS; cat")});
        constexpr int patienceMilliseconds = 20000;
        if (!program_.waitForReadyRead(patienceMilliseconds))
            throw std::runtime_error("no second compositor");
        const auto names = program_.readLine().trimmed().split(' ');
        qputenv("WAYLAND_DISPLAY", names.value(0));
        process_ = names.value(1).toInt();
    }

    ~CompositorOfItsOwn() {
        qputenv("WAYLAND_DISPLAY", displayBefore_);
        goOn();
        program_.closeWriteChannel();
        program_.waitForFinished();
    }

    CompositorOfItsOwn(const CompositorOfItsOwn&) = delete;
    CompositorOfItsOwn& operator=(const CompositorOfItsOwn&) = delete;

    void stop() const { ::kill(process_, SIGSTOP); }

    void goOn() const { ::kill(process_, SIGCONT); }

    void kill() const { ::kill(process_, SIGKILL); }

private:
    QByteArray displayBefore_;
    QProcess program_;
    pid_t process_ = 0;
};

} // namespace tessarine
