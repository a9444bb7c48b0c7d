#pragma once

#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionService.h"

#include <cstdint>
#include <optional>

namespace tessarine {

/// Our own turn as the owner of the clipboard: takes it with a time of the display's own, so that
/// of two programs which want it at the same moment the later wins, and keeps what is there until
/// another program takes over. One thread; what is referred to must outlive this.
class ClipboardOwnership {
public:
    ClipboardOwnership(const X11Connection& display, const SelectionAtoms& atoms);

    /// The window that owns the clipboard when we do.
    std::uint32_t window() const { return window_; }

    /// Takes the clipboard for this. While an earlier write is still on its way, it follows then,
    /// and only the last of several does.
    void claim(WriteRequest request);

    /// What of ours is there; null while another program's is, or nothing.
    const OwnedContent* content() const { return content_ ? &*content_ : nullptr; }

    /// Our window's property that tells the time has changed at that time of the display. Gives the
    /// count of a write that was refused, if that has become certain.
    std::optional<std::uint64_t> momentCame(std::uint32_t time);

    /// The display has given us the clipboard. Gives the count of the write that did it.
    std::optional<std::uint64_t> arrived();

    /// Another program has it.
    void lost() { content_.reset(); }

private:
    /// A write on its way to the display.
    struct Claim {
        OwnedContent content;
        bool isSent = false;
        bool hasArrived = false;
    };

    void begin(const WriteRequest& request);
    void askMoment() const;

    const X11Connection& display_;
    const SelectionAtoms& atoms_;
    std::uint32_t window_;
    std::optional<Claim> claim_;
    std::optional<WriteRequest> next_;
    std::optional<OwnedContent> content_;
};

} // namespace tessarine
