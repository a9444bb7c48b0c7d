#pragma once

#include "launcherapp/platform/linux/panel/PanelSurface.h"

#include <QObject>
#include <memory>

namespace tessarine {

/// The panel on any Wayland compositor: on its layer shell, or as an ordinary window where it has
/// none. Which of them is asked once; a compositor that has no time for the answer is asked again
/// at the next show, and until then there is no panel. Main thread only, with Qt connected to
/// Wayland.
class WaylandPanelSurface : public PanelSurface {
public:
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
    std::optional<Point> pointer() const override;

private:
    void choose();

    std::unique_ptr<PanelSurface> chosen_; ///< null until the compositor has answered
    QWidget* widget_ = nullptr;
    Events events_;
    std::optional<Rectangle> frame_; ///< as it was set last
    QObject lifetime_;               ///< of what is posted
};

} // namespace tessarine
