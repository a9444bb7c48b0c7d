#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/pasteboard/wayland/ClipboardClaim.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"
#include "launcherapp/platform/linux/pasteboard/wayland/OfferReading.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace tessarine {

/// What has been asked about the clipboard, each answered once. Types are told from memory, and so
/// is what lies there of our own; other contents come through pipes, side by side. One thread; what
/// is referred to must outlive this.
class OfferCalls {
public:
    using Time = TransferClock::time_point;

    /// What the compositor has told of the clipboard so far.
    struct Board {
        std::uint64_t count = 0;                 ///< the change that brought it; 0 before any
        std::unique_ptr<DataOffer> offer;        ///< null when nothing lies there, or ours
        const ClipboardClaim* content = nullptr; ///< ours; null when it is another's
        std::optional<PasteboardSuccession> succession = {}; ///< of another program's copy
    };

    struct Services {
        DataControl& control;
        const PasteboardMailbox& mailbox;
        const PasteboardNews& news;
    };

    OfferCalls(const Services& services, TransferLimits limits);

    void add(PasteboardCall call, Time now);

    void confirmed(std::uint64_t question);

    /// Takes what has come, ends what is about something that no longer lies there, or takes too
    /// long, and begins what was added. Called after whatever may have changed that.
    void goOn(const Board& board, Time now);

    /// Adds what to sleep on.
    void addDoors(std::vector<pollfd>& doors) const;

    /// When `goOn` has to be called though nothing comes; nothing while nothing is under way.
    std::optional<Time> deadline() const;

    /// Answers all that is left, when the compositor can tell no more.
    void refuseAll(const std::string& problem);

private:
    struct Waiting {
        PasteboardCall call;
        Time since;
    };

    struct UnderWay {
        OfferReading reading;
        std::uint64_t question = 0; ///< whether it was what lay there; 0 before its end
        bool isConfirmed = false;
    };

    std::optional<PasteboardReading> result(UnderWay& each, Time now);
    void beginWaiting(const Board& board, Time now);
    void begin(const PasteboardCall& call, const Board& board, Time now);
    void beginReading(const ReadRequest& request, const DataOffer& offer, Time now);

    Services services_;
    TransferLimits limits_;
    std::deque<Waiting> waiting_; ///< for the compositor to have done with our own write
    std::vector<UnderWay> readings_;
};

} // namespace tessarine
