#include "launcherapp/platform/linux/pasteboard/wayland/DataControlWorker.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/pasteboard/OwnerSuccession.h"
#include "launcherapp/platform/linux/pasteboard/wayland/ClipboardClaim.h"
#include "launcherapp/platform/linux/pasteboard/wayland/ContentWriters.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"
#include "launcherapp/platform/linux/pasteboard/wayland/OfferCalls.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <utility>

namespace tessarine {

namespace {

constexpr auto displayGone = "the Wayland display is gone";
constexpr auto noSeat = "this Wayland session has no seat, and so no clipboard";
constexpr auto hiddenNow = "the Wayland compositor shows its clipboard no more";

/// Works while the compositor is there.
class Worker {
public:
    /// What lies there has the count `first`.
    Worker(WaylandConnection& display,
           PasteboardMailbox& mailbox,
           TransferLimits limits,
           const PasteboardNews& news,
           std::uint64_t first)
        : display_(display), mailbox_(mailbox), news_(news), first_(first), control_(display),
          calls_({.control = control_, .mailbox = mailbox, .news = news}, limits) {}

    /// Until the mailbox is closed, which is told as false, or the compositor is gone.
    bool run();

    /// Ends what is under way.
    void giveUp(const std::string& problem) {
        calls_.refuseAll(problem);
        if (claim_)
            mailbox_.refused(claim_->content.count);
    }

private:
    void claim(WriteRequest request);
    void lookForSeat();
    void take(DataControl::Selected& event);
    void take(DataControl::Wanted& event);
    void take(const DataControl::Cancelled& event);
    void take(const DataControl::Confirmed& event);
    void settle();
    void sleep(bool isAllSent) const;

