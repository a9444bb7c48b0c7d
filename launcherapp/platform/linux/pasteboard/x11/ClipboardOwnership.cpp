#include "launcherapp/platform/linux/pasteboard/x11/ClipboardOwnership.h"

#include "launcherapp/platform/linux/pasteboard/OfferedTypes.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionWindow.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <utility>

namespace tessarine {

ClipboardOwnership::ClipboardOwnership(const X11Connection& display, const SelectionAtoms& atoms)
    : display_(display), atoms_(atoms),
      window_(openSelectionWindow(display, XCB_EVENT_MASK_PROPERTY_CHANGE)) {}

void ClipboardOwnership::claim(WriteRequest request) {
    if (claim_)
        next_ = std::move(request);
    else
        begin(request);
}

void ClipboardOwnership::begin(const WriteRequest& request) {
    claim_.emplace();
    claim_->content.count = request.count;
    for (const auto& [type, bytes] : request.content.items)
        claim_->content.items.push_back(
            {.type = display_.atom(type), .name = type, .bytes = bytes});
    if (request.content.isSecret) {
        auto mark = secretMark();
        claim_->content.items.push_back({.type = atoms_.passwordManagerHint,
                                         .name = std::move(mark.type),
                                         .bytes = std::move(mark.bytes)});
    }
    askMoment();
}

void ClipboardOwnership::askMoment() const {
    // Appending nothing tells the time all the same (ICCCM 2.1).
    xcb_change_property(display_.xcb(),
                        XCB_PROP_MODE_APPEND,
                        window_,
                        atoms_.moment,
                        XCB_ATOM_INTEGER,
                        32,
                        0,
                        nullptr);
}

std::optional<std::uint64_t> ClipboardOwnership::momentCame(std::uint32_t time) {
    if (!claim_)
        return std::nullopt;
    if (!claim_->isSent) {
        claim_->isSent = true;
        claim_->content.since = time;
        xcb_set_selection_owner(display_.xcb(), window_, atoms_.clipboard, time);
        // What the display says of the ownership comes before it says this.
        askMoment();
        return std::nullopt;
    }
    const auto ended = *std::exchange(claim_, std::nullopt);
    if (auto next = std::exchange(next_, std::nullopt))
        begin(*next);
    return ended.hasArrived ? std::nullopt : std::optional(ended.content.count);
}

std::optional<std::uint64_t> ClipboardOwnership::arrived() {
    if (!claim_ || !claim_->isSent || claim_->hasArrived)
        return std::nullopt;
    claim_->hasArrived = true;
    content_ = std::move(claim_->content);
    return content_->count;
}

} // namespace tessarine
