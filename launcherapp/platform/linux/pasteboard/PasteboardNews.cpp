#include "launcherapp/platform/linux/pasteboard/PasteboardNews.h"

#include <poll.h>
#include <utility>
#include <variant>

namespace tessarine {

bool takeRequests(PasteboardMailbox& mailbox,
                  const std::function<void(WriteRequest write)>& put,
                  const std::function<void(PasteboardCall call)>& answer) {
    auto requests = mailbox.take();
    if (!requests)
        return false;
    for (auto& request : *requests) {
        if (auto* write = std::get_if<WriteRequest>(&request))
            put(std::move(*write));
        else if (auto* read = std::get_if<ReadRequest>(&request))
            answer(std::move(*read));
        else
            answer(std::get<OfferRequest>(request));
    }
    return true;
}

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
    const auto giveUp = [&](const WriteRequest& write) { mailbox.refused(write.count); };
    const auto answer = [&](const PasteboardCall& call) { refuse(call, news, problem); };
    while (takeRequests(mailbox, giveUp, answer)) {
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
