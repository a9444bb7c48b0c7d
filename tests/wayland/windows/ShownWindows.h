#pragma once

#include "tests/linux/EventLoop.h"

#include <QProcess>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// Programs with windows on the desktop of the tests; they end with this object.
class ShownWindows {
public:
    ShownWindows() = default;

    ~ShownWindows() {
        for (const auto& program : programs_) {
            program->kill();
            program->waitForFinished();
        }
    }

    ShownWindows(const ShownWindows&) = delete;
    ShownWindows& operator=(const ShownWindows&) = delete;

    /// A terminal that calls itself so. Returns its process.
    std::int64_t terminal(const std::string& applicationID) {
        return start(QStringLiteral("foot"),
                     {QStringLiteral("-a"),
                      QString::fromStdString(applicationID),
                      QStringLiteral("sleep"),
                      QStringLiteral("600")});
    }

    /// A window of GTK, which draws its frame and shadow itself.
    std::int64_t gtk(const std::string& applicationID) {
        constexpr auto program = R"(
import sys, gi
gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk
GLib.set_prgname(sys.argv[1])
window = Gtk.Window(title="A window")
window.set_titlebar(Gtk.HeaderBar(title="A window", show_close_button=True))
window.set_default_size(300, 200)
window.connect("destroy", Gtk.main_quit)
window.show_all()
Gtk.main()
)";
        return start(QStringLiteral("/usr/bin/python3"),
                     {QStringLiteral("-c"),
                      QString::fromLatin1(program),
                      QString::fromStdString(applicationID)});
    }

private:
    std::int64_t start(const QString& program, const QStringList& arguments) {
        auto& process = programs_.emplace_back(std::make_unique<QProcess>());
        process->setStandardErrorFile(QProcess::nullDevice());
        process->start(program, arguments);
        return process->waitForStarted() ? process->processId() : 0;
    }

    std::vector<std::unique_ptr<QProcess>> programs_;
};

/// An order to sway; false when it doesn't take it.
inline bool sway(const std::string& order) {
    return QProcess::execute(QStringLiteral("swaymsg"),
                             {QStringLiteral("-q"), QString::fromStdString(order)}) == 0;
}

/// Sway's containers and who has the focus, as text.
inline std::string swayTree() {
    QProcess program;
    program.start(QStringLiteral("swaymsg"), {QStringLiteral("-rt"), QStringLiteral("get_tree")});
    program.waitForFinished();
    return program.readAllStandardOutput().toStdString();
}

} // namespace tessarine
