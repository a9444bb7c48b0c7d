#pragma once

#include "launcherapp/platform/HotkeyRegistrar.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A keyboard on which other programs hold the chords that a test says.
class FakeHotkeyRegistrar : public HotkeyRegistrar {
public:
    void setEvents(Events events) override { events_ = std::move(events); }

    HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) override {
        ++grabs;
        if (!problem.empty())
            return {.kind = HotkeyOutcome::Kind::refused, .reason = problem};
        for (const auto& other : heldByOthers) {
            if (other == binding)
                return {.kind = HotkeyOutcome::Kind::heldByAnother, .reason = "held"};
        }
        held[id] = binding;
        return isChoosing ? HotkeyOutcome{.kind = HotkeyOutcome::Kind::asked} : HotkeyOutcome{};
    }

    bool takesNoStandIns() const override { return isChoosing; }

    void describe(std::uint32_t id, const HotkeyPurpose& purpose) override {
        purposes[id] = purpose;
    }

    /// The desktop's user has decided.
    void settle(std::uint32_t id, const HotkeyOutcome& outcome) { events_.settled(id, outcome); }

    void release(std::uint32_t id) override { releases += static_cast<int>(held.erase(id)); }

    std::optional<HotkeyBinding> chord(std::uint32_t key, std::uint32_t state) const override {
        return HotkeyBinding{.keyCode = key, .carbonModifiers = state};
    }

    /// Whoever holds the chord hears of it.
    void press(const HotkeyBinding& binding, Seconds at) {
        const auto holders = held;
        for (const auto& [id, each] : holders) {
            if (each == binding)
                events_.pressed({.id = id, .at = at});
        }
    }

    void changeKeys() { events_.keysChanged(); }

    std::vector<HotkeyBinding> heldByOthers;
    std::string problem; ///< why no chord can be taken; empty when it can
    std::map<std::uint32_t, HotkeyBinding> held;
    bool isChoosing = false; ///< a desktop that asks its user first, and tells by `settle`
    std::map<std::uint32_t, HotkeyPurpose> purposes;
    int grabs = 0;
    int releases = 0; ///< of chords that were held

private:
    Events events_;
};

} // namespace tessarine
