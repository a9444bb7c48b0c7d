#include "launcherapp/platform/linux/panel/wayland/WaylandPanelSurface.h"

#include "launcherapp/platform/linux/panel/PlainPanelSurface.h"
#include "launcherapp/platform/linux/panel/QtScreens.h"
#include "launcherapp/platform/linux/panel/wayland/LayerPanelSurface.h"
#include "launcherapp/platform/linux/wayland/LayerShell.h"

#include <utility>

namespace tessarine {

void WaylandPanelSurface::prepare(QWidget& widget, Events events) {
    widget_ = &widget;
    events_ = std::move(events);
    choose();
}

void WaylandPanelSurface::choose() {
    auto connection = std::make_unique<QtWayland>();
    if (!connection->isTold())
        return;
    if (connection->registry().find(zwlr_layer_shell_v1_interface.name))
        chosen_ = std::make_unique<LayerPanelSurface>(std::move(connection));
    else
        chosen_ = std::make_unique<PlainPanelSurface>();
    chosen_->prepare(*widget_, events_);
    if (frame_)
        chosen_->setFrame(*frame_);
}

void WaylandPanelSurface::setFrame(const Rectangle& frame) {
    frame_ = frame;
    if (chosen_)
        chosen_->setFrame(frame);
}

void WaylandPanelSurface::show() {
    if (!chosen_)
        choose();
    if (chosen_)
        return chosen_->show();
    QMetaObject::invokeMethod(
        &lifetime_,
        [this] {
            if (!chosen_ && events_.lostKeyboard)
                events_.lostKeyboard();
        },
        Qt::QueuedConnection);
}

void WaylandPanelSurface::hide() {
    if (chosen_)
        chosen_->hide();
}

bool WaylandPanelSurface::hasKeyboard() const {
    return chosen_ && chosen_->hasKeyboard();
}

std::optional<double> WaylandPanelSurface::displayedHeight() const {
    return chosen_ ? chosen_->displayedHeight() : std::nullopt;
}

void WaylandPanelSurface::finishDrawing() {
    if (chosen_)
        chosen_->finishDrawing();
}

bool WaylandPanelSurface::startDrag() {
    return chosen_ && chosen_->startDrag();
}

void WaylandPanelSurface::endDrag() {
    if (chosen_)
        chosen_->endDrag();
}

bool WaylandPanelSurface::mixes() const {
    return true; // all compositors do
}

std::vector<Screen> WaylandPanelSurface::screens() const {
    return qtScreens();
}

std::optional<Point> WaylandPanelSurface::pointer() const {
    return chosen_ ? chosen_->pointer() : std::nullopt;
}

} // namespace tessarine
