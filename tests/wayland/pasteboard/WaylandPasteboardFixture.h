#pragma once

#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"
#include "tests/linux/pasteboard/BoardFixture.h"

#include <QProcess>
#include <QStringList>
#include <string>

namespace tessarine {

class WaylandPasteboardFixture : public BoardFixture<WaylandPasteboard> {
protected:
    /// Runs wl-copy, which goes on serving in the background.
    void copyElsewhere(const QStringList& arguments, const std::string& bytes) {
        const auto before = board.changeCount();
        QProcess program;
        program.setStandardOutputFile(QProcess::nullDevice());
        program.setStandardErrorFile(QProcess::nullDevice());
        program.start(QStringLiteral("wl-copy"), arguments);
        program.write(QByteArray::fromStdString(bytes));
        program.closeWriteChannel();
        ASSERT_TRUE(program.waitForFinished());
        ASSERT_TRUE(reaches(before + 1));
    }

    /// What another program gets of that type.
    static std::string pasteElsewhere(const QString& type) {
        return said({QStringLiteral("--no-newline"), QStringLiteral("--type"), type});
    }

    static std::string typesElsewhere() { return said({QStringLiteral("--list-types")}); }

private:
    static std::string said(const QStringList& arguments) {
        QProcess program;
        program.start(QStringLiteral("wl-paste"), arguments);
        EXPECT_TRUE(program.waitForFinished());
        return program.readAllStandardOutput().toStdString();
    }
};

} // namespace tessarine
