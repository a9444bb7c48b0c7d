#pragma once

#include "launcherapp/platform/HttpClient.h"
#include "tests/fakes/VirtualTime.h"

#include <map>
#include <string>
#include <vector>

namespace tessarine {

/// A web of a few documents in virtual time. An address that it doesn't know fails.
class FakeHttpClient : public HttpClient {
public:
    explicit FakeHttpClient(VirtualTime& time) : time_(time) {}

    Subscription get(const HttpRequest& request,
                     std::function<void(HttpResult result)> done) override;

    std::map<std::string, HttpResult> documents; ///< by address
    std::vector<HttpRequest> asked;
    Seconds delay{0.1}; ///< of each answer; one beyond a request's timeout is a failure

private:
    VirtualTime& time_;
};

} // namespace tessarine
