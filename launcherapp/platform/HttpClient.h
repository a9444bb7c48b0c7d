#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Subscription.h"

#include <cstddef>
#include <functional>
#include <string>
#include <variant>

namespace tessarine {

struct HttpRequest {
    std::string url;    ///< http or https
    Seconds timeout{8}; ///< for the whole exchange, redirects included
    std::size_t maximumBodyBytes = std::size_t{1} << 20; ///< after decompression

    bool operator==(const HttpRequest&) const = default;
};

/// What a server said, be it yes or no.
struct HttpAnswer {
    int status = 0; ///< as in 200; of the last server, when it was redirected
    std::string body;

    bool isSuccess() const { return status >= 200 && status < 300; }

    bool operator==(const HttpAnswer&) const = default;
};

/// No whole answer came.
struct HttpFailure {
    std::string problem; ///< for the user; may be empty

    bool operator==(const HttpFailure&) const = default;
};

using HttpResult = std::variant<HttpAnswer, HttpFailure>;

/// Documents from the web, without cookies and without a cache. Main thread only; no call waits,
/// neither for a server nor for a proxy.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// Fetches the document. `done` is called once, later, on the main thread, at the latest after
    /// the request's timeout; not at all once the subscription has ended, which gives up the
    /// exchange.
    virtual Subscription get(const HttpRequest& request,
                             std::function<void(HttpResult result)> done) = 0;
};

} // namespace tessarine
