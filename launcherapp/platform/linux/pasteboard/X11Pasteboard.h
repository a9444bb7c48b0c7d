#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <memory>
#include <thread>

namespace tessarine {

/// The CLIPBOARD selection of an X11 display, on a connection and a thread of its own, so that the
/// main thread waits neither for other programs nor for the display. PRIMARY, the selected text, is
/// left alone. What is there before this is made has the count 1.
class X11Pasteboard : public Pasteboard {
public:
    /// Connects to the display; everything else follows on the thread. Throws std::system_error
    /// when there is no descriptor or no thread to be had.
    explicit X11Pasteboard(MainQueue& queue, TransferLimits limits = {});

    /// At once, whatever is under way; what was asked for is not called any more, and what we own
    /// goes with us.
    ~X11Pasteboard() override;
    X11Pasteboard(const X11Pasteboard&) = delete;
    X11Pasteboard& operator=(const X11Pasteboard&) = delete;

    Ability ability() const override;
    std::uint64_t changeCount() const override;
    void offer(std::function<void(std::optional<PasteboardOffer> offer)> done) override;
    void read(std::uint64_t count,
              const std::string& type,
              std::size_t limitBytes,
              std::function<void(PasteboardReading reading)> done) override;
    std::uint64_t write(PasteboardContent content) override;
    Subscription onAbandoned(std::function<void(std::uint64_t count)> gone) override;

private:
    struct Callers;

    X11Connection display_; ///< the thread's alone once it runs
    PasteboardMailbox mailbox_;
    std::shared_ptr<Callers> callers_;
    std::uint64_t lastCall_ = 0;
    std::thread thread_;
};

} // namespace tessarine
