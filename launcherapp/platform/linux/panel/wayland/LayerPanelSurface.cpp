#include "launcherapp/platform/linux/panel/wayland/LayerPanelSurface.h"

#include "launcherapp/platform/linux/panel/QtGeometry.h"
#include "launcherapp/platform/linux/panel/QtScreens.h"
#include "launcherapp/platform/linux/wayland/LayerShell.h"

#include <private/qhighdpiscaling_p.h>
#include <qpa/qwindowsysteminterface.h>
#include <wayland-client.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// What compositors' rules call the panel by.
constexpr auto layerName = "tessarine";

/// In the first version of the protocol; later ones know it as "exclusive".
constexpr std::uint32_t takesKeyboard = 1;

/// How long another surface may keep the keyboard after a show: a lock, or another overlay.
constexpr std::chrono::seconds keyboardLimit{1};

/// Offered by KWin alone.
constexpr auto kwinsOwn = "org_kde_plasma_shell";

/// What of Qt's is there in the screen's own coordinates, as the compositor counts them:
/// QT_SCALE_FACTOR comes between the two.
QRect onScreen(const QRect& rect, const QScreen& screen) {
    const auto at = rect.topLeft() - screen.geometry().topLeft();
    return {QHighDpi::toNativePixels(at, &screen), QHighDpi::toNativePixels(rect.size(), &screen)};
}

} // namespace

LayerPanelSurface::LayerPanelSurface(std::unique_ptr<QtWayland> connection)
    : connection_(std::move(connection)),
      seat_(*connection_,
            {.focusMoved = [this](wl_surface*) { focusMoved(); },
             .keyPressed =
                 [this](std::uint32_t scanCode) {
                     if (events_.keyArrives && hasKeyboard())
                         events_.keyArrives(scanCode);
                 },
             .pressed =
                 [this](wl_surface* surface) {
                     if (std::ranges::any_of(outside_, [surface](const auto& each) {
                             return each.surface->surface() == surface;
                         }))
                         loseLater();
                 }}) {
    keyboardPatience_.setSingleShot(true);
    keyboardPatience_.setInterval(keyboardLimit);
    QObject::connect(&keyboardPatience_, &QTimer::timeout, [this] { giveUpKeyboard(); });
}

LayerPanelSurface::~LayerPanelSurface() = default;

void LayerPanelSurface::prepare(QWidget& widget, Events events) {
    widget_ = &widget;
    events_ = std::move(events);
    // The hint keeps Qt from giving the surface a role of an ordinary window.
    widget.setWindowFlags(widget.windowFlags() | Qt::Window | Qt::FramelessWindowHint |
                          Qt::BypassWindowManagerHint);
    QObject::connect(
        qApp,
        &QGuiApplication::screenAdded,
        &lifetime_,
        [this] { watchOutside(); },
        Qt::QueuedConnection);
}

void LayerPanelSurface::setFrame(const Rectangle& frame) {
    frame_ = frame;
    const auto rect = QtGeometry::rounded(frame);
    if (role_ && isDragged_) {
        putInPlace();
        followDrag(rect);
        return;
    }
    widget_->setGeometry(rect);
    if (isToChangeScreens())
        comeUp();
    else if (role_)
        putInPlace();
}

/// While a button is down, wlroots tells where the pointer is in the surface as if the surface
/// stood where it was pressed; Qt's window stands there too, then, and a drag adds up. KWin tells
/// of where the surface stands now. What it told before that is taken with Qt's window where that
/// was.
void LayerPanelSurface::followDrag(const QRect& frame) {
    if (!connection_->registry().find(kwinsOwn)) {
        widget_->resize(frame.size());
        return;
    }
    connection_->roundTrip();
    connection_->roundTrip(); // it moves surfaces after it has read what was asked for
    widget_->setGeometry(frame);
}

/// A surface is seen on its own output alone. Not while it is dragged: the drag would end with the
/// surface that it began on.
bool LayerPanelSurface::isToChangeScreens() const {
    if (!role_ || role_->isClosed() || !screen_ || isDragged_)
        return false;
    auto* const wanted = screenOfFrame();
    return wanted && wanted != screen_;
}

