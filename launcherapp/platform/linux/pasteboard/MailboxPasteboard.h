#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace tessarine {

/// The main thread's half of a pasteboard whose display is spoken with on a thread of its own: what
/// is asked goes through the mailbox, and who asked is called when the thread has told.
class MailboxPasteboard : public Pasteboard {
public:
    ~MailboxPasteboard() override;
    MailboxPasteboard(const MailboxPasteboard&) = delete;
    MailboxPasteboard& operator=(const MailboxPasteboard&) = delete;

    Ability ability() const override;
    std::uint64_t changeCount() const override;
    void offer(std::function<void(std::optional<PasteboardOffer> offer)> done) override;
    void read(std::uint64_t count,
              const std::string& type,
              std::size_t limitBytes,
              std::function<void(PasteboardReading reading)> done) override;
    std::uint64_t write(PasteboardContent content) override;
    Subscription onAbandoned(std::function<void(std::uint64_t count)> gone) override;
    Subscription onAbilityChanged(std::function<void()> changed) override;

protected:
    /// Throws std::system_error when no descriptor is left.
    MailboxPasteboard();

    /// Begins the thread, which does `work` until the mailbox is closed. Throws std::system_error
    /// when there is none to be had.
    void start(MainQueue& queue, std::function<void(const PasteboardNews& news)> work);

    /// Closes the mailbox; nobody is called any more.
    void close();

    /// Waits for the thread's end. Before what `work` refers to goes.
    void join();

    PasteboardMailbox& mailbox() { return mailbox_; }

private:
    struct Callers;

    PasteboardMailbox mailbox_;
    std::shared_ptr<Callers> callers_;
    std::uint64_t lastCall_ = 0;
    std::thread thread_;
};

} // namespace tessarine
