#pragma once

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/X11PanelWatch.h"
#include "launcherapp/platform/linux/panel/X11Screens.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <QAbstractNativeEventFilter>
#include <QPointer>
#include <QTimer>
#include <cstdint>
#include <optional>

class QWidget;

namespace tessarine {

/// The panel on X11: a window that no window manager sees, above full-screen ones and on every
/// desktop. It holds the keyboard by a grab alone, so the focus and the active window stay where
/// they are, and there is nothing to give back. Main thread only, with Qt connected to X11.
class X11PanelSurface : public PanelSurface, private QAbstractNativeEventFilter {
public:
    X11PanelSurface();
    ~X11PanelSurface() override;
    X11PanelSurface(const X11PanelSurface&) = delete;
    X11PanelSurface& operator=(const X11PanelSurface&) = delete;

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
    enum class Grab { taken, busy, impossible };

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    Grab grab();
    void tryForKeyboard();
    void raise();
    void shapeInput();
    void noteKey(const void* event);
    void lose();
    void describeWindow();
    xcb_connection_t* qt() const;
    X11Connection::Window window() const;

    X11Connection display_;
    mutable X11Screens screens_{display_};
    mutable X11PanelWatch watch_; ///< notes what comes in while anything is asked
    QPointer<QWidget> widget_;
    Events events_;
    QTimer retry_;
    bool hasFixes_ = false; ///< input can be shaped
    int triesLeft_ = 0;
    int raisesLeft_ = 0;
    bool isUp_ = false;
    std::optional<std::uint32_t> heldSince_; ///< number of the request that took the keyboard
};

} // namespace tessarine
