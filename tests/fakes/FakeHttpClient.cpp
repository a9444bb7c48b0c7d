#include "tests/fakes/FakeHttpClient.h"

#include <algorithm>
#include <utility>

namespace tessarine {

Subscription FakeHttpClient::get(const HttpRequest& request, std::function<void(HttpResult)> done) {
    asked.push_back(request);
    HttpResult result = HttpFailure{"no such host"};
    if (delay > request.timeout)
        result = HttpFailure{"timed out"};
    else if (const auto found = documents.find(request.url); found != documents.end())
        result = found->second;
    const auto id = time_.schedule(std::min(delay, request.timeout),
                                   [done = std::move(done), result] { done(result); });
    return Subscription([this, id] { time_.cancel(id); });
}

} // namespace tessarine
