#include "launcherapp/platform/linux/pasteboard/x11/PasteboardWorker.h"

#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/pasteboard/OwnerSuccession.h"
#include "launcherapp/platform/linux/pasteboard/x11/ClipboardOwnership.h"
#include "launcherapp/platform/linux/pasteboard/x11/PasteboardCalls.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionService.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"
#include "launcherapp/platform/linux/x11/X11Extension.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <chrono>
#include <poll.h>
#include <utility>

namespace tessarine {

namespace {

constexpr auto displayGone = "the display is gone";
constexpr int forever = -1;

/// Works while the display answers.
class Worker {
public:
    Worker(const X11Connection& display,
           PasteboardMailbox& mailbox,
           TransferLimits limits,
           const PasteboardNews& news)
        : display_(display), mailbox_(mailbox), news_(news), atoms_(display),
          service_(display, atoms_, limits), calls_({.display = display,
                                                     .atoms = atoms_,
                                                     .mailbox = mailbox,
                                                     .ownership = ownership_,
                                                     .news = news},
                                                    limits) {}

    /// False when the display doesn't tell of changes.
    bool watch();

    /// Until the mailbox is closed, or the display is gone.
    void run();

    void refuseAll(const std::string& problem) { calls_.refuseAll(problem); }

private:
    void takeEvents();
    bool takeQueuedEvent();
    void take(const xcb_generic_event_t& event);
    void ownerChanged(const xcb_xfixes_selection_notify_event_t& event);
    void followSuccession(std::uint32_t before);
    void propertyChanged(const xcb_property_notify_event_t& event);
    int millisecondsToSleep() const;
    void sleep() const;

    const X11Connection& display_;
    PasteboardMailbox& mailbox_;
    const PasteboardNews& news_;
    const SelectionAtoms atoms_;
    ClipboardOwnership ownership_{display_, atoms_};
    SelectionService service_;
    PasteboardCalls calls_;
    PasteboardCalls::Board board_;
    OwnerSuccession succession_;
    std::uint8_t ownerEvent_ = 0;
    TransferClock::time_point now_;
};

bool Worker::watch() {
    const auto* extension = x11Extension(display_.xcb(), xcb_xfixes_id);
    if (!extension)
        return false;
    ownerEvent_ = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    const XcbOwned<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        display_.xcb(), xcb_xfixes_query_version(display_.xcb(), 1, 0), nullptr));
    xcb_xfixes_select_selection_input(display_.xcb(),
                                      ownership_.window(),
                                      atoms_.clipboard,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        display_.xcb(), xcb_get_selection_owner(display_.xcb(), atoms_.clipboard), nullptr));
    if (!version || !owner)
        return false;
    board_ = {.count = PasteboardMailbox::firstCount, .owner = owner->owner};
    return true;
}

void Worker::run() {
    while (true) {
        now_ = TransferClock::now();
        if (!takeRequests(
                mailbox_,
                [this](WriteRequest write) { ownership_.claim(std::move(write)); },
                [this](PasteboardCall call) { calls_.add(std::move(call)); }))
            return;
        takeEvents();
        service_.expire(now_);
        calls_.goOn(board_, now_);
        xcb_flush(display_.xcb());
        if (!display_.answers())
            return;
        // What was asked of the display may have brought events along, which nothing would wake
        // for.
        if (!takeQueuedEvent())
            sleep();
    }
}

void Worker::takeEvents() {
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(display_.xcb())})
        take(*event);
}

bool Worker::takeQueuedEvent() {
    const XcbOwned<xcb_generic_event_t> event(xcb_poll_for_queued_event(display_.xcb()));
    if (event)
        take(*event);
    return event != nullptr;
}

