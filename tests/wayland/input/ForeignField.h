#pragma once

#include "tests/linux/EventLoop.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <stdexcept>
#include <string>

namespace tessarine {

/// A text field in another program, which has the keyboard when it is made. What is in it is read
/// from a file. Main thread only.
class ForeignField {
public:
    enum class Kind {
        terminal, ///< foot, in which what is entered line by line shows
        gtk       ///< one of GTK
    };

    /// Throws std::runtime_error when it doesn't come up.
    explicit ForeignField(Kind kind) {
        const auto file = QString::fromStdString(folder_.path("/text"));
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment.insert(QStringLiteral("GDK_BACKEND"), QStringLiteral("wayland"));
        program_.setProcessEnvironment(environment);
        program_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        if (kind == Kind::terminal)
            program_.start(QStringLiteral("foot"),
                           {QStringLiteral("--app-id=field"),
                            QStringLiteral("--log-level=error"),
                            QStringLiteral("sh"),
                            QStringLiteral("-c"),
                            QStringLiteral("cat >") + file});
        else
            program_.start(QStringLiteral("/usr/bin/python3"),
                           {QStringLiteral("-c"), QString::fromLatin1(gtkProgram), file});
        if (!spinUntil([&] { return QFile::exists(file) && hasFocus(); }))
            throw std::runtime_error("no field came up");
    }

    ~ForeignField() {
        program_.kill();
        program_.waitForFinished();
        spinUntil([] { return !hasFocus(); });
    }

    ForeignField(const ForeignField&) = delete;
    ForeignField& operator=(const ForeignField&) = delete;

    std::string text() const { return folder_.text("/text"); }

    /// Until it holds this; what it holds else.
    std::string becomes(const std::string& text) const {
        spinUntil([&] { return this->text() == text; });
        return this->text();
    }

private:
    static constexpr auto gtkProgram = R"(
import sys, gi
gi.require_version('Gtk', '3.0')
from gi.repository import GLib, Gtk
GLib.set_prgname('field')
view = Gtk.TextView()
buffer = view.get_buffer()
def save(*_):
    text = buffer.get_text(buffer.get_start_iter(), buffer.get_end_iter(), True)
    with open(sys.argv[1] + '.new', 'w') as file:
        file.write(text)
    import os
    os.rename(sys.argv[1] + '.new', sys.argv[1])
buffer.connect('changed', save)
window = Gtk.Window()
window.add(view)
window.show_all()
view.connect('focus-in-event', save)
Gtk.main()
)";

    static bool holdsFocus(const QJsonObject& node) {
        if (node[QLatin1String("focused")].toBool())
            return node[QLatin1String("app_id")].toString() == QLatin1String("field");
        const auto nodes = node[QLatin1String("nodes")].toArray();
        return std::any_of(nodes.begin(), nodes.end(), [](const QJsonValue& each) {
            return holdsFocus(each.toObject());
        });
    }

    static bool hasFocus() {
        QProcess sway;
        sway.start(QStringLiteral("swaymsg"),
                   {QStringLiteral("--raw"), QStringLiteral("--type"), QStringLiteral("get_tree")});
        sway.waitForFinished();
        return holdsFocus(QJsonDocument::fromJson(sway.readAllStandardOutput()).object());
    }

    ScratchFolder folder_;
    QProcess program_;
};

} // namespace tessarine
