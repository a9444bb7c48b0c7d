#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>
#include <memory>
#include <string>

class QAction;
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

    struct State {
        std::string key;     ///< that opens the panel ("Super+Space"); empty when none does
        std::string problem; ///< why none does, in words
        std::string copy;    ///< how it stands with what is copied, in a line; empty for no line

        bool operator==(const State&) const = default;
    };

    explicit StatusItem(Hooks hooks);
    ~StatusItem() override;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Looks for a tray, without waiting for it.
    void start();

    /// Makes the icon, the tool tip and the menu's first lines say how things stand. Not every
    /// tray shows tool tips.
    void refresh(State state);

private Q_SLOTS:
    void lookForHost();

private:
    void show();
    void tell();
    void add(const char* title, const std::function<void()>& chosen);
    void say(const char* reason);

    Hooks hooks_;
    QDBusServiceWatcher watcher_;
    State state_;
    std::unique_ptr<QMenu> menu_;
    QAction* keyLine_ = nullptr;            ///< the menu's
    QAction* copyLine_ = nullptr;           ///< likewise
    std::unique_ptr<QSystemTrayIcon> icon_; ///< none until there is a tray
};

} // namespace tessarine
