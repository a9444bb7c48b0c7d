#pragma once

#include "tests/linux/EventLoop.h"

#include <QProcess>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// Programs with windows under KWin, which end with this object.
class GtkWindows {
public:
    GtkWindows() = default;

    ~GtkWindows() {
        for (const auto& program : programs_) {
            program->kill();
            program->waitForFinished();
        }
    }

    GtkWindows(const GtkWindows&) = delete;
    GtkWindows& operator=(const GtkWindows&) = delete;

    /// A window of 300 to 200 that calls itself so, and is told to do something once it is there:
    /// "maximize", "fullscreen", "iconify". Returns its process.
    std::int64_t open(const std::string& applicationID, const std::string& then = "present") {
        constexpr auto text = R"(
import sys, gi
gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk
GLib.set_prgname(sys.argv[1])
window = Gtk.Window(title="A window")
window.set_default_size(300, 200)
window.connect("destroy", Gtk.main_quit)
window.show_all()
window.connect("map-event", lambda *_: GLib.timeout_add(50, lambda: getattr(window, sys.argv[2])()))
Gtk.main()
)";
        auto& program = programs_.emplace_back(std::make_unique<QProcess>());
        program->setStandardErrorFile(QProcess::nullDevice());
        program->start(QStringLiteral("/usr/bin/python3"),
                       {QStringLiteral("-c"),
                        QString::fromLatin1(text),
                        QString::fromStdString(applicationID),
                        QString::fromStdString(then)});
        return program->waitForStarted() ? program->processId() : 0;
    }

private:
    std::vector<std::unique_ptr<QProcess>> programs_;
};

/// A call to KWin by another program than this; what it answers, as `gdbus` writes it.
inline std::string kwinAnswers(const QString& path, const QStringList& call) {
    QProcess program;
    program.start(QStringLiteral("gdbus"),
                  QStringList{QStringLiteral("call"),
                              QStringLiteral("--session"),
                              QStringLiteral("--dest"),
                              QStringLiteral("org.kde.KWin"),
                              QStringLiteral("--object-path"),
                              path,
                              QStringLiteral("--method")} +
                      call);
    program.waitForFinished();
    return program.readAllStandardOutput().toStdString();
}

inline bool isLoaded(const std::string& script) {
    return kwinAnswers(QStringLiteral("/Scripting"),
                       {QStringLiteral("org.kde.kwin.Scripting.isScriptLoaded"),
                        QString::fromStdString(script)}) == "(true,)\n";
}

/// Has KWin load and run a script of that name from a file.
inline void runInKWin(const std::string& name, const std::string& file) {
    const auto answer = kwinAnswers(QStringLiteral("/Scripting"),
                                    {QStringLiteral("org.kde.kwin.Scripting.loadScript"),
                                     QString::fromStdString(file),
                                     QString::fromStdString(name)});
    const auto number = answer.substr(1, answer.find(',') - 1); // "(0,)"
    kwinAnswers(QStringLiteral("/") + QString::fromStdString(number),
                {QStringLiteral("org.kde.kwin.Script.run")});
}

} // namespace tessarine
