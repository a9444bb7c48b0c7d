#include "launcherapp/platform/linux/panel/X11PanelWatch.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <QMetaObject>
#include <QSocketNotifier>
#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using Window = X11Connection::Window;

constexpr std::uint32_t whileUp =
    XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
constexpr std::uint32_t presses =
    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN;

/// Where a window is and what it is.
struct Extent {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool isSeen = false;
    bool isManaged = true;

    bool overlaps(const Extent& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }

    bool contains(const Extent& other) const {
        return left <= other.left && top <= other.top && right >= other.right &&
               bottom >= other.bottom;
    }
};

/// Nothing for each window that has gone. One round trip for all.
std::vector<std::optional<Extent>> extents(xcb_connection_t* xcb,
                                           const std::vector<Window>& windows) {
    std::vector<std::pair<xcb_get_geometry_cookie_t, xcb_get_window_attributes_cookie_t>> asked;
    asked.reserve(windows.size());
    for (const auto window : windows)
        asked.emplace_back(xcb_get_geometry(xcb, window), xcb_get_window_attributes(xcb, window));
    std::vector<std::optional<Extent>> result;
    for (const auto& [geometryCookie, attributesCookie] : asked) {
        const XcbOwned<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
        const XcbOwned<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
        if (!geometry || !attributes) {
            result.push_back(std::nullopt);
            continue;
        }
        const int border = 2 * geometry->border_width;
        result.push_back(Extent{.left = geometry->x,
                                .top = geometry->y,
                                .right = geometry->x + geometry->width + border,
                                .bottom = geometry->y + geometry->height + border,
                                .isSeen = attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                                          attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT,
                                .isManaged = !attributes->override_redirect});
    }
    return result;
}

/// Of the numbers that the display gives to requests, and that begin anew after the last.
bool isBefore(std::uint32_t sequence, std::uint32_t other) {
    return static_cast<std::int32_t>(sequence - other) < 0;
}

template <typename Event> const Event& as(const void* event) {
    return *static_cast<const Event*>(event);
}

} // namespace

/// Events since they were last acted upon; several of a kind are acted upon once.
struct X11PanelWatch::Noted {
    bool pressOutside = false;
    bool activeChange = false;
    bool compositorChange = false;
    std::set<Window> moved; ///< top-level windows that were mapped or restacked

    bool any() const { return pressOutside || activeChange || compositorChange || !moved.empty(); }
};

X11PanelWatch::X11PanelWatch(X11Connection& display, Events events)
    : display_(display), events_(std::move(events)), noted_(std::make_unique<Noted>()) {
    if (!display_.answers())
        return;
    activeAtom_ = display_.atom("_NET_ACTIVE_WINDOW");
    compositorAtom_ = display_.atom("_NET_WM_CM_S" + std::to_string(display_.screenNumber()));
    prepareInput();
    watchCompositor();
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(display_.xcb()),
                                                  QSocketNotifier::Read);
    QObject::connect(
        notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { readEvents(); });
    takeQueuedEvents();
}

X11PanelWatch::~X11PanelWatch() = default;

void X11PanelWatch::prepareInput() {
    const auto* extension = xcb_get_extension_data(display_.xcb(), &xcb_input_id);
    if (!extension || !extension->present)
        return;
    // From 2.1 on presses are told while another client grabs the pointer, and 2.2 knows touches.
    const XcbOwned<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        display_.xcb(), xcb_input_xi_query_version(display_.xcb(), 2, 2), nullptr));
    if (version && std::pair(version->major_version, version->minor_version) >=
                       std::pair<std::uint16_t, std::uint16_t>(2, 2))
        inputOpcode_ = extension->major_opcode;
}

void X11PanelWatch::watchCompositor() {
    const auto* extension = xcb_get_extension_data(display_.xcb(), &xcb_xfixes_id);
    if (extension && extension->present) {
        const XcbOwned<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
            display_.xcb(), xcb_xfixes_query_version(display_.xcb(), 1, 0), nullptr));
        if (version)
            selectionEvent_ = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    }
    if (selectionEvent_ >= 0)
        xcb_xfixes_select_selection_input(
            display_.xcb(),
            display_.root(),
            compositorAtom_,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    mixes_ = compositorOwns();
}

bool X11PanelWatch::compositorOwns() const {
    const auto cookie = xcb_get_selection_owner(display_.xcb(), compositorAtom_);
    const XcbOwned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(display_.xcb(), cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

void X11PanelWatch::begin(Window panel) {
    if (!display_.answers() || panel_ == panel)
        return;
    panel_ = panel;
    *noted_ = {.compositorChange = noted_->compositorChange};
    pointerInside_.reset();
    beganAt_ = select(display_.root(), whileUp);
    select(panel_, XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW);
    selectPresses(presses);
    // Asked after events are wanted, so no change can fall between; the answers are read when they
    // are needed.
    activeQuestion_ = askActive();
    pointerQuestion_ = xcb_query_pointer(display_.xcb(), display_.root()).sequence;
    xcb_flush(display_.xcb());
}

void X11PanelWatch::end() {
    if (!display_.answers() || panel_ == 0)
        return;
    for (auto* question : {&activeQuestion_, &pointerQuestion_}) {
        if (*question)
            xcb_discard_reply(display_.xcb(), **question);
        question->reset();
    }
    select(display_.root(), XCB_EVENT_MASK_NO_EVENT);
    select(std::exchange(panel_, XCB_WINDOW_NONE), XCB_EVENT_MASK_NO_EVENT);
    selectPresses(0);
    xcb_flush(display_.xcb());
}

/// The number of the request.
unsigned X11PanelWatch::select(Window window, std::uint32_t mask) {
    return xcb_change_window_attributes(display_.xcb(), window, XCB_CW_EVENT_MASK, &mask).sequence;
}

void X11PanelWatch::selectPresses(std::uint32_t mask) {
    if (inputOpcode_ < 0)
        return;

    const struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } selection{{.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1}, mask};

    xcb_input_xi_select_events(display_.xcb(), display_.root(), 1, &selection.head);
}

void X11PanelWatch::readEvents() {
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(display_.xcb())})
        note(event.get());
    if (!display_.answers())
        notifier_->setEnabled(false); // a closed socket would wake the loop for ever
    act();
}

