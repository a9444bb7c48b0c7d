#include "launcherapp/hotkeys/Hotkey.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/RivalLaunchers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Kind = HotkeyOutcome::Kind;

/// Or will be, if the user is willing.
bool isGranted(const HotkeyOutcome& outcome) {
    return outcome.kind == Kind::registered || outcome.kind == Kind::asked;
}

std::string granted(const std::string& chord, const HotkeyOutcome& outcome) {
    if (outcome.kind == Kind::asked)
        return "waiting for the desktop's leave to use " + chord;
    if (outcome.isTriggerUnknown)
        return fmt::format("registered {}; which keys it has become, the desktop's settings tell",
                           chord);
    if (outcome.trigger.empty())
        return "registered " + chord;
    return fmt::format("registered {}; the desktop has it as {}", chord, outcome.trigger);
}

} // namespace

Hotkey::Hotkey(Services services) : services_(services) {
    services_.registrar.setEvents(
        {.pressed = [this](const HotkeyRegistrar::Press& press) { pressed(press); },
         .keysChanged =
             [this] {
                 reassertAll("keyboard changed");
                 keysChanges_.tell();
             },
         .settled = [this](std::uint32_t id,
                           const HotkeyOutcome& outcome) { settled(id, outcome); },
         .problem =
             [this](const std::string& problem) {
                 services_.diagnostics.log("hotkey: " + problem);
             }});
}

void Hotkey::describe(std::uint32_t id, HotkeyPurpose purpose) {
    purposes_[id] = std::move(purpose);
}

/// The desktop keeps the wish that it refuses: it may be granted later, by itself.
void Hotkey::settled(std::uint32_t id, const HotkeyOutcome& outcome) {
    const auto wanted = bindings_.find(id);
    if (wanted == bindings_.end())
        return;
    if (isGranted(outcome)) {
        hold(wanted->second, id, outcome);
    } else {
        held_.erase(id);
        statuses_[id] = refusal(wanted->second, outcome);
        statusChanges_.tell();
    }
    if (outcome.kind != Kind::asked)
        services_.diagnostics.log(
            fmt::format("hotkey of the {}: {}", HotkeyIDs::name(id), status(id)));
}

void Hotkey::pressed(const HotkeyRegistrar::Press& press) {
    if (const auto chord = binding(press.id); chord && *diverting_ > 0) {
        diversions_.tell(*chord);
        return;
    }
    lastPressEventTime_ = press.at;
    const auto found = actions_.find(press.id);
    if (found == actions_.end())
        return;
    const auto action = found->second; // it may put another in its own place
    if (action)
        action();
}

Subscription Hotkey::divert(std::function<void(const HotkeyBinding&)> pressed) {
    ++*diverting_;
    auto listening = std::make_shared<Subscription>(diversions_.add(std::move(pressed)));
    return Subscription([diverting = diverting_, listening] {
        --*diverting;
        listening->end();
    });
}

bool Hotkey::add(const HotkeyBinding& binding,
                 std::uint32_t id,
                 std::optional<std::function<void()>> action) {
    if (action)
        actions_[id] = *std::move(action);
    if (take(binding, id))
        return true;
    if (!takesNoStandIns())
        bindings_.erase(id); // nobody will give it later
    return false;
}

bool Hotkey::addIfFree(const HotkeyBinding& binding, std::uint32_t id) {
    const auto outcome = grab(binding, id);
    if (!isGranted(outcome))
        return false;
    hold(binding, id, outcome);
    return true;
}

void Hotkey::remove(std::uint32_t id) {
    held_.erase(id);
    services_.registrar.release(id); // also one that was refused, and may be wished for still
    actions_.erase(id);
    purposes_.erase(id);
    const bool wasBound = bindings_.erase(id) > 0;
    const bool wasTold = statuses_.erase(id) > 0;
    if (wasBound || wasTold)
        statusChanges_.tell();
}

/// What is held is let go only for the new chord or after its refusal: before, a press in between
/// would be lost, and another program might have the chord.
bool Hotkey::take(const HotkeyBinding& binding, std::uint32_t id) {
    const auto outcome = grab(binding, id);
    if (isGranted(outcome)) {
        hold(binding, id, outcome);
        return true;
    }
    letGo(id);
    bindings_[id] = binding;
    statuses_[id] = refusal(binding, outcome);
    statusChanges_.tell();
    return false;
}

