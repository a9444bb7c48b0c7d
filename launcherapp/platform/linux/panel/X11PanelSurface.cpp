#include "launcherapp/platform/linux/panel/X11PanelSurface.h"

#include "launcherapp/platform/linux/panel/QtGeometry.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <QWidget>
#include <chrono>
#include <cmath>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

using namespace std::chrono_literals;

/// A window manager that runs a command for a key holds the keyboard until that key is let go,
/// which takes people up to a few tenths of a second.
constexpr auto retryInterval = 10ms;
constexpr int mostTries = 100;
/// After so many in one show the other window has won: both would go on for ever.
constexpr int mostRaises = 20;

constexpr std::string_view title = "Tessarine";
/// WM_CLASS: instance and class, each with its end.
constexpr std::string_view classes{"tessarine\0Tessarine\0", 20};
constexpr std::uint32_t allDesktops = 0xffffffff;

} // namespace

X11PanelSurface::X11PanelSurface()
    : watch_(display_,
             {.pressedOutside = [this] { lose(); },
              .otherActivated = [this] { lose(); },
              .overlapped =
                  [this] {
                      if (raisesLeft_-- > 0)
                          raise();
                  },
              .covered = [this] { lose(); },
              .mixesChanged =
                  [this] {
                      if (events_.mixesChanged)
                          events_.mixesChanged();
                  }}) {
    retry_.setInterval(retryInterval);
    QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] { tryForKeyboard(); });
    qApp->installNativeEventFilter(this);
}

X11PanelSurface::~X11PanelSurface() {
    qApp->removeNativeEventFilter(this);
}

void X11PanelSurface::prepare(QWidget& widget, Events events) {
    widget_ = &widget;
    events_ = std::move(events);
    widget.setWindowFlags(widget.windowFlags() | Qt::Window | Qt::FramelessWindowHint |
                          Qt::X11BypassWindowManagerHint);
    widget.setAttribute(Qt::WA_ShowWithoutActivating);
    widget.winId();                                                   // makes the native window
    const auto* fixes = xcb_get_extension_data(qt(), &xcb_xfixes_id); // Qt has agreed on a version
    hasFixes_ = fixes && fixes->present;
    describeWindow();
}

