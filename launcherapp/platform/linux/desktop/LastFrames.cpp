#include "launcherapp/platform/linux/desktop/LastFrames.h"

#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/wayland/WaylandDispatch.h"

#include <qpa/qplatformwindow.h>
#include <wayland-client.h>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>
#include <chrono>
#include <memory>
#include <thread>

namespace tessarine {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// For Qt's thread to do what it has been told: it takes microseconds, on a processor that is free.
constexpr auto threadLimit = 5ms;
constexpr auto pause = 100us;

/// Whether Qt waits for news of a window's frame. It tells nobody, but gives an update that it is
/// asked for only while it doesn't. The updates end here: a window that goes draws nothing.
class FrameProbe : public QObject {
public:
    explicit FrameProbe(QWindow& window)
        : window_(window), platform_(dynamic_cast<QObject*>(window.handle())) {
        window.installEventFilter(this);
        window.requestUpdate();
    }

    bool isWaiting() {
        if (hasUpdate_ || !platform_)
            return false;
        window_.handle()->requestUpdate(); // which the last one may have come too early for
        QCoreApplication::sendPostedEvents(platform_, QEvent::MetaCall);
        return !hasUpdate_;
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::UpdateRequest)
            return false;
        hasUpdate_ = true;
        return true;
    }

private:
    QWindow& window_;
    QObject* platform_; ///< Qt's own part of the window, whose threads post to it
    bool hasUpdate_ = false;
};

struct EndQueue {
    void operator()(wl_event_queue* queue) const { wl_event_queue_destroy(queue); }
};

/// After it the compositor has told all that it will tell of the surface's frames. On a queue of
/// its own, since Qt is in the middle of hiding a window and is told nothing else meanwhile.
void takeFromScreen(wl_surface* surface) {
    auto* const display = QtWayland::display();
    const std::unique_ptr<wl_event_queue, EndQueue> queue(wl_display_create_queue(display));
    wl_surface_attach(surface, nullptr, 0, 0);
    wl_surface_commit(surface);
    roundTripWayland(display, Clock::now() + QtWayland::patience, queue.get());
}

void awaitLastFrame(QWindow& window) {
    auto* const surface = QtWayland::surface(window);
    if (!surface)
        return;
    FrameProbe probe(window);
    if (!probe.isWaiting())
        return;
    takeFromScreen(surface);
    const auto end = Clock::now() + threadLimit;
    while (probe.isWaiting() && Clock::now() < end)
        std::this_thread::sleep_for(pause);
}

} // namespace

LastFrames::LastFrames(QCoreApplication& application) {
    application.installEventFilter(this);
}

bool LastFrames::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::PlatformSurface)
        return false;
    // The signal comes before Qt takes the window away, and each event of that only afterwards.
    if (const auto* const window = qobject_cast<QWindow*>(object))
        connect(window,
                &QWindow::visibleChanged,
                this,
                &LastFrames::visibleChanged,
                Qt::UniqueConnection);
    return false;
}

void LastFrames::visibleChanged(bool isVisible) {
    auto* const window = qobject_cast<QWindow*>(sender());
    if (!isVisible && window)
        awaitLastFrame(*window);
}

} // namespace tessarine
