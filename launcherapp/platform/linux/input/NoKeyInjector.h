#pragma once

#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <string>
#include <utility>

namespace tessarine {

/// The injector of a desktop where programs can press no keys, with the reason why.
class NoKeyInjector : public KeyInjector {
public:
    NoKeyInjector(MainQueue& queue, std::string reason)
        : queue_(queue), reason_(std::move(reason)) {}

    Ability ability() const override { return Ability::missing(reason_); }

    bool paste(PasteChord) override { return false; }

    void type(const std::string&, std::function<void(bool typed)> done) override {
        queue_.post([done = std::move(done)] { done(false); });
    }

private:
    MainQueue& queue_;
    std::string reason_;
};

} // namespace tessarine
