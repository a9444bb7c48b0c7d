#pragma once

#include "launcherapp/clipboard/ClipSkips.h"
#include "launcherapp/platform/Pasteboard.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace tessarine {

/// What a copy was held to be by its types alone.
struct JudgedCopy {
    std::uint64_t count = 0;                 ///< of the change that brought it
    std::optional<ClipSkip::Reason> skipped; ///< nothing when it might be read
};

/// Programs that keep the clipboard for others put there again what a program took along at its
/// end, in the types that they know: the mark of a secret is none of these. Pure; any thread.
namespace ClipTakeOver {

/// A keeper has the content already when the owner ends: GNOME's compositor takes 2 ms, others well
/// below a second even when the computer is busy. Nobody copies anew by hand so soon.
inline constexpr std::chrono::milliseconds longestPause{1000};

/// Whether what is offered is held to be what lay there before.
bool isOne(const PasteboardOffer& offer);

/// Why a copy that took over from one that was not read is not read either; nothing for one that
/// may be. An earlier one that nobody judged, as it was gone too soon, may have been a secret.
std::optional<ClipSkip> skipped(const PasteboardOffer& offer,
                                const std::optional<JudgedCopy>& before);

} // namespace ClipTakeOver
} // namespace tessarine
