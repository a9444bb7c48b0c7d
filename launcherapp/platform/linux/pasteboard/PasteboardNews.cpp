#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"

#include <poll.h>

namespace tessarine {

void refuse(const PasteboardCall& call, const PasteboardNews& news, const std::string& problem) {
    if (const auto* offer = std::get_if<OfferRequest>(&call))
        news.offered(offer->call, std::nullopt);
    else
        news.read(std::get<ReadRequest>(call).call, {.problem = problem});
}

void refuseRequests(PasteboardMailbox& mailbox,
                    const PasteboardNews& news,
                    const std::string& problem) {
    constexpr int forever = -1;
    while (const auto requests = mailbox.take()) {
        for (const auto& request : *requests) {
            if (const auto* offer = std::get_if<OfferRequest>(&request))
                refuse(*offer, news, problem);
            else if (const auto* read = std::get_if<ReadRequest>(&request))
                refuse(*read, news, problem);
        }
        pollfd door{.fd = mailbox.wakeDescriptor(), .events = POLLIN, .revents = 0};
        ::poll(&door, 1, forever);
    }
}

PasteboardReading readingFromMemory(const std::string* bytes, std::size_t limitBytes) {
    if (!bytes)
        return {.problem = "the clipboard holds no such type"};
    if (bytes->size() > limitBytes)
        return {.outcome = PasteboardReading::Outcome::tooLarge};
    return {.outcome = PasteboardReading::Outcome::complete, .bytes = *bytes};
}

} // namespace tessarine