    WaylandConnection& display_;
    PasteboardMailbox& mailbox_;
    const PasteboardNews& news_;
    const std::uint64_t first_;
    DataControl control_;
    ContentWriters writers_;
    OfferCalls calls_;
    OfferCalls::Board board_;
    OwnerSuccession succession_;
    std::optional<ClipboardClaim> claim_; ///< our write on its way to the compositor
    std::optional<ClipboardClaim> owned_; ///< what of ours is there
    bool hasSeat_ = true;                 ///< as the ability has it
    bool hadSeat_ = false;                ///< ever
    std::uint64_t beginning_ = 0;         ///< the question whose answer ends what was there before
    TransferClock::time_point now_;
};

bool Worker::run() {
    lookForSeat();
    beginning_ = control_.confirm();
    while (true) {
        now_ = TransferClock::now();
        if (!takeRequests(
                mailbox_,
                [this](WriteRequest write) { claim(std::move(write)); },
                [this](PasteboardCall call) { calls_.add(std::move(call), now_); }))
            return false;
        if (!display_.dispatchWhatCame())
            return true;
        lookForSeat();
        for (auto& event : control_.take())
            std::visit([this](auto& each) { take(each); }, event);
        writers_.goOn(now_);
        calls_.goOn(board_, now_);
        const bool isAllSent = wl_display_flush(display_.display()) >= 0;
        if (!isAllSent && errno != EAGAIN)
            return true;
        sleep(isAllSent);
    }
}

void Worker::claim(WriteRequest request) {
    claim_ = ClipboardClaim::of(std::move(request), control_);
    if (claim_->isCancelled)
        settle(); // the seat has gone in the same moment
}

void Worker::lookForSeat() {
    const bool hasSeat = control_.hasSeat();
    // What lies there at the first look has been there before.
    const bool isFirst = hasSeat && !std::exchange(hadSeat_, true);
    if (std::exchange(hasSeat_, hasSeat) == hasSeat)
        return;
    if (hasSeat) {
        if (isFirst)
            beginning_ = control_.confirm();
        mailbox_.regain();
        return news_.abilityChanged();
    }
    mailbox_.lose(control_.isEnded() ? hiddenNow : noSeat);
    owned_.reset();
    board_.offer.reset();
    board_.content = nullptr;
    if (claim_) {
        claim_->isCancelled = true;
        settle();
    } else if (const auto count = hadSeat_ ? mailbox_.othersChange() : std::nullopt) {
        board_.count = *count;
    }
    news_.abilityChanged();
}

void Worker::take(DataControl::Selected& event) {
    const bool wasAnothers = board_.offer != nullptr;
    board_.offer = std::move(event.offer);
    // While our own is on its way, the confirmation tells whose this is.
    if (beginning_ != 0 || claim_)
        return;
    owned_.reset();
    board_.content = nullptr;
    const auto count = mailbox_.othersChange();
    if (!count)
        return;
    board_.count = *count;
    if (board_.offer)
        succession_.taken(*count, now_);
    else if (wasAnothers)
        succession_.emptied(*count - 1, now_);
    board_.succession = succession_.current();
    if (wasAnothers && !board_.offer)
        news_.abandoned(*count - 1);
}

void Worker::take(DataControl::Wanted& event) {
    for (const auto* ours : {&claim_, &owned_}) {
        if (!*ours || (*ours)->source != event.source)
            continue;
        if (const auto* item = (*ours)->item(event.type))
            writers_.add(item->bytes, std::move(event.into), now_);
        return;
    }
}

void Worker::take(const DataControl::Cancelled& event) {
    if (claim_ && claim_->source == event.source)
        claim_->isCancelled = true;
    if (owned_ && owned_->source == event.source) {
        owned_.reset();
        board_.content = nullptr;
    }
}

void Worker::take(const DataControl::Confirmed& event) {
    calls_.confirmed(event.question);
    if (event.question == beginning_)
        beginning_ = 0;
    if (claim_ && claim_->question == event.question)
        settle();
    if (beginning_ == 0 && board_.count == 0)
        board_.count = first_;
}

/// The compositor has done with our write, one way or the other.
void Worker::settle() {
    const auto count = claim_->content.count;
    if (claim_->isCancelled) {
        if (const auto after = mailbox_.refused(count))
            board_.count = *after;
        claim_.reset();
        return;
    }
    owned_ = std::exchange(claim_, std::nullopt);
    succession_.ended();
    board_ = {.count = count, .offer = nullptr, .content = &*owned_};
    mailbox_.arrived(count);
}

void Worker::sleep(bool isAllSent) const {
    constexpr int forever = -1;
    auto doors = writers_.doors();
    calls_.addDoors(doors);
    const short display = isAllSent ? POLLIN : POLLIN | POLLOUT;
    doors.push_back({.fd = display_.descriptor(), .events = display, .revents = 0});
    doors.push_back({.fd = mailbox_.wakeDescriptor(), .events = POLLIN, .revents = 0});
    int patience = forever;
    if (const auto next = calls_.deadline()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*next - TransferClock::now());
        patience = static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }
    ::poll(doors.data(), doors.size(), patience);
}

/// Works as long as the compositor is there. False once the mailbox is closed.
bool workWhileThere(WaylandConnection& display,
                    PasteboardMailbox& mailbox,
                    TransferLimits limits,
                    const PasteboardNews& news,
                    std::uint64_t first) {
    Worker worker(display, mailbox, limits, news, first);
    const bool isLost = worker.run();
    mailbox.lose(displayGone);
    news.abilityChanged();
    worker.giveUp(displayGone);
    return isLost;
}

} // namespace

void runDataControlWorker(std::unique_ptr<WaylandConnection>& display,
                          PasteboardMailbox& mailbox,
                          TransferLimits limits,
                          const PasteboardNews& news) {
    auto first = PasteboardMailbox::firstCount;
    bool hasWorked = false;
    auto pause = std::chrono::duration_cast<TransferClock::duration>(firstReconnection);
    while (true) {
        if (display->answers()) {
            if (!DataControl::isOffered(display->registry()))
                break;
            if (!workWhileThere(*display, mailbox, limits, news, first))
                return;
            pause = firstReconnection;
            hasWorked = true;
        }
        const auto again = TransferClock::now() + pause;
        if (!refuseRequests(mailbox, news, mailbox.ability().reason, again))
            return;
        pause = std::min<TransferClock::duration>(pause * 2, longestReconnection);
        display = std::make_unique<WaylandConnection>();
        if (!display->answers())
            continue;
        if (!DataControl::isOffered(display->registry())) {
            mailbox.lose(std::string(DesktopTable::hiddenClipboard));
            news.abilityChanged();
            break;
        }
        // What lies there now may be another thing, unless this is the first look.
        if (hasWorked)
            first = mailbox.othersChange().value_or(mailbox.count());
        mailbox.regain();
        news.abilityChanged();
    }
    refuseRequests(mailbox, news, mailbox.ability().reason);
}

} // namespace tessarine
