#pragma once

#include "tests/linux/EventLoop.h"

#include <QProcess>
#include <string>

namespace tessarine {

/// A real terminal in front, whose program notes each line that is typed into it.
class Terminal {
public:
    Terminal() {
        const auto script = "touch " + folder_.path("/up") +
                            "; while read -r line; do echo \"$line\" >>" + folder_.path("/lines") +
                            "; done";
        process_.start(QStringLiteral("foot"),
                       {QStringLiteral("--override=font=monospace:size=10"),
                        QStringLiteral("sh"),
                        QStringLiteral("-c"),
                        QString::fromStdString(script)});
    }

    ~Terminal() {
        process_.terminate();
        process_.waitForFinished();
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Until its program runs; the window has the keyboard by then.
    bool waitUntilUp() const {
        return spinUntil([&] { return std::filesystem::exists(folder_.path("/up")); });
    }

    /// What was typed into it, line by line.
    std::string lines() const { return folder_.text("/lines"); }

private:
    ScratchFolder folder_;
    QProcess process_;
};

} // namespace tessarine
