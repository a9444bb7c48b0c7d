#pragma once

#include "launcherapp/platform/linux/pasteboard/x11/X11Pasteboard.h"
#include "tests/linux/pasteboard/BoardFixture.h"

#include <QProcess>
#include <QStringList>
#include <string>

namespace tessarine {

class PasteboardFixture : public BoardFixture<X11Pasteboard> {
protected:
    /// Another program copies this, and goes on serving it in the background.
    void copyElsewhere(const QString& type, const std::string& bytes) {
        const auto before = board.changeCount();
        QProcess xclip;
        xclip.setStandardOutputFile(QProcess::nullDevice());
        xclip.setStandardErrorFile(QProcess::nullDevice());
        xclip.start(QStringLiteral("xclip"),
                    {QStringLiteral("-selection"),
                     QStringLiteral("clipboard"),
                     QStringLiteral("-t"),
                     type});
        xclip.write(QByteArray::fromStdString(bytes));
        xclip.closeWriteChannel();
        ASSERT_TRUE(xclip.waitForFinished());
        ASSERT_TRUE(reaches(before + 1));
    }

    /// What another program gets.
    static std::string pasteElsewhere(const QString& type) {
        QProcess xclip;
        xclip.start(QStringLiteral("xclip"),
                    {QStringLiteral("-selection"),
                     QStringLiteral("clipboard"),
                     QStringLiteral("-o"),
                     QStringLiteral("-t"),
                     type});
        EXPECT_TRUE(xclip.waitForFinished());
        return xclip.readAllStandardOutput().toStdString();
    }
};

} // namespace tessarine
