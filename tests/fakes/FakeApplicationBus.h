#pragma once

#include "launcherapp/platform/ApplicationBus.h"

#include <map>
#include <set>
#include <utility>

namespace tessarine {

/// Applications on the bus: a known one answers at once or with the problem it is given, a silent
/// one never, so that the time-out passes; any other can't be started.
class FakeApplicationBus : public ApplicationBus {
public:
    explicit FakeApplicationBus(MainQueue& queue) : queue_(queue) {}

    void activate(const BusActivation& request,
                  Seconds timeout,
                  std::function<void(std::optional<std::string>)> done) override {
        requests.push_back(request);
        if (silent.contains(request.busName)) {
            queue_.postAfter(timeout, [done = std::move(done)] { done("no answer in time"); });
            return;
        }
        const auto known = answers.find(request.busName);
        const auto answer = known == answers.end()
                                ? std::optional<std::string>("nobody can be started by this name")
                                : known->second;
        queue_.post([done = std::move(done), answer] { done(answer); });
    }

    std::map<std::string, std::optional<std::string>> answers; ///< by bus name; nothing: success
    std::set<std::string> silent;
    std::vector<BusActivation> requests;

private:
    MainQueue& queue_;
};

} // namespace tessarine
