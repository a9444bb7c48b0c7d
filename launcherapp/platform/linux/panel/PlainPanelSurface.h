#pragma once

#include "launcherapp/platform/linux/panel/PanelSurface.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <memory>
#include <optional>

class QWidget;

namespace tessarine {

class QtWayland;

/// The panel as an ordinary undecorated window, on displays that offer nothing better: it becomes
/// the active window while it is up, and stands where the display puts it. One that the display
/// doesn't make active stays up, since a click gives it the keyboard. Main thread only.
class PlainPanelSurface : public PanelSurface {
public:
    PlainPanelSurface();
    ~PlainPanelSurface() override;
    PlainPanelSurface(const PlainPanelSurface&) = delete;
    PlainPanelSurface& operator=(const PlainPanelSurface&) = delete;

    void prepare(QWidget& widget, Events events) override;
    void setFrame(const Rectangle& frame) override;
    void show() override;
    void hide() override;
    bool hasKeyboard() const override;
    std::optional<double> displayedHeight() const override;
    void finishDrawing() override;
    bool startDrag() override;
    bool mixes() const override;
    std::vector<Screen> screens() const override;
    std::optional<Point> pointer() const override;

private:
    void focusMoved();

    std::unique_ptr<QtWayland> wayland_; ///< null where Qt has no such connection
    QPointer<QWidget> widget_;
    Events events_;
    bool hadKeyboard_ = false; ///< at some time since it came up
    bool isMadeActive_ = true; ///< the last time, so that waiting for it is worth while
    std::optional<std::chrono::steady_clock::time_point> moveBegan_; ///< one by the display
    QTimer awayForMove_; ///< runs while such a move has the keyboard
    QObject lifetime_;
};

} // namespace tessarine