HotkeyOutcome Hotkey::grab(const HotkeyBinding& binding, std::uint32_t id) {
    const auto refused = [](std::string reason) {
        return HotkeyOutcome{.kind = Kind::refused, .reason = std::move(reason)};
    };
    if (binding.carbonModifiers == 0 && !VirtualKeys::isFunctionKey(binding.keyCode))
        return refused("without a modifier no other program would get that key");
    // The desktop would grant it twice, and whoever came later would never hear of a press.
    for (const auto& [other, hold] : held_) {
        if (other != id && bindings_.at(other) == binding)
            return refused(fmt::format("it is the {} hotkey", HotkeyIDs::name(other)));
    }
    const auto described = purposes_.find(id);
    services_.registrar.describe(
        id, described == purposes_.end() ? HotkeyIDs::purpose(id) : described->second);
    return services_.registrar.grab(id, binding);
}

void Hotkey::hold(const HotkeyBinding& binding, std::uint32_t id, const HotkeyOutcome& outcome) {
    bindings_[id] = binding;
    held_[id] = {.kind = outcome.kind,
                 .trigger = outcome.trigger,
                 .isTriggerUnknown = outcome.isTriggerUnknown};
    statuses_[id] = {.line = granted(HotkeyNames::display(binding), outcome),
                     .inWords = granted(HotkeyNames::onKeyboard(binding), outcome)};
    statusChanges_.tell();
}

void Hotkey::letGo(std::uint32_t id) {
    if (held_.erase(id) > 0)
        services_.registrar.release(id);
}

Hotkey::Status Hotkey::refusal(const HotkeyBinding& binding, const HotkeyOutcome& outcome) const {
    const auto says = [&](const std::string& chord) {
        if (outcome.kind == Kind::heldByAnother)
            return fmt::format("{} is held by another app ({}); not registered", chord, suspects());
        return fmt::format("could not register {} ({})", chord, outcome.reason);
    };
    return {.line = says(HotkeyNames::display(binding)),
            .inWords = says(HotkeyNames::onKeyboard(binding))};
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
        const auto* const how = isAsked(id) ? "waiting" : results[id] ? "ok" : "failed";
        told.push_back(fmt::format("{}={}", HotkeyIDs::name(id), how));
    }
    services_.diagnostics.log(fmt::format("hotkey re-assert ({}): {}",
                                          reason,
                                          told.empty() ? "nothing registered to re-assert"
                                                       : fmt::format("{}", fmt::join(told, ", "))));
    return results;
}

std::string Hotkey::status(std::uint32_t id) const {
    const auto found = statuses_.find(id);
    return found == statuses_.end() ? "not registered" : found->second.line;
}

std::string Hotkey::statusInWords(std::uint32_t id) const {
    const auto found = statuses_.find(id);
    return found == statuses_.end() ? "not registered" : found->second.inWords;
}

std::optional<HotkeyBinding> Hotkey::claim(std::uint32_t id) const {
    return held_.contains(id) ? std::optional(bindings_.at(id)) : std::nullopt;
}

std::optional<HotkeyBinding> Hotkey::binding(std::uint32_t id) const {
    const auto found = held_.find(id);
    return found == held_.end() || found->second.kind != Kind::registered
               ? std::nullopt
               : std::optional(bindings_.at(id));
}

std::optional<std::string> Hotkey::keysInWords(std::uint32_t id) const {
    const auto chord = binding(id);
    if (!chord)
        return std::nullopt;
    const auto& [kind, trigger, isTriggerUnknown] = held_.at(id);
    if (isTriggerUnknown)
        return "A key of the desktop's settings";
    return trigger.empty() ? HotkeyNames::onKeyboard(*chord) : trigger;
}

bool Hotkey::isAsked(std::uint32_t id) const {
    const auto found = held_.find(id);
    return found != held_.end() && found->second.kind == Kind::asked;
}

} // namespace tessarine
