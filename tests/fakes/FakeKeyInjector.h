#pragma once

#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/MainQueue.h"

#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Notes the keys that were pressed.
class FakeKeyInjector : public KeyInjector {
public:
    explicit FakeKeyInjector(MainQueue& queue) : queue_(queue) {}

    Ability ability() const override { return trusted; }

    bool paste(PasteChord chord) override {
        if (works)
            pasted.push_back(chord);
        return works;
    }

    void type(const std::string& text, std::function<void(bool)> done) override {
        if (works)
            typed.push_back(text);
        queue_.post([done = std::move(done), typedWhole = works] { done(typedWhole); });
    }

    Ability trusted;
    bool works = true;
    std::vector<PasteChord> pasted;
    std::vector<std::string> typed;

private:
    MainQueue& queue_;
};

} // namespace tessarine
