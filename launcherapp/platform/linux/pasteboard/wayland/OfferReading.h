#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"

#include <optional>
#include <string>

namespace tessarine {

/// The content of one type on its way through a pipe from the program that owns the clipboard. It
/// is bounded in size and time; an owner who lies, dawdles or is silent costs no more. One thread.
class OfferReading {
public:
    using Time = TransferClock::time_point;

    struct Pipe {
        FileDescriptor ours; ///< doesn't block
        FileDescriptor owners;
    };

    /// Nothing when no descriptor is left.
    static std::optional<Pipe> openPipe();

    /// `pipe` is our end.
    OfferReading(ReadRequest request, FileDescriptor pipe, TransferLimits limits, Time now);

    const ReadRequest& request() const { return request_; }

    /// Readable when `takeWhatCame` has something to do; nothing once the end has come.
    const FileDescriptor& pipe() const { return pipe_; }

    /// Takes what has come, without waiting. Gives what came of it when that is too much, or
    /// nothing came for too long.
    std::optional<PasteboardReading> takeWhatCame(Time now);

    /// The owner has written all; whether that was what lay there, the compositor has to tell.
    bool hasAll() const { return !pipe_; }

    /// The content, which must have come whole.
    PasteboardReading whole();

    /// When `takeWhatCame` has to be called though nothing comes.
    Time deadline() const;

private:
    ReadRequest request_;
    FileDescriptor pipe_;
    TransferLimits limits_;
    Time begun_;
    Time lastSign_;
    std::string bytes_;
};

} // namespace tessarine
