#include "launcherapp/platform/linux/pasteboard/X11Pasteboard.h"

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardWorker.h"

#include <xcb/xcb.h>

#include <csignal>
#include <map>
#include <pthread.h>
#include <sys/socket.h>
#include <utility>

namespace tessarine {

namespace {

/// Takes the callback that waits for the call's answer; an empty one for an unknown call.
template <typename Done> Done taken(std::map<std::uint64_t, Done>& waiting, std::uint64_t call) {
    const auto found = waiting.find(call);
    if (found == waiting.end())
        return {};
    auto done = std::move(found->second);
    waiting.erase(found);
    return done;
}

void nameThread() {
    // A display that goes away must not end the program by what is being written to it.
    sigset_t broken;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &broken, nullptr);
    pthread_setname_np(pthread_self(), "pasteboard");
}

} // namespace

/// Who waits for what, on the main thread alone.
struct X11Pasteboard::Callers {
    std::map<std::uint64_t, std::function<void(std::optional<PasteboardOffer> offer)>> offers;
    std::map<std::uint64_t, std::function<void(PasteboardReading reading)>> readings;
    Observers<std::uint64_t> abandonments;

    /// How the thread tells them through the queue, as long as they are there.
    static PasteboardNews
    news(MainQueue& queue, std::weak_ptr<Callers> callers, const PasteboardMailbox& mailbox);
};

PasteboardNews X11Pasteboard::Callers::news(MainQueue& queue,
                                            std::weak_ptr<Callers> callers,
                                            const PasteboardMailbox& mailbox) {
    return {.offered =
                [&queue, callers](std::uint64_t call, std::optional<PasteboardOffer> offer) {
                    queue.post([callers, call, offer = std::move(offer)] {
                        if (const auto shared = callers.lock()) {
                            if (const auto done = taken(shared->offers, call))
                                done(offer);
                        }
                    });
                },
            .read =
                [&queue, callers](std::uint64_t call, PasteboardReading reading) {
                    // A task is copied, what was read is not.
                    auto held = std::make_shared<PasteboardReading>(std::move(reading));
                    queue.post([callers, call, held = std::move(held)] {
                        if (const auto shared = callers.lock()) {
                            if (const auto done = taken(shared->readings, call))
                                done(std::move(*held));
                        }
                    });
                },
            .abandoned =
                [&queue, callers, &mailbox](std::uint64_t count) {
                    queue.post([callers, &mailbox, count] {
                        // The mailbox lives as long as they do. Somebody may have been quicker.
                        const auto shared = callers.lock();
                        if (shared && mailbox.count() == count + 1)
                            shared->abandonments.tell(count);
                    });
                }};
}

X11Pasteboard::X11Pasteboard(MainQueue& queue, TransferLimits limits)
    : callers_(std::make_shared<Callers>()) {
    if (!display_.answers())
        mailbox_.lose("there is no X11 display");
    thread_ = std::thread([this, limits, news = Callers::news(queue, callers_, mailbox_)] {
        nameThread();
        runPasteboardWorker(display_, mailbox_, limits, news);
    });
}

X11Pasteboard::~X11Pasteboard() {
    callers_.reset();
    mailbox_.close();
    // The thread may be waiting for a display that has stopped; a connection at its end lets it go.
    if (display_.answers())
        ::shutdown(xcb_get_file_descriptor(display_.xcb()), SHUT_RD);
    thread_.join();
}

Ability X11Pasteboard::ability() const {
    return mailbox_.ability();
}

std::uint64_t X11Pasteboard::changeCount() const {
    return mailbox_.count();
}

void X11Pasteboard::offer(std::function<void(std::optional<PasteboardOffer> offer)> done) {
    const auto call = ++lastCall_;
    callers_->offers.emplace(call, std::move(done));
    mailbox_.ask(OfferRequest{call});
}

void X11Pasteboard::read(std::uint64_t count,
                         const std::string& type,
                         std::size_t limitBytes,
                         std::function<void(PasteboardReading reading)> done) {
    const auto call = ++lastCall_;
    callers_->readings.emplace(call, std::move(done));
    mailbox_.ask(ReadRequest{.call = call, .count = count, .type = type, .limitBytes = limitBytes});
}

std::uint64_t X11Pasteboard::write(PasteboardContent content) {
    return mailbox_.write(std::move(content));
}

Subscription X11Pasteboard::onAbandoned(std::function<void(std::uint64_t count)> gone) {
    return callers_->abandonments.add(std::move(gone));
}

} // namespace tessarine
