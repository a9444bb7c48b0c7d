#pragma once

#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <poll.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessarine {

/// Another program on the display that has something to do with the clipboard.
class ForeignClient {
public:
    ForeignClient() : window(xcb_generate_id(display.xcb())) {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(display.xcb(),
                          0,
                          window,
                          display.root(),
                          0,
                          0,
                          1,
                          1,
                          0,
                          XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT,
                          XCB_CW_EVENT_MASK,
                          &events);
    }

    void own(const char* selection = "CLIPBOARD") { give(selection, window); }

    void letGo() { give("CLIPBOARD", XCB_WINDOW_NONE); }

    /// Until the display has done all that was asked.
    void finish() const {
        const XcbOwned<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(display.xcb(), xcb_get_input_focus(display.xcb()), nullptr));
    }

    /// The next event of that kind; null when none comes in that time.
    template <typename Event>
    XcbOwned<Event> next(std::uint8_t kind,
                         std::chrono::milliseconds patience = std::chrono::seconds(5)) {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (true) {
            XcbOwned<xcb_generic_event_t> event(xcb_poll_for_event(display.xcb()));
            if (event && (event->response_type & 0x7f) == kind)
                return XcbOwned<Event>(reinterpret_cast<Event*>(event.release()));
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                return nullptr;
            xcb_flush(display.xcb());
            pollfd door{.fd = xcb_get_file_descriptor(display.xcb()), .events = POLLIN};
            if (!event)
                ::poll(&door, 1, static_cast<int>(left.count()));
        }
    }

    /// Until that property of a window is new, or deleted.
    bool sees(xcb_window_t where, xcb_atom_t property, xcb_property_t state) {
        while (const auto event = next<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY)) {
            if (event->window == where && event->atom == property && event->state == state)
                return true;
        }
        return false;
    }

    X11Connection display;
    xcb_window_t window;

private:
    void give(const char* selection, xcb_window_t owner) {
        xcb_set_selection_owner(display.xcb(), owner, display.atom(selection), XCB_CURRENT_TIME);
        finish();
    }
};

/// An owner of the clipboard that answers as a test says, on a thread of its own.
class ForeignOwner {
public:
    using Request = xcb_selection_request_event_t;
    using Answer = std::function<void(ForeignOwner&, const Request&)>;

    /// Owns the clipboard when this returns.
    explicit ForeignOwner(Answer answer) : answer_(std::move(answer)) {
        client.own();
        thread_ = std::thread([this] {
            while (!isOver_) {
                if (const auto request = client.next<Request>(XCB_SELECTION_REQUEST, pause))
                    answer_(*this, *request);
            }
        });
    }

    ~ForeignOwner() {
        isOver_ = true;
        thread_.join();
    }

    ForeignOwner(const ForeignOwner&) = delete;
    ForeignOwner& operator=(const ForeignOwner&) = delete;

    bool asks(const Request& request, const char* target) const {
        return request.target == client.display.atom(target);
    }

    void put(const Request& request,
             const char* type,
             std::uint8_t format,
             const std::string& bytes,
             xcb_prop_mode_t mode = XCB_PROP_MODE_REPLACE) {
        xcb_change_property(client.display.xcb(),
                            mode,
                            request.requestor,
                            request.property,
                            client.display.atom(type),
                            format,
                            static_cast<std::uint32_t>(bytes.size() / (format / 8)),
                            bytes.data());
    }

    void putTargets(const Request& request, const std::vector<std::uint32_t>& atoms) {
        put(request,
            "ATOM",
            32,
            std::string(reinterpret_cast<const char*>(atoms.data()), atoms.size() * 4));
        tell(request);
    }

    /// The answer is there, or there is none.
    void tell(const Request& request, bool isRefused = false) {
        const xcb_selection_notify_event_t event{.response_type = XCB_SELECTION_NOTIFY,
                                                 .pad0 = 0,
                                                 .sequence = 0,
                                                 .time = request.time,
                                                 .requestor = request.requestor,
                                                 .selection = request.selection,
                                                 .target = request.target,
                                                 .property = isRefused ? 0 : request.property};
        std::array<char, 32> bytes{};
        std::memcpy(bytes.data(), &event, sizeof event);
        xcb_send_event(client.display.xcb(), 0, request.requestor, 0, bytes.data());
        xcb_flush(client.display.xcb());
    }

    /// Announces increments; false when nobody wants them.
    bool beginIncrements(const Request& request, std::uint32_t announced) {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(
            client.display.xcb(), request.requestor, XCB_CW_EVENT_MASK, &events);
        put(request,
            "INCR",
            32,
            std::string(reinterpret_cast<const char*>(&announced), sizeof announced));
        tell(request);
        return isTaken(request);
    }

    /// Sends the next piece; false when nobody takes it.
    bool sendPiece(const Request& request, const std::string& bytes) {
        put(request, "text/plain", 8, bytes);
        ++piecesSent;
        return isTaken(request);
    }

    ForeignClient client;
    std::atomic<int> piecesSent = 0;

private:
    static constexpr std::chrono::milliseconds pause{20};

    bool isTaken(const Request& request) {
        while (!isOver_) {
            const auto event = client.next<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY, pause);
            if (event && event->window == request.requestor && event->atom == request.property &&
                event->state == XCB_PROPERTY_DELETE)
                return true;
        }
        return false;
    }

    Answer answer_;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

} // namespace tessarine
