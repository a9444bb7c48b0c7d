#include "launcherapp/platform/linux/pasteboard/MailboxPasteboard.h"

#include "launcherapp/platform/Observers.h"

#include <csignal>
#include <map>
#include <pthread.h>
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
struct MailboxPasteboard::Callers {
    std::map<std::uint64_t, std::function<void(std::optional<PasteboardOffer> offer)>> offers;
    std::map<std::uint64_t, std::function<void(PasteboardReading reading)>> readings;
    Observers<std::uint64_t> abandonments;
    Observers<> abilities;

    /// How the thread tells them through the queue, as long as they are there.
    static PasteboardNews
    news(MainQueue& queue, std::weak_ptr<Callers> callers, const PasteboardMailbox& mailbox);
};

PasteboardNews MailboxPasteboard::Callers::news(MainQueue& queue,
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
                },
            .abilityChanged =
                [&queue, callers] {
                    queue.post([callers] {
                        if (const auto shared = callers.lock())
                            shared->abilities.tell();
                    });
                }};
}

MailboxPasteboard::MailboxPasteboard() : callers_(std::make_shared<Callers>()) {}

MailboxPasteboard::~MailboxPasteboard() = default;

void MailboxPasteboard::start(MainQueue& queue,
                              std::function<void(const PasteboardNews& news)> work) {
    thread_ =
        std::thread([work = std::move(work), news = Callers::news(queue, callers_, mailbox_)] {
            nameThread();
            work(news);
        });
}

void MailboxPasteboard::close() {
    callers_.reset();
    mailbox_.close();
}

void MailboxPasteboard::join() {
    thread_.join();
}

Ability MailboxPasteboard::ability() const {
    return mailbox_.ability();
}

std::uint64_t MailboxPasteboard::changeCount() const {
    return mailbox_.count();
}

void MailboxPasteboard::offer(std::function<void(std::optional<PasteboardOffer> offer)> done) {
    const auto call = ++lastCall_;
    callers_->offers.emplace(call, std::move(done));
    mailbox_.ask(OfferRequest{call});
}

void MailboxPasteboard::read(std::uint64_t count,
                             const std::string& type,
                             std::size_t limitBytes,
                             std::function<void(PasteboardReading reading)> done) {
    const auto call = ++lastCall_;
    callers_->readings.emplace(call, std::move(done));
    mailbox_.ask(ReadRequest{.call = call, .count = count, .type = type, .limitBytes = limitBytes});
}

std::uint64_t MailboxPasteboard::write(PasteboardContent content) {
    return mailbox_.write(std::move(content));
}

Subscription MailboxPasteboard::onAbandoned(std::function<void(std::uint64_t count)> gone) {
    return callers_->abandonments.add(std::move(gone));
}

Subscription MailboxPasteboard::onAbilityChanged(std::function<void()> changed) {
    return callers_->abilities.add(std::move(changed));
}

} // namespace tessarine
