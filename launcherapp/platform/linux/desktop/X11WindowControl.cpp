#include "launcherapp/platform/linux/desktop/X11WindowControl.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <csignal>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t pager = 2; ///< who asks: not the window's own program, but the user
/// A window is an ordinary one again when nothing has happened to it for so long: half of one
/// picture of a display, in which window managers and programs answer each other.
constexpr auto calm = 8ms;
constexpr double longestSide = 32767; ///< of any X11 window

/// What keeps a window from being an ordinary one; all but the last are the window manager's to
/// remove on request.
constexpr std::array specialStates{"_NET_WM_STATE_MAXIMIZED_VERT",
                                   "_NET_WM_STATE_MAXIMIZED_HORZ",
                                   "_NET_WM_STATE_FULLSCREEN",
                                   "_NET_WM_STATE_SHADED",
                                   "_NET_WM_STATE_HIDDEN"};
constexpr std::array minimised{specialStates.back()};

/// What stands out of, or within, the four sides of a window.
struct Margins {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;

    double width() const { return left + right; }

    double height() const { return top + bottom; }
};

Margins margins(const std::vector<std::uint32_t>& property) {
    if (property.size() != 4)
        return {};
    return {.left = static_cast<double>(property[0]),
            .right = static_cast<double>(property[1]),
            .top = static_cast<double>(property[2]),
            .bottom = static_cast<double>(property[3])};
}

std::uint32_t side(double length) {
    return static_cast<std::uint32_t>(std::clamp(std::round(length), 1.0, longestSide));
}

/// Places left of and above the desktop are negative, and go over the wire as they are.
std::uint32_t onWire(double coordinate) {
    return static_cast<std::uint32_t>(
        static_cast<std::int32_t>(std::clamp(std::round(coordinate), -longestSide, longestSide)));
}

xcb_window_t xWindow(std::uint64_t window) {
    return static_cast<xcb_window_t>(window);
}

std::string hostName() {
    char name[HOST_NAME_MAX + 1] = {};
    return ::gethostname(name, HOST_NAME_MAX) == 0 ? name : "";
}

} // namespace

/// Where a window is, and what its frame has more or less than it.
struct X11WindowControl::Shape {
    Rectangle client;
    Margins border; ///< of the window manager, around the window
    Margins shadow; ///< drawn by the program, within the window
    bool hasOwnFrame = false;

    Rectangle frame() const {
        return {.x = client.x - border.left + shadow.left,
                .y = client.y - border.top + shadow.top,
                .width = client.width + border.width() - shadow.width(),
                .height = client.height + border.height() - shadow.height()};
    }
};

X11WindowControl::Door& X11WindowControl::door() const {
    return door_ ? *door_ : door_.emplace();
}

/// Whether the display answers. What it told unasked is taken first: it would pile up.
bool X11WindowControl::isReady() const {
    while (waitForEvent(0ms)) {
    }
    return display().answers();
}

Ability X11WindowControl::ability() const {
    if (display().root() == XCB_WINDOW_NONE)
        return Ability::missing("the X11 display can't be reached");
    if (!isReady())
        return Ability::missing("the X11 display was lost");
    if (manager_ == XCB_WINDOW_NONE && !findManager())
        return Ability::missing("no window manager takes requests to move windows");
    return {};
}

/// Remembers it until its own window goes: asking again would make every keystroke wait.
bool X11WindowControl::findManager() const {
    const auto check = display().atom("_NET_SUPPORTING_WM_CHECK");
    const auto told = display().numbers(
        {{display().root(), check}, {display().root(), display().atom("_NET_SUPPORTED")}});
    const auto takesMoves =
        std::ranges::count(told[1], display().atom("_NET_MOVERESIZE_WINDOW")) > 0;
    if (told[0].empty() || !takesMoves)
        return false;
    // Listened to before it is asked, so that its end is not missed.
    const auto window = told[0].front();
    listen(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    // One that has ended leaves the root's property behind; its window is gone or another's.
    if (display().numbers({{window, check}}).front() != told[0]) {
        listen(window, XCB_EVENT_MASK_NO_EVENT);
        return false;
    }
    manager_ = window;
    return true;
}

std::vector<Screen> X11WindowControl::screens() const {
    return door().monitors.all();
}

std::optional<X11WindowControl::Shape> X11WindowControl::shape(Window window) const {
    if (!isReady())
        return std::nullopt;
    const auto sizeAsked = xcb_get_geometry(display().xcb(), window);
    const auto placeAsked =
        xcb_translate_coordinates(display().xcb(), window, display().root(), 0, 0);
    const auto extents = display().numbers({{window, display().atom("_NET_FRAME_EXTENTS")},
                                            {window, display().atom("_GTK_FRAME_EXTENTS")}});
    const XcbOwned<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(display().xcb(), sizeAsked, nullptr));
    const XcbOwned<xcb_translate_coordinates_reply_t> corner(
        xcb_translate_coordinates_reply(display().xcb(), placeAsked, nullptr));
    if (!size || !corner)
        return std::nullopt;
    Shape shape{.client = {.x = static_cast<double>(corner->dst_x),
                           .y = static_cast<double>(corner->dst_y),
                           .width = static_cast<double>(size->width),
                           .height = static_cast<double>(size->height)},
                .border = margins(extents[0]),
                .shadow = margins(extents[1]),
                .hasOwnFrame = !extents[1].empty()};
    // The property is the program's own and may say anything.
    if (shape.shadow.width() >= shape.client.width || shape.shadow.height() >= shape.client.height)
        shape.shadow = {};
    return shape;
}

std::optional<Rectangle> X11WindowControl::frame(std::uint64_t window) const {
    const auto found = shape(xWindow(window));
    return found ? std::optional(found->frame()) : std::nullopt;
}

