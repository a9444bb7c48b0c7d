#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>

class QMenu;
class QSystemTrayIcon;

namespace tessarine {

/// An icon in the desktop's tray (StatusNotifierItem over D-Bus) with a menu: a second way in,
/// never the only one. It comes when the desktop has a tray, now or later; where there is none,
/// nothing happens but a log line. Main thread only, with Qt's widgets and event loop.
class StatusItem : public QObject {
    Q_OBJECT

public:
    struct Hooks {
        std::function<void()> open;
        std::function<void()> settings;
        std::function<void()> quit;
        std::function<void(const std::string& line)> log;
    };

    explicit StatusItem(Hooks hooks);
    ~StatusItem() override;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Looks for a tray, without waiting for it.
    void start();

    /// What the tool tip says below the program's name: the hotkey's state, in one line.
    void setStatus(const std::string& line);

private Q_SLOTS:
    void lookForHost();

private:
    void show();
    void add(const char* title, const std::function<void()>& chosen);
    void say(const char* reason);

    Hooks hooks_;
    QDBusServiceWatcher watcher_;
    QString status_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_; ///< none until there is a tray
};

} // namespace tessarine
