#include "launcherapp/platform/linux/panel/PlainPanelSurface.h"

#include "launcherapp/platform/linux/panel/QtGeometry.h"
#include "launcherapp/platform/linux/panel/QtScreens.h"
#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"

#include <qpa/qwindowsysteminterface.h>

#include <QGuiApplication>
#include <QWidget>
#include <QWindow>
#include <chrono>
#include <utility>

namespace tessarine {

namespace {

/// For a compositor to say that a window that is gone has no keyboard any more.
constexpr std::chrono::milliseconds longestLeave{50};

/// Compositors that take the keyboard for a move of the user's do so as it begins.
constexpr std::chrono::milliseconds longestTaking{500};

/// They give it back when the button is let go; should one not, the panel mustn't stay for ever.
constexpr std::chrono::seconds longestMove{20};

} // namespace

PlainPanelSurface::PlainPanelSurface()
    : wayland_(QtWayland::isThere() ? std::make_unique<QtWayland>() : nullptr) {
    awayForMove_.setSingleShot(true);
    awayForMove_.setInterval(longestMove);
    QObject::connect(&awayForMove_, &QTimer::timeout, [this] { focusMoved(); });
}

PlainPanelSurface::~PlainPanelSurface() = default;

void PlainPanelSurface::prepare(QWidget& widget, Events events) {
    widget_ = &widget;
    events_ = std::move(events);
    widget.setWindowFlags(widget.windowFlags() | Qt::Window | Qt::FramelessWindowHint |
                          Qt::WindowStaysOnTopHint);
    widget.winId(); // makes the native window
    QObject::connect(
        qApp, &QGuiApplication::focusWindowChanged, &lifetime_, [this] { focusMoved(); });
}

void PlainPanelSurface::setFrame(const Rectangle& frame) {
    const auto rect = QtGeometry::rounded(frame);
    // Tiling compositors let a window float whose size can't change.
    if (wayland_)
        widget_->setFixedSize(rect.size());
    widget_->setGeometry(rect);
}

void PlainPanelSurface::show() {
    if (!widget_)
        return;
    hadKeyboard_ = false;
    moveBegan_.reset();
    widget_->show();
    widget_->raise();
    widget_->activateWindow();
    // The compositor gives a place, then gets a picture, then makes the window the active one, and
    // Qt would answer each when its event loop runs again. Keys that are typed stay where they are.
    if (wayland_ && isMadeActive_)
        isMadeActive_ = wayland_->waitUntil([this] {
            QWindowSystemInterface::flushWindowSystemEvents(QEventLoop::ExcludeUserInputEvents);
            return hasKeyboard();
        });
    focusMoved();
}

void PlainPanelSurface::hide() {
    hadKeyboard_ = false;
    awayForMove_.stop();
    if (!widget_)
        return;
    widget_->hide();
    // The next show would else take the focus of this one for its own.
    if (wayland_)
        wayland_->waitUntil(
            [window = widget_->windowHandle()] {
                QWindowSystemInterface::flushWindowSystemEvents(QEventLoop::ExcludeUserInputEvents);
                return QGuiApplication::focusWindow() != window;
            },
            longestLeave);
}

bool PlainPanelSurface::hasKeyboard() const {
    return widget_ && widget_->isVisible() &&
           QGuiApplication::focusWindow() == widget_->windowHandle();
}

/// All that is known is what Qt has heard.
std::optional<double> PlainPanelSurface::displayedHeight() const {
    if (!widget_ || !widget_->isVisible())
        return std::nullopt;
    return widget_->height();
}

void PlainPanelSurface::focusMoved() {
    if (!widget_ || !widget_->isVisible())
        return;
    if (hasKeyboard()) {
        hadKeyboard_ = true;
        isMadeActive_ = true;
        awayForMove_.stop();
        return;
    }
    if (awayForMove_.isActive())
        return;
    // Taken for the move that the user makes, and back when that is over.
    if (const auto began = std::exchange(moveBegan_, std::nullopt);
        began && hadKeyboard_ && std::chrono::steady_clock::now() - *began < longestTaking)
        return awayForMove_.start();
    if (std::exchange(hadKeyboard_, false) && events_.lostKeyboard)
        events_.lostKeyboard();
}

void PlainPanelSurface::finishDrawing() {
    if (wayland_)
        wayland_->roundTrip();
}

bool PlainPanelSurface::startDrag() {
    if (!widget_->windowHandle()->startSystemMove())
        return false;
    moveBegan_ = std::chrono::steady_clock::now();
    return true;
}

bool PlainPanelSurface::mixes() const {
    return true; // the displays without X11 all do
}

std::vector<Screen> PlainPanelSurface::screens() const {
    return qtScreens();
}

std::optional<Point> PlainPanelSurface::pointer() const {
    return std::nullopt;
}

} // namespace tessarine
