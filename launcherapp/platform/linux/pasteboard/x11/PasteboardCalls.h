#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"
#include "launcherapp/platform/linux/pasteboard/x11/ClipboardOwnership.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionReading.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace tessarine {

/// What has been asked about the clipboard, one after the other, each answered once. What lies
/// there of our own is told from memory. One thread; what is referred to must outlive this.
class PasteboardCalls {
public:
    using Call = PasteboardCall;
    using Time = TransferClock::time_point;

    /// What the display has told of the clipboard so far.
    struct Board {
        std::uint64_t count = 0; ///< the change that brought what lies there
        std::uint32_t owner = 0; ///< none (0) when nothing lies there
        std::uint32_t time = 0;  ///< the display's, of that change
        std::optional<PasteboardSuccession> succession = {}; ///< of another program's copy
    };

    struct Services {
        const X11Connection& display;
        const SelectionAtoms& atoms;
        const PasteboardMailbox& mailbox;
        const ClipboardOwnership& ownership;
        const PasteboardNews& news;
    };

    PasteboardCalls(const Services& services, TransferLimits limits);

    void add(Call call) { waiting_.push_back(std::move(call)); }

    void answered(const xcb_selection_notify_event_t& event, Time now);
    void propertyChanged(const xcb_property_notify_event_t& event, Time now);

    /// Ends what is about something that no longer lies there, or takes too long, and begins the
    /// next. Called after whatever may have changed that.
    void goOn(const Board& board, Time now);

    std::optional<Time> deadline() const { return reading_.deadline(); }

    /// Answers all that is left, when the display can tell no more.
    void refuseAll(const std::string& problem);

private:
    struct Current {
        Call call;
        std::uint64_t count = 0; ///< of the change it is about
        std::optional<PasteboardSuccession> succession;
    };

    void endWhatIsOver();
    void begin(const Call& call, const Board& board, Time now);
    bool toldAtOnce(const Call& call, const Board& board) const;
    void tell(PasteboardReading reading);

    Services services_;
    SelectionReading reading_;
    std::deque<Call> waiting_;
    std::optional<Current> current_;
};

} // namespace tessarine