/// What compositors and taskbars judge a window by. Qt names it for the executable, and takes its
/// type for that of an ordinary window.
void X11PanelSurface::describeWindow() {
    const auto set = [&](X11Connection::Atom property,
                         X11Connection::Atom type,
                         std::uint8_t format,
                         std::size_t count,
                         const void* values) {
        xcb_change_property(qt(),
                            XCB_PROP_MODE_REPLACE,
                            window(),
                            property,
                            type,
                            format,
                            static_cast<std::uint32_t>(count),
                            values);
    };
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, classes.size(), classes.data());
    set(display_.atom("_NET_WM_NAME"), display_.atom("UTF8_STRING"), 8, title.size(), title.data());
    const auto utility = display_.atom("_NET_WM_WINDOW_TYPE_UTILITY");
    set(display_.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &utility);
    set(display_.atom("_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 32, 1, &allDesktops);
    xcb_flush(qt());
    watch_.takeQueuedEvents();
}

void X11PanelSurface::setFrame(const Rectangle& frame) {
    widget_->setGeometry(QtGeometry::rounded(frame));
    shapeInput();
}

/// The shadow is there to be seen alone: what is pressed in it is the window below.
void X11PanelSurface::shapeInput() {
    if (!hasFixes_)
        return;
    const double scale = widget_->devicePixelRatioF();
    const auto inside = widget_->contentsRect();
    const auto native = [scale](int length) { return std::lround(length * scale); };
    const xcb_rectangle_t panel{.x = static_cast<std::int16_t>(native(inside.x())),
                                .y = static_cast<std::int16_t>(native(inside.y())),
                                .width = static_cast<std::uint16_t>(native(inside.width())),
                                .height = static_cast<std::uint16_t>(native(inside.height()))};
    const auto region = xcb_generate_id(qt());
    constexpr xcb_shape_kind_t input = 2; // ShapeInput of the Shape extension 1.1
    xcb_xfixes_create_region(qt(), region, 1, &panel);
    xcb_xfixes_set_window_shape_region(qt(), window(), input, 0, 0, region);
    xcb_xfixes_destroy_region(qt(), region);
}

void X11PanelSurface::show() {
    if (!widget_)
        return;
    isUp_ = true;
    triesLeft_ = mostTries;
    raisesLeft_ = mostRaises;
    // Before it is mapped, so that it appears where it belongs.
    raise();
    widget_->show();
    tryForKeyboard();
    if (isUp_)
        watch_.begin(window());
}

void X11PanelSurface::hide() {
    isUp_ = false;
    retry_.stop();
    watch_.end();
    const bool held = heldSince_.has_value();
    heldSince_.reset();
    if (!widget_ || !widget_->isVisible())
        return;
    // First of all: once the window is seen to be gone the hotkey may be pressed again, and the
    // request would end the grab that this press made.
    if (held)
        xcb_ungrab_keyboard(qt(), XCB_CURRENT_TIME);
    widget_->hide();
    // Who pastes into the window in front does so over another connection, and would else find the
    // keyboard still here.
    finishDrawing();
}

bool X11PanelSurface::hasKeyboard() const {
    return heldSince_.has_value();
}

/// Asked on Qt's connection, so that all that was requested of the window is carried out.
std::optional<double> X11PanelSurface::displayedHeight() const {
    if (!widget_)
        return std::nullopt;
    const auto attributesCookie = xcb_get_window_attributes(qt(), window());
    const auto geometryCookie = xcb_get_geometry(qt(), window());
    const XcbOwned<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(qt(), attributesCookie, nullptr));
    const XcbOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(qt(), geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    return geometry->height / widget_->devicePixelRatioF();
}

X11PanelSurface::Grab X11PanelSurface::grab() {
    // The time of a press would be refused where a later grab came between, and a show over the bus
    // has none. On Qt's connection the request follows the one that maps the window.
    const auto cookie = xcb_grab_keyboard(
        qt(), 0, window(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbOwned<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(qt(), cookie, nullptr));
    if (!reply)
        return Grab::impossible;
    if (reply->status != XCB_GRAB_STATUS_SUCCESS)
        return Grab::busy;
    heldSince_ = cookie.sequence;
    return Grab::taken;
}

void X11PanelSurface::tryForKeyboard() {
    if (heldSince_)
        return retry_.stop();
    const auto outcome = grab();
    if (outcome == Grab::taken) {
        if (retry_.isActive() && events_.keyboardCame)
            events_.keyboardCame();
        return retry_.stop();
    }
    if (outcome == Grab::impossible || triesLeft_-- <= 0) {
        if (events_.keyboardRefused)
            events_.keyboardRefused();
        return lose();
    }
    if (!retry_.isActive())
        retry_.start();
}

void X11PanelSurface::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(qt(), window(), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(qt());
}

void X11PanelSurface::lose() {
    if (!isUp_)
        return;
    retry_.stop();
    if (events_.lostKeyboard)
        events_.lostKeyboard();
}

/// Notices that the grab has ended or the window was unmapped by someone else. Whoever locks the
/// screen may do so to get the keyboard.
bool X11PanelSurface::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (!isUp_ || type != "xcb_generic_event_t")
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    noteKey(message);
    if (!heldSince_)
        return false;
    // What follows from the hiding before is told by the display after the next show.
    if (static_cast<std::int32_t>(event.full_sequence - *heldSince_) < 0)
        return false;
    bool isLost = false;
    switch (event.response_type & 0x7f) {
    case XCB_FOCUS_OUT: {
        const auto& focus = reinterpret_cast<const xcb_focus_out_event_t&>(event);
        isLost = focus.event == window() && focus.mode == XCB_NOTIFY_MODE_UNGRAB;
        break;
    }
    case XCB_UNMAP_NOTIFY:
        isLost = reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window == window();
        break;
    default:
        break;
    }
    if (isLost) {
        heldSince_.reset();
        // Qt is in the middle of handling the event.
        QMetaObject::invokeMethod(
            &retry_, [this] { lose(); }, Qt::QueuedConnection);
    }
    return false;
}

void X11PanelSurface::noteKey(const void* event) {
    const auto& key = *static_cast<const xcb_key_press_event_t*>(event);
    if ((key.response_type & 0x7f) != XCB_KEY_PRESS || !events_.keyArrives)
        return;
    if (key.event == window())
        events_.keyArrives(key.detail);
}

void X11PanelSurface::finishDrawing() {
    // Requests are carried out in their order, so an answer comes after what was drawn.
    const XcbOwned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(qt(), xcb_get_input_focus(qt()), nullptr));
}

bool X11PanelSurface::startDrag() {
    return false;
}

bool X11PanelSurface::mixes() const {
    return watch_.mixes();
}

std::vector<Screen> X11PanelSurface::screens() const {
    auto screens = screens_.all();
    watch_.takeQueuedEvents();
    return screens;
}

std::optional<Point> X11PanelSurface::pointer() const {
    const auto point = screens_.pointer();
    watch_.takeQueuedEvents();
    return point;
}

xcb_connection_t* X11PanelSurface::qt() const {
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

X11Connection::Window X11PanelSurface::window() const {
    return static_cast<X11Connection::Window>(widget_->internalWinId());
}

} // namespace tessarine
