#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Pasteboard.h"

#include <string>
#include <utility>

namespace tessarine {

/// The pasteboard of a desktop that has none which programs may watch, with the reason why.
class NoPasteboard : public Pasteboard {
public:
    NoPasteboard(MainQueue& queue, std::string reason)
        : queue_(queue), ability_(Ability::missing(std::move(reason))) {}

    Ability ability() const override { return ability_; }

    std::uint64_t changeCount() const override { return 0; }

    void offer(std::function<void(std::optional<PasteboardOffer> offer)> done) override {
        queue_.post([done = std::move(done)] { done(std::nullopt); });
    }

    void read(std::uint64_t,
              const std::string&,
              std::size_t,
              std::function<void(PasteboardReading reading)> done) override {
        queue_.post(
            [done = std::move(done), problem = ability_.reason] { done({.problem = problem}); });
    }

    std::uint64_t write(PasteboardContent) override { return 0; }

    Subscription onAbandoned(std::function<void(std::uint64_t count)>) override { return {}; }

    Subscription onAbilityChanged(std::function<void()>) override { return {}; }

private:
    MainQueue& queue_;
    Ability ability_;
};

} // namespace tessarine
