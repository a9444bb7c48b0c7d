#include "launcherapp/platform/linux/pasteboard/wayland/OfferReading.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

/// What a pipe holds at most, as the kernel has it; taken at once, of several that much in turn.
constexpr std::size_t portion = 65536;
constexpr int portionsPerTurn = 16;

using Outcome = PasteboardReading::Outcome;

} // namespace

std::optional<OfferReading::Pipe> OfferReading::openPipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::nullopt;
    Pipe pipe{.ours = FileDescriptor(ends[0]), .owners = FileDescriptor(ends[1])};
    // Ours alone: an owner need not be ready for a pipe that doesn't wait.
    ::fcntl(pipe.ours.number(), F_SETFL, O_NONBLOCK);
    return pipe;
}

OfferReading::OfferReading(ReadRequest request,
                           FileDescriptor pipe,
                           TransferLimits limits,
                           Time now)
    : request_(std::move(request)), pipe_(std::move(pipe)), limits_(limits), begun_(now),
      lastSign_(now) {}

std::optional<PasteboardReading> OfferReading::takeWhatCame(Time now) {
    std::array<char, portion> chunk;
    for (int i = 0; i < portionsPerTurn && pipe_; ++i) {
        const auto count = ::read(pipe_.number(), chunk.data(), chunk.size());
        if (count == 0)
            pipe_ = {};
        if (count <= 0)
            break;
        lastSign_ = now;
        const auto size = static_cast<std::size_t>(count);
        if (size > request_.limitBytes - bytes_.size())
            return PasteboardReading{.outcome = Outcome::tooLarge};
        bytes_.append(chunk.data(), size);
    }
    if (now < deadline())
        return std::nullopt;
    return PasteboardReading{
        .problem = "the program that owns the clipboard did not hand it over in time"};
}

PasteboardReading OfferReading::whole() {
    return {.outcome = Outcome::complete, .bytes = std::move(bytes_)};
}

OfferReading::Time OfferReading::deadline() const {
    return std::min(lastSign_ + limits_.silence, begun_ + limits_.whole);
}

} // namespace tessarine
