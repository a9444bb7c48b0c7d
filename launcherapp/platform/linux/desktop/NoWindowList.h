#pragma once

#include "launcherapp/platform/WindowList.h"

#include <string>
#include <utility>

namespace tessarine {

/// The window list of a desktop that doesn't tell its windows, with the reason why.
class NoWindowList : public WindowList {
public:
    explicit NoWindowList(std::string reason) : ability_(Ability::missing(std::move(reason))) {}

    Ability ability() const override { return ability_; }

    std::optional<std::string> gap() const override { return ability_.reason; }

    std::vector<AppWindow> windows() const override { return {}; }

    std::optional<AppWindow> active() const override { return std::nullopt; }

    bool stillRuns(const AppWindow&) const override { return false; }

    Subscription onActiveChanged(std::function<void()>) override { return {}; }

    void unhide(std::uint64_t) override {}

    void activate(std::uint64_t) override {}

private:
    Ability ability_;
};

} // namespace tessarine
