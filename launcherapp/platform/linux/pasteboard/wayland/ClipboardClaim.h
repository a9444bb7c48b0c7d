#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"

#include <cstdint>
#include <string>

namespace tessarine {

class DataControl;

/// Something of ours that we have put on the clipboard, or are about to. One thread.
struct ClipboardClaim {
    WriteRequest content;       ///< the mark of a secret included
    std::uint64_t source = 0;   ///< by which the compositor's events name it
    std::uint64_t question = 0; ///< whose answer tells that the compositor has done with it
    bool isCancelled = false;   ///< something else is there already

    /// Puts it there; cancelled from the beginning where there is no seat.
    static ClipboardClaim of(WriteRequest request, DataControl& control);

    /// Null for a type that it doesn't have.
    const PasteboardContent::Item* item(const std::string& type) const;

    PasteboardOffer offer() const;
};

} // namespace tessarine