void LayerPanelSurface::show() {
    if (widget_ && !role_)
        comeUp();
}

/// From nothing, or from another screen. That the keyboard leaves the surface that goes is no loss.
void LayerPanelSurface::comeUp() {
    ++shows_;
    takeAway();
    if (!takePlace())
        return loseLater();
    widget_->show();
    drawNow();
    // Told in one go with the drawing, so that keys and whoever asks find it so.
    hasFirstFrame_ = connection_->roundTrip();
    hadKeyboard_ = hasKeyboard();
    if (!hadKeyboard_)
        keyboardPatience_.start();
    QMetaObject::invokeMethod(
        &lifetime_, [this] { watchOutside(); }, Qt::QueuedConnection);
}

/// Makes the surface and asks for its place; false when the compositor gives it none.
bool LayerPanelSurface::takePlace() {
    screen_ = screenOfFrame();
    if (!screen_ || !transparent_.shell)
        return false;
    widget_->winId();
    auto& window = *widget_->windowHandle();
    window.setScreen(screen_);
    window.create();
    widget_->setGeometry(QtGeometry::rounded(frame_));
    auto* const surface = QtWayland::surface(window);
    if (!surface)
        return false;
    role_ = std::make_unique<LayerRole>(
        transparent_.shell,
        surface,
        QtWayland::output(*screen_),
        layerName,
        LayerRole::Events{.configured = {}, .closed = [this] { loseLater(); }});
    zwlr_layer_surface_v1_set_anchor(
        role_->wishes(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_keyboard_interactivity(role_->wishes(), takesKeyboard);
    putInPlace();
    connection_->waitUntil([this] { return role_->isConfigured() || role_->isClosed(); });
    if (role_->isConfigured() && !role_->isClosed())
        return true;
    hide();
    return false;
}

/// The compositor draws the surface in the size that it has, so a new one follows without a jump.
void LayerPanelSurface::putInPlace() {
    if (!screen_)
        return; // it has left, and the panel is about to go
    const auto frame = onScreen(QtGeometry::rounded(frame_), *screen_);
    const auto at = frame.topLeft();
    zwlr_layer_surface_v1_set_size(role_->wishes(),
                                   static_cast<std::uint32_t>(std::max(frame.width(), 1)),
                                   static_cast<std::uint32_t>(std::max(frame.height(), 1)));
    zwlr_layer_surface_v1_set_margin(role_->wishes(), at.y(), 0, 0, at.x());
    wl_surface_commit(QtWayland::surface(*widget_->windowHandle()));
    // Qt commits with it, and KWin ends a program whose surface it sees without a size.
    shapeInput();
}

/// Qt would draw when its event loop runs again: the keyboard comes only with the first picture.
void LayerPanelSurface::drawNow() {
    QWindowSystemInterface::flushWindowSystemEvents(QEventLoop::ExcludeUserInputEvents);
}

/// The shadow is there to be seen alone: what is pressed in it is what lies below.
void LayerPanelSurface::shapeInput() {
    widget_->windowHandle()->setMask(widget_->contentsRect());
    leaveOutPanel();
}

void LayerPanelSurface::leaveOutPanel() {
    const auto panel = widget_->contentsRect().translated(QtGeometry::rounded(frame_).topLeft());
    for (const auto& [screen, surface] : outside_) {
        if (!screen)
            continue;
        const auto hole = onScreen(panel, *screen);
        surface->leaveOut(hole.x(), hole.y(), hole.width(), hole.height());
    }
}

/// The compositor tells of no click that isn't on one of our surfaces, so there is one everywhere.
/// They come after the panel, which is waited for, and so lie above it with a hole for it.
void LayerPanelSurface::watchOutside() {
    if (!role_ || !transparent_.canBeMade() || !transparent_.viewporter)
        return;
    std::erase_if(outside_, [](const Outside& each) { return !each.screen; });
    for (auto* const screen : QGuiApplication::screens()) {
        const bool isWatched = std::ranges::any_of(
            outside_, [screen](const Outside& each) { return each.screen == screen; });
        if (auto* const output = isWatched ? nullptr : QtWayland::output(*screen))
            outside_.push_back({.screen = screen,
                                .surface = std::make_unique<TransparentSurface>(
                                    transparent_, output, TransparentSurface::Size::output)});
    }
    leaveOutPanel();
}

void LayerPanelSurface::takeAway() {
    keyboardPatience_.stop();
    hadKeyboard_ = false;
    hasFirstFrame_ = false;
    isDragged_ = false; // nobody tells of a button that is let go over a surface that is gone
    outside_.clear();
    role_.reset(); // before its surface, which goes with the window
    if (!widget_)
        return;
    widget_->hide();
    if (auto* const window = widget_->windowHandle())
        window->destroy();
}

void LayerPanelSurface::hide() {
    const bool wasUp = role_ != nullptr;
    takeAway();
    // Who pastes into the window in front does so over another connection, and would else find the
    // keyboard still here.
    if (wasUp)
        finishDrawing();
}

bool LayerPanelSurface::hasKeyboard() const {
    auto* const focus = seat_.keyboardFocus();
    return focus && role_ && widget_ && widget_->windowHandle() &&
           QtWayland::surface(*widget_->windowHandle()) == focus;
}

void LayerPanelSurface::focusMoved() {
    if (!hasKeyboard()) {
        if (std::exchange(hadKeyboard_, false))
            loseLater();
        return;
    }
    hadKeyboard_ = true;
    if (!keyboardPatience_.isActive())
        return;
    keyboardPatience_.stop();
    if (events_.keyboardCame)
        events_.keyboardCame();
}

/// A panel that takes no key can't be left by Escape either. Where nobody could type anyhow, it
/// waits for the pointer.
void LayerPanelSurface::giveUpKeyboard() {
    if (!role_ || !seat_.hasKeyboard())
        return;
    if (events_.keyboardRefused)
        events_.keyboardRefused();
    loseLater();
}

/// The compositor shows it as it was drawn, as long as it shows it.
std::optional<double> LayerPanelSurface::displayedHeight() const {
    if (!widget_ || !widget_->isVisible() || !role_ || role_->isClosed())
        return std::nullopt;
    return widget_->height();
}

/// The compositor may be telling it in the middle of what Qt does with the window. By the time that
/// it is told the user may have asked for the panel anew.
void LayerPanelSurface::loseLater() {
    QMetaObject::invokeMethod(
        &lifetime_,
        [this, lost = shows_] {
            if (lost == shows_ && events_.lostKeyboard)
                events_.lostKeyboard();
        },
        Qt::QueuedConnection);
}

void LayerPanelSurface::finishDrawing() {
    if (std::exchange(hasFirstFrame_, false))
        return;
    // Requests are carried out in their order, so an answer comes after what was drawn.
    connection_->roundTrip();
}

bool LayerPanelSurface::startDrag() {
    isDragged_ = true;
    return false;
}

void LayerPanelSurface::endDrag() {
    isDragged_ = false;
}

bool LayerPanelSurface::mixes() const {
    return true;
}

std::vector<Screen> LayerPanelSurface::screens() const {
    return qtScreens();
}

std::optional<Point> LayerPanelSurface::pointer() const {
    if (QGuiApplication::screens().size() < 2 || !transparent_.canBeMade())
        return std::nullopt;
    // A surface without a wish is put on the active output, which is told with its first picture.
    const TransparentSurface probe(transparent_, nullptr, TransparentSurface::Size::pixel);
    connection_->waitUntil([&probe] { return probe.output() || probe.isClosed(); });
    const auto* const screen = QtWayland::screen(probe.output());
    if (!screen)
        return std::nullopt;
    const auto middle = screen->geometry().center();
    return Point{.x = static_cast<double>(middle.x()), .y = static_cast<double>(middle.y())};
}

QScreen* LayerPanelSurface::screenOfFrame() const {
    auto* const found = QGuiApplication::screenAt(QtGeometry::rounded(frame_).center());
    auto* const screen = found ? found : QGuiApplication::primaryScreen();
    return screen && QtWayland::output(*screen) ? screen : nullptr;
}

} // namespace tessarine
