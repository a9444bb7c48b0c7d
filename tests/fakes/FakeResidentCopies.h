#pragma once

#include "launcherapp/platform/ResidentCopies.h"
#include "tests/fakes/VirtualTime.h"

#include <map>
#include <optional>

namespace tessarine {

/// Other copies of the program, each as obedient as a test makes it. Pauses let virtual time pass.
class FakeResidentCopies : public ResidentCopies {
public:
    struct Copy {
        std::optional<Seconds> quitsAfter;     ///< being asked; nothing: never
        std::optional<Seconds> diesAfter{0.0}; ///< being forced; nothing: never
    };

    explicit FakeResidentCopies(VirtualTime& time) : time_(time) {}

    void announce() override { announced = true; }

    std::vector<std::int64_t> others() const override {
        std::vector<std::int64_t> result;
        for (const auto& [process, copy] : copies) {
            if (!isGone(process))
                result.push_back(process);
        }
        return result;
    }

    void terminate(std::int64_t process) override { end(process, copies.at(process).quitsAfter); }

    void forceTerminate(std::int64_t process) override {
        forced.push_back(process);
        end(process, copies.at(process).diesAfter);
    }

    bool isGone(std::int64_t process) const override {
        const auto end = ends_.find(process);
        return end != ends_.end() && end->second <= time_.uptime();
    }

    void pause(std::chrono::milliseconds duration) override {
        pauses.push_back(duration);
        time_.advance(duration);
    }

    std::map<std::int64_t, Copy> copies;
    std::vector<std::int64_t> forced;
    std::vector<std::chrono::milliseconds> pauses;
    bool announced = false;

private:
    void end(std::int64_t process, std::optional<Seconds> after) {
        if (after)
            ends_[process] = time_.uptime() + *after;
    }

    VirtualTime& time_;
    std::map<std::int64_t, Seconds> ends_;
};

} // namespace tessarine