bool X11WindowControl::isAnyOf(Window window, std::span<const char* const> states) const {
    const auto told = display().numbers({{window, display().atom("_NET_WM_STATE")}}).front();
    return std::ranges::any_of(states, [&](const char* state) {
        return std::ranges::count(told, display().atom(state)) > 0;
    });
}

/// Whether its program draws its frame, and no shadow around it, as it does while it is maximised.
bool X11WindowControl::lacksShadow(Window window) const {
    const auto now = shape(window);
    return now && now->hasOwnFrame && now->shadow.width() + now->shadow.height() == 0;
}

void X11WindowControl::restore(std::uint64_t id) {
    const auto window = xWindow(id);
    if (!isAnyOf(window, specialStates))
        return;
    listen(window, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (isAnyOf(window, minimised))
        xcb_map_window(display().xcb(), window); // ICCCM 4.1.4
    constexpr std::uint32_t remove = 0;
    for (std::size_t i = 0; i + 1 < specialStates.size(); i += 2)
        ask(window,
            "_NET_WM_STATE",
            {remove,
             display().atom(specialStates[i]),
             display().atom(specialStates[i + 1]),
             pager,
             0});

    const auto deadline = Clock::now() + longestRestore;
    const auto timeLeft = [&] {
        return std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    };
    while (timeLeft() > 0ms && isAnyOf(window, specialStates))
        waitForEvent(timeLeft());
    // The state is told before border and size are others, and a program that draws its own frame
    // gives it its shadow back with the picture after that.
    while (timeLeft() > 0ms && lacksShadow(window))
        waitForEvent(timeLeft());
    while (timeLeft() > 0ms && waitForEvent(std::min(timeLeft(), calm))) {
    }
    listen(window, XCB_EVENT_MASK_NO_EVENT);
}

void X11WindowControl::resize(std::uint64_t window, double width, double height) {
    const auto found = shape(xWindow(window));
    if (!found)
        return;
    constexpr std::uint32_t size = 0b1100U << 8;
    place(xWindow(window),
          size,
          {0,
           0,
           side(width - found->border.width() + found->shadow.width()),
           side(height - found->border.height() + found->shadow.height())});
}

void X11WindowControl::move(std::uint64_t window, const Point& topLeft) {
    const auto found = shape(xWindow(window));
    if (!found)
        return;
    constexpr std::uint32_t corner = 0b0011U << 8;
    place(xWindow(window),
          corner,
          {onWire(topLeft.x - found->shadow.left), onWire(topLeft.y - found->shadow.top), 0, 0});
}

/// Asks for the parts of `frame` that `parts` tells: place and size.
void X11WindowControl::place(Window window,
                             std::uint32_t parts,
                             const std::array<std::uint32_t, 4>& frame) const {
    // By this gravity the place is that of the border's corner.
    constexpr std::uint32_t northWest = 1;
    const auto [x, y, width, height] = frame;
    ask(window, "_NET_MOVERESIZE_WINDOW", {northWest | parts | pager << 12, x, y, width, height});
}

void X11WindowControl::close(std::uint64_t window) {
    ask(xWindow(window), "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, pager, 0, 0, 0});
}

bool X11WindowControl::kill(std::uint64_t id) {
    if (!isReady())
        return false;
    const auto window = xWindow(id);
    const auto& clients = door().clients;
    const auto asked = clients.ask(window);
    const auto told = display().numbers({{display().root(), display().atom("_NET_CLIENT_LIST")},
                                         {window, display().atom("_NET_WM_PID")}});
    const auto process = clients.answer(asked);
    const auto own = ::getpid();
    // Any number below those of windows is the X server's own.
    if (std::ranges::count(told[0], window) == 0 || process == own ||
        (!told[1].empty() && told[1].front() == static_cast<std::uint32_t>(own)))
        return false;
    // A program on another machine has the number of a process here that has nothing to do with
    // it, or of the one that carries its windows over.
    const auto machine = display().text({window, XCB_ATOM_WM_CLIENT_MACHINE});
    if (process > 1 && !machine.empty() && machine == hostName() &&
        ::kill(static_cast<pid_t>(process), SIGKILL) == 0)
        return true;
    const XcbOwned<xcb_generic_error_t> refused(
        xcb_request_check(display().xcb(), xcb_kill_client_checked(display().xcb(), window)));
    return !refused && display().answers();
}

/// Asks the window manager.
void X11WindowControl::ask(Window window,
                           const char* request,
                           const std::array<std::uint32_t, 5>& numbers) const {
    if (!isReady())
        return;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = display().atom(request);
    std::ranges::copy(numbers, event.data.data32);
    xcb_send_event(display().xcb(),
                   0,
                   display().root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(display().xcb());
}

void X11WindowControl::listen(Window window, std::uint32_t events) const {
    xcb_change_window_attributes(display().xcb(), window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(display().xcb());
}

/// Takes one event, waiting for it so long at most; false when none came. No other event than the
/// end of the window manager's window says more than that something happened.
bool X11WindowControl::waitForEvent(std::chrono::milliseconds longest) const {
    XcbOwned<xcb_generic_event_t> event(xcb_poll_for_event(display().xcb()));
    if (!event && longest > 0ms && display().answers()) {
        pollfd socket{
            .fd = xcb_get_file_descriptor(display().xcb()), .events = POLLIN, .revents = 0};
        ::poll(&socket, 1, static_cast<int>(longest.count()));
        event.reset(xcb_poll_for_event(display().xcb()));
    }
    if (!event)
        return false;
    const auto& gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(*event);
    if ((event->response_type & 0x7f) == XCB_DESTROY_NOTIFY && gone.window == manager_)
        manager_ = XCB_WINDOW_NONE;
    return true;
}

} // namespace tessarine
