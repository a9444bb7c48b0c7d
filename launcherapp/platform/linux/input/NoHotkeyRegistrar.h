#pragma once

#include "launcherapp/platform/HotkeyRegistrar.h"

#include <optional>
#include <string>
#include <utility>

namespace tessarine {

/// The registrar of a desktop where programs can take no chords, with the reason why.
class NoHotkeyRegistrar : public HotkeyRegistrar {
public:
    explicit NoHotkeyRegistrar(std::string reason) : reason_(std::move(reason)) {}

    void setEvents(Events) override {}

    /// They would be refused like those of the settings.
    bool takesNoStandIns() const override { return true; }

    HotkeyOutcome grab(std::uint32_t, const HotkeyBinding&) override {
        return {.kind = HotkeyOutcome::Kind::refused, .reason = reason_};
    }

    void release(std::uint32_t) override {}

    std::optional<HotkeyBinding> chord(std::uint32_t, std::uint32_t) const override {
        return std::nullopt;
    }

private:
    std::string reason_;
};

} // namespace tessarine
