#include "launcherapp/platform/linux/pasteboard/x11/SelectionService.h"

#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace tessarine {

namespace {

/// The display keeps a piece for each requestor until it takes it. ICCCM 2.5 has no property grow
/// beyond a quarter of the largest request.
constexpr std::size_t mostPieceBytes = std::size_t{1} << 20;

/// Asked for at once. We never offer as many types.
constexpr std::uint32_t mostPairs = 64;

std::size_t quarterOfLargestRequest(const X11Connection& display) {
    constexpr std::size_t unitBytes = 4;
    return std::size_t{xcb_get_maximum_request_length(display.xcb())} * unitBytes / 4;
}

/// Times of the display wrap around after 49 days.
bool isBefore(xcb_timestamp_t time, xcb_timestamp_t other) {
    return static_cast<std::int32_t>(time - other) < 0;
}

void notify(const X11Connection& display,
            const xcb_selection_request_event_t& request,
            SelectionAtoms::Atom property) {
    const xcb_selection_notify_event_t event{.response_type = XCB_SELECTION_NOTIFY,
                                             .pad0 = 0,
                                             .sequence = 0,
                                             .time = request.time,
                                             .requestor = request.requestor,
                                             .selection = request.selection,
                                             .target = request.target,
                                             .property = property};
    std::array<char, 32> bytes{}; // the length of every event that is sent
    std::memcpy(bytes.data(), &event, sizeof event);
    xcb_send_event(display.xcb(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes.data());
}

} // namespace

SelectionService::SelectionService(const X11Connection& display,
                                   const SelectionAtoms& atoms,
                                   TransferLimits limits)
    : display_(display), atoms_(atoms), limits_(limits),
      largestPiece_(std::min(mostPieceBytes, quarterOfLargestRequest(display))) {}

void SelectionService::serve(const xcb_selection_request_event_t& request,
                             const OwnedContent* content,
                             Time now) {
    const bool isOfOurTime =
        content && (request.time == XCB_CURRENT_TIME || !isBefore(request.time, content->since));
    if (!isOfOurTime || request.selection != atoms_.clipboard)
        return notify(display_, request, XCB_ATOM_NONE);
    // Requestors from before ICCCM name no property and mean the one named as the target.
    const Place place{.window = request.requestor,
                      .property =
                          request.property != XCB_ATOM_NONE ? request.property : request.target};
    const bool isPut = request.target != atoms_.multiple
                           ? put(place, request.target, *content, now)
                           : request.property != XCB_ATOM_NONE && putAll(place, *content, now);
    notify(display_, request, isPut ? place.property : Atom{XCB_ATOM_NONE});
}

bool SelectionService::put(const Place& place, Atom target, const OwnedContent& content, Time now) {
    if (target == atoms_.targets) {
        std::vector<Atom> targets{atoms_.targets, atoms_.multiple, atoms_.timestamp};
        for (const auto& item : content.items)
            targets.push_back(item.type);
        putNumbers(place, XCB_ATOM_ATOM, targets);
        return true;
    }
    if (target == atoms_.timestamp) {
        putNumbers(place, XCB_ATOM_INTEGER, {content.since});
        return true;
    }
    const auto item = std::ranges::find(content.items, target, &OwnedContent::Item::type);
    return item != content.items.end() && putItem(place, *item, now);
}

bool SelectionService::putItem(const Place& place, const OwnedContent::Item& item, Time now) {
    if (item.bytes->size() > largestPiece_)
        return begin(place, item, now);
    xcb_change_property(display_.xcb(),
                        XCB_PROP_MODE_REPLACE,
                        place.window,
                        place.property,
                        item.type,
                        8,
                        static_cast<std::uint32_t>(item.bytes->size()),
                        item.bytes->data());
    return true;
}

bool SelectionService::putAll(const Place& place, const OwnedContent& content, Time now) {
    const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        display_.xcb(),
        xcb_get_property(
            display_.xcb(), 0, place.window, place.property, XCB_ATOM_ANY, 0, 2 * mostPairs),
        nullptr));
    if (!reply || reply->format != 32 || reply->bytes_after > 0)
        return false;
    const auto* first = static_cast<const Atom*>(xcb_get_property_value(reply.get()));
    std::vector<Atom> pairs(first, first + xcb_get_property_value_length(reply.get()) / 4);
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        const Place pair{.window = place.window, .property = pairs[i + 1]};
        if (pair.property == XCB_ATOM_NONE || !put(pair, pairs[i], content, now))
            pairs[i] = XCB_ATOM_NONE;
    }
    putNumbers(place, atoms_.atomPairs, pairs);
    return true;
}

