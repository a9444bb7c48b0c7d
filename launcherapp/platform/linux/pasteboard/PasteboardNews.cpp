#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"

#include <poll.h>
#include <variant>

namespace tessarine {

void refuse(const PasteboardCall& call, const PasteboardNews& news, const std::string& problem) {
    if (const auto* offer = std::get_if<OfferRequest>(&call))
        news.offered(offer->call, std::nullopt);
    else
        news.read(std::get<ReadRequest>(call).call, {.problem = problem});
}

bool refuseRequests(PasteboardMailbox& mailbox,
                    const PasteboardNews& news,
                    const std::string& problem,
                    std::optional<std::chrono::steady_clock::time_point> end) {
    using std::chrono::milliseconds;
    constexpr int forever = -1;
    while (const auto requests = mailbox.take()) {
        for (const auto& request : *requests) {
            if (const auto* offer = std::get_if<OfferRequest>(&request))
                refuse(*offer, news, problem);
            else if (const auto* read = std::get_if<ReadRequest>(&request))
                refuse(*read, news, problem);
            else
                mailbox.refused(std::get<WriteRequest>(request).count);
        }
        const auto now = std::chrono::steady_clock::now();
        if (end && now >= *end)
            return true;
        const auto left = end ? std::chrono::ceil<milliseconds>(*end - now).count() : forever;
        pollfd door{.fd = mailbox.wakeDescriptor(), .events = POLLIN, .revents = 0};
        ::poll(&door, 1, static_cast<int>(left));
    }
    return false;
}

PasteboardReading readingFromMemory(const std::string* bytes, std::size_t limitBytes) {
    if (!bytes)
        return {.problem = "the clipboard holds no such type"};
    if (bytes->size() > limitBytes)
        return {.outcome = PasteboardReading::Outcome::tooLarge};
    return {.outcome = PasteboardReading::Outcome::complete, .bytes = *bytes};
}

} // namespace tessarine
