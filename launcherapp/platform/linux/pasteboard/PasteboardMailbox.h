#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/pasteboard/ChangeCounter.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tessarine {

struct OfferRequest {
    std::uint64_t call = 0; ///< by which the answer finds who asked
};

struct ReadRequest {
    std::uint64_t call = 0;
    std::uint64_t count = 0; ///< the change that is meant
    std::string type;
    std::size_t limitBytes = 0;
};

struct WriteRequest {
    std::uint64_t count = 0; ///< of this change
    PasteboardContent content;
};

using PasteboardRequest = std::variant<OfferRequest, ReadRequest, WriteRequest>;

/// The one door between the main thread and the thread that talks with the display: requests go
/// in, and both sides count changes, which needs a lock because either may be first. It is held for
/// the length of a hand-over, and nothing inside calls out. Any thread.
class PasteboardMailbox {
public:
    static constexpr auto firstCount = ChangeCounter::firstValue;

    /// Throws std::system_error when no descriptor is left.
    PasteboardMailbox();

    std::uint64_t count() const { return count_.load(std::memory_order_acquire); }

    Ability ability() const;

    void ask(PasteboardRequest request);

    /// Counts the write and hands it on. Nothing happens, and the count stays, where the ability is
    /// missing.
    std::uint64_t write(PasteboardContent content);

    /// Ends the worker.
    void close();

    /// What the worker sleeps on: readable while there are requests, or once it is to end.
    int wakeDescriptor() const { return wake_.number(); }

    /// All that came since the last time, in order; nothing once the worker is to end.
    std::optional<std::vector<PasteboardRequest>> take();

    // What the worker has seen (see ChangeCounter).
    std::optional<std::uint64_t> othersChange();
    void arrived(std::uint64_t count);
    std::optional<std::uint64_t> refused(std::uint64_t count);

    /// There is no clipboard any more, or none that can be watched.
    void lose(std::string reason);

    /// There is one again.
    void regain();

private:
    void publish() { count_.store(counter_.value(), std::memory_order_release); }

    void wakeUp() const;

    const FileDescriptor wake_;
    std::atomic<std::uint64_t> count_ = 0;
    mutable std::mutex mutex_; ///< of all below
    ChangeCounter counter_;
    Ability ability_;
    std::vector<PasteboardRequest> requests_;
    bool isClosed_ = false;
};

} // namespace tessarine