void Worker::take(const xcb_generic_event_t& event) {
    constexpr std::uint8_t sentByAnother = 0x80;
    const auto kind = static_cast<std::uint8_t>(event.response_type & ~sentByAnother);
    if (kind == ownerEvent_ && event.response_type == kind)
        return ownerChanged(reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event));
    switch (kind) {
    case XCB_SELECTION_NOTIFY:
        return calls_.answered(reinterpret_cast<const xcb_selection_notify_event_t&>(event), now_);
    case XCB_PROPERTY_NOTIFY:
        return propertyChanged(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    case XCB_SELECTION_REQUEST:
        return service_.serve(reinterpret_cast<const xcb_selection_request_event_t&>(event),
                              ownership_.content(),
                              now_);
    case XCB_DESTROY_NOTIFY:
        return service_.windowGone(
            reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
    case 0: {
        // Requestors may be gone at any moment; that alone is an error to expect.
        const auto& error = reinterpret_cast<const xcb_value_error_t&>(event);
        if (error.error_code == XCB_WINDOW)
            service_.windowGone(error.bad_value);
        return;
    }
    default:
        return;
    }
}

void Worker::ownerChanged(const xcb_xfixes_selection_notify_event_t& event) {
    const auto before = std::exchange(board_.owner, event.owner);
    board_.time = event.timestamp;
    if (event.owner == ownership_.window()) {
        if (const auto count = ownership_.arrived()) {
            board_.count = *count;
            mailbox_.arrived(*count);
        }
        succession_.ended();
        board_.succession.reset();
        return;
    }
    ownership_.lost();
    const auto count = mailbox_.othersChange();
    if (!count)
        return;
    board_.count = *count;
    followSuccession(before);
    if (event.subtype != XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER &&
        event.owner == XCB_WINDOW_NONE && before != XCB_WINDOW_NONE &&
        before != ownership_.window())
        news_.abandoned(*count - 1);
}

/// The board is that of another program's change already.
void Worker::followSuccession(std::uint32_t before) {
    if (board_.owner == XCB_WINDOW_NONE) {
        if (before != XCB_WINDOW_NONE && before != ownership_.window())
            succession_.emptied(board_.count - 1, now_);
    } else if (board_.owner == before) {
        succession_.takenAgain(board_.count);
    } else {
        succession_.taken(board_.count, now_);
    }
    board_.succession = succession_.current();
}

void Worker::propertyChanged(const xcb_property_notify_event_t& event) {
    if (event.window != ownership_.window()) {
        calls_.propertyChanged(event, now_);
        service_.propertyChanged(event, now_);
        return;
    }
    if (event.atom != atoms_.moment)
        return;
    if (const auto refused = ownership_.momentCame(event.time)) {
        if (const auto count = mailbox_.refused(*refused))
            board_.count = *count;
    }
}

int Worker::millisecondsToSleep() const {
    const auto one = calls_.deadline();
    const auto other = service_.deadline();
    if (!one && !other)
        return forever;
    const auto next = std::min(one.value_or(TransferClock::time_point::max()),
                               other.value_or(TransferClock::time_point::max()));
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - TransferClock::now());
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

void Worker::sleep() const {
    pollfd doors[] = {{.fd = xcb_get_file_descriptor(display_.xcb()), .events = POLLIN},
                      {.fd = mailbox_.wakeDescriptor(), .events = POLLIN}};
    ::poll(doors, std::size(doors), millisecondsToSleep());
}

} // namespace

void runPasteboardWorker(const X11Connection& display,
                         PasteboardMailbox& mailbox,
                         TransferLimits limits,
                         const PasteboardNews& news) {
    std::string problem = displayGone;
    if (display.answers()) {
        Worker worker(display, mailbox, limits, news);
        if (worker.watch())
            worker.run();
        else if (display.answers())
            problem = "the display doesn't tell when the clipboard changes";
        mailbox.lose(problem);
        news.abilityChanged();
        worker.refuseAll(problem);
    }
    mailbox.lose(problem);
    refuseRequests(mailbox, news, problem);
}

} // namespace tessarine
