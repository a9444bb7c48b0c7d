#include "launcherapp/hotkeys/Hotkey.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/RivalLaunchers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tessarine {

Hotkey::Hotkey(Services services) : services_(services) {
    services_.registrar.setEvents(
        {.pressed = [this](const HotkeyRegistrar::Press& press) { pressed(press); },
         .keysChanged = [this] { reassertAll("keyboard changed"); }});
}

void Hotkey::pressed(const HotkeyRegistrar::Press& press) {
    lastPressEventTime_ = press.at;
    const auto found = actions_.find(press.id);
    if (found == actions_.end())
        return;
    const auto action = found->second; // it may put another in its own place
    if (action)
        action();
}

bool Hotkey::add(const HotkeyBinding& binding,
                 std::uint32_t id,
                 std::optional<std::function<void()>> action) {
    if (action)
        actions_[id] = *std::move(action);
    if (take(binding, id))
        return true;
    bindings_.erase(id);
    return false;
}

void Hotkey::remove(std::uint32_t id) {
    letGo(id);
    bindings_.erase(id);
    statuses_.erase(id);
    actions_.erase(id);
    statusChanges_.tell();
}

bool Hotkey::take(const HotkeyBinding& binding, std::uint32_t id) {
    letGo(id);
    // The desktop would grant it twice, and whoever came later would never hear of a press.
    const auto other = std::ranges::find_if(
        held_, [&](std::uint32_t each) { return bindings_.at(each) == binding; });
    const auto outcome =
        other == held_.end()
            ? services_.registrar.grab(id, binding)
            : HotkeyOutcome{.kind = HotkeyOutcome::Kind::refused,
                            .reason = fmt::format("it is the {} hotkey", HotkeyIDs::name(*other))};
    bindings_[id] = binding;
    if (outcome.kind != HotkeyOutcome::Kind::registered) {
        statuses_[id] = refusal(binding, outcome);
        statusChanges_.tell();
        return false;
    }
    held_.insert(id);
    statuses_[id] = "registered " + HotkeyNames::display(binding);
    statusChanges_.tell();
    return true;
}

void Hotkey::letGo(std::uint32_t id) {
    if (held_.erase(id) > 0)
        services_.registrar.release(id);
}

std::string Hotkey::refusal(const HotkeyBinding& binding, const HotkeyOutcome& outcome) const {
    const auto chord = HotkeyNames::display(binding);
    if (outcome.kind == HotkeyOutcome::Kind::heldByAnother)
        return fmt::format("{} is held by another app ({}); not registered", chord, suspects());
    return fmt::format("could not register {} ({})", chord, outcome.reason);
}

/// The display doesn't tell who holds a chord, so these are the ones that might.
std::string Hotkey::suspects() const {
    auto names = services_.rivals.running();
    if (names.empty())
        names.emplace_back("an input method");
    return fmt::format("{} or the desktop itself", fmt::join(names, ", "));
}

std::map<std::uint32_t, bool> Hotkey::reassertAll(std::string_view reason) {
    std::map<std::uint32_t, bool> results;
    std::vector<std::string> told;
    const auto bindings = bindings_;
    for (const auto& [id, binding] : bindings) {
        results[id] = take(binding, id);
        told.push_back(fmt::format("{}={}", HotkeyIDs::name(id), results[id] ? "ok" : "failed"));
    }
    services_.diagnostics.log(fmt::format("hotkey re-assert ({}): {}",
                                          reason,
                                          told.empty() ? "nothing registered to re-assert"
                                                       : fmt::format("{}", fmt::join(told, ", "))));
    return results;
}

std::string Hotkey::status(std::uint32_t id) const {
    const auto found = statuses_.find(id);
    return found == statuses_.end() ? "not registered" : found->second;
}

std::optional<HotkeyBinding> Hotkey::binding(std::uint32_t id) const {
    return held_.contains(id) ? std::optional(bindings_.at(id)) : std::nullopt;
}

} // namespace tessarine