void X11PanelWatch::takeQueuedEvents() {
    if (!notifier_)
        return;
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_queued_event(display_.xcb())})
        note(event.get());
    if (noted_->any())
        QMetaObject::invokeMethod(
            notifier_.get(), [this] { act(); }, Qt::QueuedConnection);
}

void X11PanelWatch::note(const void* event) {
    const int type = as<xcb_generic_event_t>(event).response_type & 0x7f;
    if (type == selectionEvent_) {
        noted_->compositorChange = true;
        return;
    }
    // What happened while the panel was up the time before may still be under way.
    if (isBefore(as<xcb_generic_event_t>(event).full_sequence, beganAt_))
        return;
    switch (type) {
    case XCB_PROPERTY_NOTIFY:
        if (as<xcb_property_notify_event_t>(event).atom == activeAtom_)
            noted_->activeChange = true;
        return;
    case XCB_ENTER_NOTIFY:
        pointerInside_ = true;
        return;
    case XCB_LEAVE_NOTIFY:
        pointerInside_ = false;
        return;
    case XCB_MAP_NOTIFY:
        noted_->moved.insert(as<xcb_map_notify_event_t>(event).window);
        return;
    case XCB_CONFIGURE_NOTIFY:
        noted_->moved.insert(as<xcb_configure_notify_event_t>(event).window);
        return;
    case XCB_CIRCULATE_NOTIFY:
        noted_->moved.insert(as<xcb_circulate_notify_event_t>(event).window);
        return;
    case XCB_GE_GENERIC: {
        const auto& input = as<xcb_ge_generic_event_t>(event);
        if (input.extension != inputOpcode_)
            return;
        // Of the wheel, which counts as buttons 4 to 7, nobody expects that it sends a window away.
        const auto button = as<xcb_input_raw_button_press_event_t>(event).detail;
        if (input.event_type == XCB_INPUT_RAW_TOUCH_BEGIN ||
            (input.event_type == XCB_INPUT_RAW_BUTTON_PRESS && (button < 4 || button > 7)))
            noted_->pressOutside = noted_->pressOutside || !isPointerInside();
        return;
    }
    default:
        return;
    }
}

void X11PanelWatch::act() {
    const auto noted = std::exchange(*noted_, {});
    if (noted.compositorChange && std::exchange(mixes_, compositorOwns()) != mixes_)
        events_.mixesChanged();
    if (panel_ != 0 && noted.pressOutside)
        events_.pressedOutside();
    if (panel_ != 0 && noted.activeChange) {
        if (const auto question = std::exchange(activeQuestion_, std::nullopt))
            activeBefore_ = answered(*question);
        // That the active window went away is no other one's doing.
        const auto now = answered(askActive());
        if (now != XCB_WINDOW_NONE && now != activeBefore_)
            events_.otherActivated();
    }
    if (panel_ != 0 && !noted.moved.empty())
        lookAbove(noted.moved);
    takeQueuedEvents();
}

unsigned X11PanelWatch::askActive() const {
    return xcb_get_property(display_.xcb(), 0, display_.root(), activeAtom_, XCB_ATOM_WINDOW, 0, 1)
        .sequence;
}

Window X11PanelWatch::answered(unsigned question) const {
    const XcbOwned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(display_.xcb(), {question}, nullptr));
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4)
        return XCB_WINDOW_NONE;
    return *static_cast<const Window*>(xcb_get_property_value(reply.get()));
}

/// As of the last event noted. A press itself doesn't tell where, and by the time that it is read
/// the pointer may be elsewhere.
bool X11PanelWatch::isPointerInside() {
    if (!pointerInside_) {
        pointerInside_ = false;
        if (const auto question = std::exchange(pointerQuestion_, std::nullopt)) {
            const XcbOwned<xcb_query_pointer_reply_t> reply(
                xcb_query_pointer_reply(display_.xcb(), {*question}, nullptr));
            pointerInside_ = reply && reply->child == panel_;
        }
    }
    return *pointerInside_;
}

/// Tells of those among the windows that stand above the panel and over it. Others that do stood
/// there when it came up, a compositor's overlay for one, and can't be helped.
void X11PanelWatch::lookAbove(const std::set<Window>& moved) {
    const XcbOwned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        display_.xcb(), xcb_query_tree(display_.xcb(), display_.root()), nullptr));
    if (!tree)
        return;
    const auto* first = xcb_query_tree_children(tree.get());
    const auto* last = first + xcb_query_tree_children_length(tree.get());
    const auto* at = std::find(first, last, panel_);
    if (at == last)
        return;
    std::vector<Window> asked{panel_};
    std::copy_if(at + 1, last, std::back_inserter(asked), [&](Window window) {
        return moved.contains(window);
    });
    const auto found = extents(display_.xcb(), asked);
    if (!found.front())
        return;
    const auto& panel = *found.front();
    bool isOverlapped = false;
    for (std::size_t i = 1; i < found.size(); ++i) {
        const auto& above = found[i];
        if (!above || !above->isSeen || !above->overlaps(panel))
            continue;
        if (!above->isManaged && above->contains(panel))
            return events_.covered();
        isOverlapped = true;
    }
    if (isOverlapped)
        events_.overlapped();
}

} // namespace tessarine
