#pragma once

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/wayland/LayerRole.h"
#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/panel/wayland/TransparentSurface.h"
#include "launcherapp/platform/linux/panel/wayland/WaylandSeat.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <vector>

class QRect;
class QScreen;
class QWidget;

namespace tessarine {

/// The panel on Wayland compositors with a layer shell: above full-screen windows, with the
/// keyboard for itself while it is up. Its surface goes with each hide, and the compositor gives
/// the keyboard back to the window that had it. A click outside takes the panel away and is spent
/// on that. Main thread only, with Qt connected to such a compositor.
class LayerPanelSurface : public PanelSurface {
public:
    /// Over a connection that has told all globals, never null.
    explicit LayerPanelSurface(std::unique_ptr<QtWayland> connection);
    ~LayerPanelSurface() override;
    LayerPanelSurface(const LayerPanelSurface&) = delete;
    LayerPanelSurface& operator=(const LayerPanelSurface&) = delete;

    void prepare(QWidget& widget, Events events) override;
    void setFrame(const Rectangle& frame) override;
    void show() override;
    void hide() override;
    bool hasKeyboard() const override;
    std::optional<double> displayedHeight() const override;
    void finishDrawing() override;
    bool startDrag() override;
    void endDrag() override;
    bool mixes() const override;
    std::vector<Screen> screens() const override;

    /// The middle of the screen that is the compositor's active one, where there are several: it
    /// doesn't tell the pointer itself.
    std::optional<Point> pointer() const override;

private:
    struct Outside {
        QPointer<QScreen> screen;
        std::unique_ptr<TransparentSurface> surface;
    };

    void comeUp();
    void takeAway();
    bool isToChangeScreens() const;
    void followDrag(const QRect& frame);
    bool takePlace();
    void putInPlace();
    void drawNow();
    void shapeInput();
    void watchOutside();
    void leaveOutPanel();
    void focusMoved();
    void giveUpKeyboard();
    void loseLater();
    QScreen* screenOfFrame() const;

    std::unique_ptr<QtWayland> connection_;
    TransparentSurfaces transparent_{*connection_};
    WaylandSeat seat_;
    std::unique_ptr<LayerRole> role_; ///< while it is up
    std::vector<Outside> outside_;    ///< while it is up
    QPointer<QWidget> widget_;
    QPointer<QScreen> screen_; ///< that it is up on
    Events events_;
    Rectangle frame_;
    bool hadKeyboard_ = false;   ///< since it came up
    bool hasFirstFrame_ = false; ///< the compositor has it, and nobody has asked yet
    bool isDragged_ = false;     ///< by the window itself
    unsigned shows_ = 0;         ///< so many were asked for
    QTimer keyboardPatience_;    ///< runs while it is up and the keyboard hasn't come yet
    QObject lifetime_;           ///< of what is posted
};

} // namespace tessarine
