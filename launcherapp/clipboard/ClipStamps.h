#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class MainQueue;
class Prefs;
struct ClipboardEntry;

/// A deletion that other devices are to hear of.
struct ClipTombstone {
    std::string id;
    std::string origin; ///< the deleting device
    std::int64_t lamport = 0;
    double at = 0; ///< seconds since 1970, UTC

    bool operator==(const ClipTombstone&) const = default;
};

/// What other devices are to hear of this one's changes; nothing while the clipboard isn't synced.
/// Main thread only.
class ClipStamps {
public:
    /// For 30 days a device that was away still learns of a deletion.
    static constexpr std::chrono::duration<double> tombstoneWindow{2592000};

    ClipStamps(MainQueue& queue, Prefs& prefs) : queue_(queue), prefs_(prefs) {}

    void stamp(ClipboardEntry& entry); ///< as changed by this device, later than all before
    void noteDeletion(std::string_view id);

    /// One for each clipping, the latest; the oldest deletion first.
    const std::vector<ClipTombstone>& tombstones() const { return tombstones_; }

private:
    std::int64_t nextLamport();

    MainQueue& queue_;
    Prefs& prefs_;
    std::vector<ClipTombstone> tombstones_;
};

} // namespace tessarine
