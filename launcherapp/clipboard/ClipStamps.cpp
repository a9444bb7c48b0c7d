#include "launcherapp/clipboard/ClipStamps.h"

#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/Prefs.h"

namespace tessarine {

std::int64_t ClipStamps::nextLamport() {
    const auto next = prefs_.clipSyncLamport() + 1;
    prefs_.clipSyncLamport.set(next);
    return next;
}

void ClipStamps::stamp(ClipboardEntry& entry) {
    if (!prefs_.clipSyncEnabled())
        return;
    entry.syncOrigin = prefs_.clipSyncDeviceID();
    entry.syncLamport = nextLamport();
}

void ClipStamps::noteDeletion(std::string_view id) {
    if (!prefs_.clipSyncEnabled())
        return;
    const auto now = queue_.now();
    std::erase_if(tombstones_, [&](const ClipTombstone& each) {
        return each.id == id || now - each.at > tombstoneWindow.count();
    });
    tombstones_.push_back({.id = std::string(id),
                           .origin = prefs_.clipSyncDeviceID(),
                           .lamport = nextLamport(),
                           .at = now});
}

} // namespace tessarine
