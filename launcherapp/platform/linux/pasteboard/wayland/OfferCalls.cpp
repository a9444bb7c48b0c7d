#include "launcherapp/platform/linux/pasteboard/wayland/OfferCalls.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr auto silentCompositor = "the Wayland compositor does not answer";

} // namespace

OfferCalls::OfferCalls(const Services& services, TransferLimits limits)
    : services_(services), limits_(limits) {}

void OfferCalls::add(PasteboardCall call, Time now) {
    waiting_.push_back({.call = std::move(call), .since = now});
}

void OfferCalls::confirmed(std::uint64_t question) {
    const auto found = std::ranges::find(readings_, question, &UnderWay::question);
    if (found != readings_.end())
        found->isConfirmed = true;
}

void OfferCalls::goOn(const Board& board, Time now) {
    std::erase_if(readings_, [&](UnderWay& each) {
        auto reading = result(each, now);
        if (reading)
            services_.news.read(each.reading.request().call, *std::move(reading));
        return reading.has_value();
    });
    beginWaiting(board, now);
}

/// Nothing while it goes on.
std::optional<PasteboardReading> OfferCalls::result(UnderWay& each, Time now) {
    if (each.reading.request().count != services_.mailbox.count())
        return PasteboardReading{.problem = somethingElseThere};
    if (each.isConfirmed)
        return each.reading.whole();
    if (auto failure = each.reading.takeWhatCame(now))
        return failure;
    // What was replaced is at its end too, and the news of that may be on its way: the compositor
    // closes the pipe of an owner that it knows no more.
    if (each.reading.hasAll() && each.question == 0)
        each.question = services_.control.confirm();
    return std::nullopt;
}

void OfferCalls::beginWaiting(const Board& board, Time now) {
    while (!waiting_.empty()) {
        const auto& first = waiting_.front();
        const auto* read = std::get_if<ReadRequest>(&first.call);
        const bool isStale = read && read->count != services_.mailbox.count();
        const bool isLate = now - first.since >= limits_.silence;
        // Our own write is on its way; what lies there until it arrives is not what is asked about.
        const bool isSettled = board.count == services_.mailbox.count();
        if (!isStale && !isLate && !isSettled)
            return;
        const auto call = std::move(waiting_.front().call);
        waiting_.pop_front();
        if (isStale || !isSettled)
            refuse(call, services_.news, isStale ? somethingElseThere : silentCompositor);
        else
            begin(call, board, now);
    }
}

void OfferCalls::begin(const PasteboardCall& call, const Board& board, Time now) {
    const auto* const read = std::get_if<ReadRequest>(&call);
    if (!read) {
        std::optional<PasteboardOffer> offer =
            PasteboardOffer{.count = board.count, .succession = board.succession};
        if (board.content)
            offer = board.content->offer();
        else if (const auto* types = board.offer ? board.offer->types() : &offer->types)
            offer->types = *types;
        else
            offer.reset();
        return services_.news.offered(std::get<OfferRequest>(call).call, std::move(offer));
    }
    if (!board.content && board.offer && board.offer->has(read->type))
        return beginReading(*read, *board.offer, now);
    const auto* const item = board.content ? board.content->item(read->type) : nullptr;
    services_.news.read(read->call,
                        readingFromMemory(item ? item->bytes.get() : nullptr, read->limitBytes));
}

void OfferCalls::beginReading(const ReadRequest& request, const DataOffer& offer, Time now) {
    auto pipe = OfferReading::openPipe();
    if (!pipe)
        return refuse(request, services_.news, "too many files are open");
    // The descriptor is sent with the next flush, by a copy of its own.
    offer.receive(request.type, pipe->owners.number());
    readings_.push_back({.reading = {request, std::move(pipe->ours), limits_, now}});
}

void OfferCalls::addDoors(std::vector<pollfd>& doors) const {
    for (const auto& each : readings_) {
        if (!each.reading.hasAll())
            doors.push_back({.fd = each.reading.pipe().number(), .events = POLLIN, .revents = 0});
    }
}

std::optional<OfferCalls::Time> OfferCalls::deadline() const {
    std::optional<Time> next;
    if (!waiting_.empty())
        next = waiting_.front().since + limits_.silence;
    for (const auto& each : readings_)
        next = std::min(next.value_or(each.reading.deadline()), each.reading.deadline());
    return next;
}

void OfferCalls::refuseAll(const std::string& problem) {
    for (const auto& each : std::exchange(readings_, {}))
        refuse(each.reading.request(), services_.news, problem);
    for (const auto& [call, since] : std::exchange(waiting_, {}))
        refuse(call, services_.news, problem);
}

} // namespace tessarine
