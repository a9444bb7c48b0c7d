#include "launcherapp/platform/linux/pasteboard/x11/SelectionReading.h"

#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionWindow.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// Fetched at once, in units of four bytes: a megabyte, so that an owner who puts gigabytes into a
/// property costs no more before the limit is noticed.
constexpr std::uint32_t portion = 262144;

/// Windows of questions that were given up. Destroying one at once would be an X error for an owner
/// who still answers, and many programs end on it; it waits until that many are there.
constexpr std::size_t mostRetired = 8;

using Outcome = PasteboardReading::Outcome;

} // namespace

SelectionReading::SelectionReading(const X11Connection& display,
                                   const SelectionAtoms& atoms,
                                   TransferLimits limits)
    : display_(display), atoms_(atoms), limits_(limits) {}

void SelectionReading::ask(const Question& question, Time now) {
    abandon();
    if (window_ == XCB_WINDOW_NONE)
        window_ = openSelectionWindow(display_, XCB_EVENT_MASK_PROPERTY_CHANGE);
    question_ = question;
    bytes_ = {};
    state_ = State::waiting;
    begun_ = lastSign_ = now;
    xcb_convert_selection(display_.xcb(),
                          window_,
                          atoms_.clipboard,
                          question.target,
                          atoms_.transfer,
                          question.timestamp);
}

std::optional<PasteboardReading>
SelectionReading::answered(const xcb_selection_notify_event_t& event, Time now) {
    if (state_ != State::waiting || event.requestor != window_ || event.target != question_.target)
        return std::nullopt;
    lastSign_ = now;
    if (event.property == XCB_ATOM_NONE)
        return failed("the program that owns the clipboard refused it");
    if (event.property != atoms_.transfer)
        return failed("the program that owns the clipboard answered something else");
    const XcbOwned<xcb_get_property_reply_t> kind(xcb_get_property_reply(
        display_.xcb(),
        xcb_get_property(display_.xcb(), 0, window_, atoms_.transfer, XCB_ATOM_ANY, 0, 0),
        nullptr));
    if (kind && kind->type == atoms_.increments)
        return beganIncrements();
    switch (takeProperty()) {
    case Taken::part:
    case Taken::end:
        return finished(Outcome::complete);
    case Taken::tooMuch:
        return finished(Outcome::tooLarge);
    case Taken::nothing:
    case Taken::anotherForm:
        break;
    }
    return failed("the program that owns the clipboard answered in another form");
}

std::optional<PasteboardReading> SelectionReading::beganIncrements() {
    if (question_.items == Items::atoms)
        return failed("the program that owns the clipboard answered in another form");
    // The announced size is not looked at: it is a guess at best, and the limit holds without it.
    state_ = State::increments;
    xcb_delete_property(display_.xcb(), window_, atoms_.transfer);
    return std::nullopt;
}

std::optional<PasteboardReading>
SelectionReading::propertyChanged(const xcb_property_notify_event_t& event, Time now) {
    if (state_ == State::idle || event.window != window_ || event.atom != atoms_.transfer ||
        event.state != XCB_PROPERTY_NEW_VALUE)
        return std::nullopt;
    lastSign_ = now;
    // An owner may fill the property step by step before it says that the answer is there.
    if (state_ != State::increments)
        return std::nullopt;
    switch (takeProperty()) {
    case Taken::nothing: // it was taken along with the step before
    case Taken::part:
        return std::nullopt;
    case Taken::end:
        return finished(Outcome::complete);
    case Taken::tooMuch:
        retireWindow();
        return finished(Outcome::tooLarge);
    case Taken::anotherForm:
        break;
    }
    retireWindow();
    return failed("the program that owns the clipboard went on in another form");
}

std::optional<PasteboardReading> SelectionReading::expired(Time now) {
    if (state_ == State::idle || now < *deadline())
        return std::nullopt;
    const bool isSilent = now - lastSign_ >= limits_.silence;
    abandon();
    return failed(isSilent ? "the program that owns the clipboard doesn't answer"
                           : "the program that owns the clipboard takes too long");
}

std::optional<SelectionReading::Time> SelectionReading::deadline() const {
    if (state_ == State::idle)
        return std::nullopt;
    return std::min(lastSign_ + limits_.silence, begun_ + limits_.whole);
}

void SelectionReading::abandon() {
    if (state_ != State::idle)
        retireWindow();
    bytes_ = {};
    state_ = State::idle;
}

std::optional<PasteboardReading> SelectionReading::finished(Outcome outcome) {
    state_ = State::idle;
    PasteboardReading reading{.outcome = outcome, .bytes = std::exchange(bytes_, {})};
    if (outcome != Outcome::complete)
        reading.bytes = {};
    return reading;
}

std::optional<PasteboardReading> SelectionReading::failed(std::string problem) {
    auto reading = finished(Outcome::failed);
    reading->problem = std::move(problem);
    return reading;
}

bool SelectionReading::hasRightForm(std::uint32_t type, std::uint8_t format) const {
    if (question_.items == Items::bytes)
        return format == 8;
    // Some programs give a list of targets the type of the question.
    return format == 32 && (type == XCB_ATOM_ATOM || type == atoms_.targets);
}

SelectionReading::Taken SelectionReading::takeProperty() {
    const auto taken = copyProperty();
    // Its removal asks an owner who gives increments for more.
    const bool isEnough = taken == Taken::tooMuch || taken == Taken::anotherForm;
    if (taken != Taken::nothing && (state_ == State::waiting || !isEnough))
        xcb_delete_property(display_.xcb(), window_, atoms_.transfer);
    return taken;
}

SelectionReading::Taken SelectionReading::copyProperty() {
    for (std::uint32_t offset = 0;; offset += portion) {
        const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            display_.xcb(),
            xcb_get_property(
                display_.xcb(), 0, window_, atoms_.transfer, XCB_ATOM_ANY, offset, portion),
            nullptr));
        if (!reply || reply->type == XCB_ATOM_NONE)
            return offset == 0 ? Taken::nothing : Taken::anotherForm;
        if (!hasRightForm(reply->type, reply->format))
            return Taken::anotherForm;
        const auto count = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
        if (count + reply->bytes_after > question_.limitBytes - bytes_.size())
            return Taken::tooMuch;
        if (count == 0)
            return Taken::end;
        keep(xcb_get_property_value(reply.get()), count);
        if (reply->bytes_after == 0)
            return Taken::part;
    }
}

void SelectionReading::keep(const void* bytes, std::size_t count) {
    // Doubling beyond the limit would take more memory than the caller grants.
    const auto needed = bytes_.size() + count;
    if (needed > bytes_.capacity())
        bytes_.reserve(std::min(question_.limitBytes, std::max(needed, 2 * bytes_.capacity())));
    bytes_.append(static_cast<const char*>(bytes), count);
}

void SelectionReading::retireWindow() {
    const std::uint32_t silent = XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(display_.xcb(), window_, XCB_CW_EVENT_MASK, &silent);
    retired_.push_back(std::exchange(window_, XCB_WINDOW_NONE));
    if (retired_.size() <= mostRetired)
        return;
    xcb_destroy_window(display_.xcb(), retired_.front());
    retired_.erase(retired_.begin());
}

} // namespace tessarine