void SelectionService::putNumbers(const Place& place,
                                  Atom type,
                                  const std::vector<std::uint32_t>& numbers) {
    xcb_change_property(display_.xcb(),
                        XCB_PROP_MODE_REPLACE,
                        place.window,
                        place.property,
                        type,
                        32,
                        static_cast<std::uint32_t>(numbers.size()),
                        numbers.data());
}

bool SelectionService::begin(const Place& place, const OwnedContent::Item& item, Time now) {
    // One that asks anew for the same place has given up on what it had begun to take.
    std::erase_if(transfers_, [&](const Transfer& transfer) {
        return transfer.window == place.window && transfer.property == place.property;
    });
    if (transfers_.size() >= mostTransfers)
        return false;
    const std::uint32_t watched = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(display_.xcb(), place.window, XCB_CW_EVENT_MASK, &watched);
    const auto size =
        std::min<std::size_t>(item.bytes->size(), std::numeric_limits<std::int32_t>::max());
    putNumbers(place, atoms_.increments, {static_cast<std::uint32_t>(size)});
    transfers_.push_back({.window = place.window,
                          .property = place.property,
                          .type = item.type,
                          .bytes = item.bytes,
                          .lastSign = now});
    return true;
}

void SelectionService::propertyChanged(const xcb_property_notify_event_t& event, Time now) {
    if (event.state != XCB_PROPERTY_DELETE)
        return;
    const auto taken = std::ranges::find_if(transfers_, [&](const Transfer& transfer) {
        return transfer.window == event.window && transfer.property == event.atom;
    });
    if (taken == transfers_.end())
        return;
    taken->lastSign = now;
    const bool isLast = taken->sent == taken->bytes->size();
    sendNext(*taken);
    if (isLast)
        end(taken);
}

void SelectionService::sendNext(Transfer& transfer) {
    const auto count = std::min(largestPiece_, transfer.bytes->size() - transfer.sent);
    xcb_change_property(display_.xcb(),
                        XCB_PROP_MODE_REPLACE,
                        transfer.window,
                        transfer.property,
                        transfer.type,
                        8,
                        static_cast<std::uint32_t>(count),
                        transfer.bytes->data() + transfer.sent);
    transfer.sent += count;
}

void SelectionService::windowGone(std::uint32_t window) {
    std::erase_if(transfers_, [&](const Transfer& transfer) { return transfer.window == window; });
}

void SelectionService::expire(Time now) {
    for (auto each = transfers_.begin(); each != transfers_.end();)
        each = now - each->lastSign >= limits_.silence ? end(each) : each + 1;
}

std::optional<SelectionService::Time> SelectionService::deadline() const {
    const auto next = std::ranges::min_element(transfers_, {}, &Transfer::lastSign);
    if (next == transfers_.end())
        return std::nullopt;
    return next->lastSign + limits_.silence;
}

std::vector<SelectionService::Transfer>::iterator
SelectionService::end(std::vector<Transfer>::iterator transfer) {
    const auto window = transfer->window;
    const auto next = transfers_.erase(transfer);
    if (std::ranges::find(transfers_, window, &Transfer::window) == transfers_.end()) {
        const std::uint32_t silent = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(display_.xcb(), window, XCB_CW_EVENT_MASK, &silent);
    }
    return next;
}

} // namespace tessarine
