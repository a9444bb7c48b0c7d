#include "launcherapp/platform/linux/pasteboard/x11/PasteboardCalls.h"

#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// Of a list of targets, which is four bytes for each: far more than any program offers.
constexpr std::size_t mostTargetBytes = 65536;

PasteboardOffer offerOf(const OwnedContent& content) {
    PasteboardOffer offer{.count = content.count};
    for (const auto& item : content.items)
        offer.types.push_back(item.name);
    return offer;
}

PasteboardReading readingOf(const OwnedContent& content, const ReadRequest& request) {
    const auto item = std::ranges::find(content.items, request.type, &OwnedContent::Item::name);
    return readingFromMemory(item == content.items.end() ? nullptr : item->bytes.get(),
                             request.limitBytes);
}

} // namespace

PasteboardCalls::PasteboardCalls(const Services& services, TransferLimits limits)
    : services_(services), reading_(services.display, services.atoms, limits) {}

void PasteboardCalls::answered(const xcb_selection_notify_event_t& event, Time now) {
    endWhatIsOver();
    if (auto reading = reading_.answered(event, now))
        tell(*std::move(reading));
}

void PasteboardCalls::propertyChanged(const xcb_property_notify_event_t& event, Time now) {
    endWhatIsOver();
    if (auto reading = reading_.propertyChanged(event, now))
        tell(*std::move(reading));
}

// A new owner's answer may come in one go with the news of it: what was asked about another's copy
// must not get a content whose types nobody has looked at, which may be a secret.
void PasteboardCalls::endWhatIsOver() {
    if (!current_ || current_->count == services_.mailbox.count())
        return;
    reading_.abandon();
    tell({.problem = somethingElseThere});
}

void PasteboardCalls::goOn(const Board& board, Time now) {
    endWhatIsOver();
    if (auto late = reading_.expired(now))
        tell(*std::move(late));
    while (!current_ && !waiting_.empty()) {
        const auto* read = std::get_if<ReadRequest>(&waiting_.front());
        const bool isStale = read && read->count != services_.mailbox.count();
        // Our own write is on its way; what lies there until it arrives is not what is asked about.
        if (!isStale && board.count != services_.mailbox.count())
            return;
        const auto call = std::move(waiting_.front());
        waiting_.pop_front();
        if (isStale)
            refuse(call, services_.news, somethingElseThere);
        else if (!toldAtOnce(call, board))
            begin(call, board, now);
    }
}

void PasteboardCalls::refuseAll(const std::string& problem) {
    if (current_)
        refuse(std::exchange(current_, std::nullopt)->call, services_.news, problem);
    for (const auto& call : std::exchange(waiting_, {}))
        refuse(call, services_.news, problem);
}

bool PasteboardCalls::toldAtOnce(const Call& call, const Board& board) const {
    const auto* content = services_.ownership.content();
    if (const auto* read = std::get_if<ReadRequest>(&call)) {
        if (content)
            services_.news.read(read->call, readingOf(*content, *read));
        return content != nullptr;
    }
    const auto id = std::get<OfferRequest>(call).call;
    if (content)
        services_.news.offered(id, offerOf(*content));
    else if (board.owner == 0)
        services_.news.offered(id, PasteboardOffer{.count = board.count});
    return content || board.owner == 0;
}

void PasteboardCalls::begin(const Call& call, const Board& board, Time now) {
    SelectionReading::Question question{.target = services_.atoms.targets,
                                        .items = SelectionReading::Items::atoms,
                                        .limitBytes = mostTargetBytes,
                                        .timestamp = board.time};
    if (const auto* read = std::get_if<ReadRequest>(&call)) {
        question.target = services_.display.atom(read->type);
        question.items = SelectionReading::Items::bytes;
        question.limitBytes = read->limitBytes;
    }
    current_ = Current{.call = call, .count = board.count, .succession = board.succession};
    reading_.ask(question, now);
}

void PasteboardCalls::tell(PasteboardReading reading) {
    const auto [call, count, succession] = *std::exchange(current_, std::nullopt);
    if (const auto* read = std::get_if<ReadRequest>(&call))
        return services_.news.read(read->call, std::move(reading));
    const auto id = std::get<OfferRequest>(call).call;
    if (reading.outcome != PasteboardReading::Outcome::complete)
        return services_.news.offered(id, std::nullopt);
    services_.news.offered(
        id,
        PasteboardOffer{
            .count = count,
            .types = atomNames(services_.display, offeredTypes(reading.bytes, services_.atoms)),
            .succession = succession});
}

} // namespace tessarine
