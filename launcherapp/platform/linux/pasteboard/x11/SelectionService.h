#pragma once

#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionAtoms.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct xcb_property_notify_event_t;
struct xcb_selection_request_event_t;

namespace tessarine {

class X11Connection;

/// What we have put on the clipboard, as the display knows it.
struct OwnedContent {
    struct Item {
        SelectionAtoms::Atom type = 0;
        std::string name;
        std::shared_ptr<const std::string> bytes; ///< never null
    };

    std::uint64_t count = 0; ///< of the change that put it there
    std::uint32_t since = 0; ///< the display's time from which on we own the clipboard
    std::vector<Item> items;
};

/// Hands what we own to the programs that ask for it, as ICCCM 2.2, 2.6.2 and 2.7.2 have it:
/// several at once, larger things in increments, each as fast as its requestor takes them. One that
/// dies or stops taking costs nothing beyond the limit of silence. One thread; what is referred to
/// must outlive this.
class SelectionService {
public:
    using Atom = SelectionAtoms::Atom;
    using Time = TransferClock::time_point;

    /// Requestors beyond that many at the same time are refused what needs increments.
    static constexpr std::size_t mostTransfers = 32;

    SelectionService(const X11Connection& display,
                     const SelectionAtoms& atoms,
                     TransferLimits limits);

    /// Null when nothing of ours is there: the request is refused.
    void serve(const xcb_selection_request_event_t& request, const OwnedContent* content, Time now);

    void propertyChanged(const xcb_property_notify_event_t& event, Time now);
    void windowGone(std::uint32_t window);
    void expire(Time now);

    /// When `expire` has to be called; nothing while nobody takes anything.
    std::optional<Time> deadline() const;

private:
    struct Transfer {
        std::uint32_t window = 0;
        Atom property = 0;
        Atom type = 0;
        std::shared_ptr<const std::string> bytes;
        std::size_t sent = 0;
        Time lastSign;
    };

    /// Where a requestor wants something.
    struct Place {
        std::uint32_t window = 0;
        Atom property = 0;
    };

    bool put(const Place& place, Atom target, const OwnedContent& content, Time now);
    bool putItem(const Place& place, const OwnedContent::Item& item, Time now);
    bool putAll(const Place& place, const OwnedContent& content, Time now);
    void putNumbers(const Place& place, Atom type, const std::vector<std::uint32_t>& numbers);
    bool begin(const Place& place, const OwnedContent::Item& item, Time now);
    void sendNext(Transfer& transfer);
    std::vector<Transfer>::iterator end(std::vector<Transfer>::iterator transfer);

    const X11Connection& display_;
    const SelectionAtoms& atoms_;
    TransferLimits limits_;
    std::size_t largestPiece_;
    std::vector<Transfer> transfers_;
};

} // namespace tessarine
