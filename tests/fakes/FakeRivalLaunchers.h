#pragma once

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/RivalLaunchers.h"

#include <algorithm>
#include <utility>

namespace tessarine {

/// Other launchers, which a test starts and quits.
class FakeRivalLaunchers : public RivalLaunchers {
public:
    std::size_t known() const override { return 3; }

    std::vector<std::string> running() const override { return names; }

    Subscription onChange(std::function<void(const std::string&, Change)> changed) override {
        return changes_.add(std::move(changed));
    }

    Subscription onSessionResumed(std::function<void()> resumed) override {
        return resumes_.add(std::move(resumed));
    }

    void launch(const std::string& name) {
        names.push_back(name);
        changes_.tell(name, Change::launched);
    }

    void find(const std::string& name) {
        names.push_back(name);
        changes_.tell(name, Change::found);
    }

    void quit(const std::string& name) {
        std::erase(names, name);
        changes_.tell(name, Change::quit);
    }

    void resumeSession() { resumes_.tell(); }

    std::vector<std::string> names; ///< of those running

private:
    Observers<std::string, Change> changes_;
    Observers<> resumes_;
};

} // namespace tessarine
