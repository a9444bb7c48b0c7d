#pragma once

#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace tessarine {

/// What a pasteboard's worker tells, on its own thread. The call is the request's.
struct PasteboardNews {
    std::function<void(std::uint64_t call, std::optional<PasteboardOffer> offer)> offered;
    std::function<void(std::uint64_t call, PasteboardReading reading)> read;
    std::function<void(std::uint64_t count)> abandoned;
    std::function<void()> abilityChanged; ///< the mailbox has it
};

/// A request that is answered.
using PasteboardCall = std::variant<OfferRequest, ReadRequest>;

/// Why a call fails that is about what lay there before.
inline constexpr auto somethingElseThere = "something else lies on the clipboard now";

/// Hands over what has been asked since the last time, in order, to who puts things there and who
/// answers. False once the mailbox is closed.
bool takeRequests(PasteboardMailbox& mailbox,
                  const std::function<void(WriteRequest write)>& put,
                  const std::function<void(PasteboardCall call)>& answer);

/// Answers a call that nothing can be told for.
void refuse(const PasteboardCall& call, const PasteboardNews& news, const std::string& problem);

/// Answers all calls so, and gives up the writes that were under way, until the mailbox is closed
/// or the time is over. False once it is closed.
bool refuseRequests(PasteboardMailbox& mailbox,
                    const PasteboardNews& news,
                    const std::string& problem,
                    std::optional<std::chrono::steady_clock::time_point> end = std::nullopt);

/// Of our own content, which nobody has to be asked for; null for a type that it doesn't have.
PasteboardReading readingFromMemory(const std::string* bytes, std::size_t limitBytes);

} // namespace tessarine
