#include "launcherapp/hotkeys/HotkeyRecorder.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/hotkeys/HotkeyNames.h"

namespace tessarine {

namespace {

constexpr HotkeyBinding none;

} // namespace

void HotkeyRecorder::setBinding(const HotkeyBinding& binding) {
    binding_ = binding == none ? std::nullopt : std::optional(binding);
    changed();
}

void HotkeyRecorder::start() {
    if (isRecording_)
        return;
    isRecording_ = true;
    isRefused_ = false;
    diversion_ = hotkey_.divert([this](const HotkeyBinding& binding) { keyDown(binding); });
    changed();
}

void HotkeyRecorder::stop() {
    if (!isRecording_)
        return;
    isRecording_ = false;
    diversion_.end();
    changed();
}

HotkeyRecorder::Outcome HotkeyRecorder::keyDown(const std::optional<HotkeyBinding>& pressed) {
    if (!isRecording_ || !pressed)
        return Outcome::ignored;
    if (pressed->carbonModifiers != 0) {
        capture(pressed);
        return Outcome::captured;
    }
    if (pressed->keyCode == VirtualKeys::escape) {
        stop();
        return Outcome::cancelled;
    }
    if (pressed->keyCode == VirtualKeys::backspace && allowsClear()) {
        capture(std::nullopt);
        return Outcome::cleared;
    }
    isRefused_ = true;
    changed();
    return Outcome::refused;
}

void HotkeyRecorder::clear() {
    if (allowsClear())
        capture(std::nullopt);
}

/// It has stopped before anybody is told: whoever is told takes the chord.
void HotkeyRecorder::capture(const std::optional<HotkeyBinding>& binding) {
    binding_ = binding;
    stop();
    changed();
    if (onCapture)
        onCapture(binding);
}

std::string HotkeyRecorder::text() const {
    if (isRecording_)
        return isRefused_ ? "Hold Super, Ctrl, Alt or Shift with it" : "Press the new keys";
    return binding_ ? HotkeyNames::onKeyboard(*binding_) : "None";
}

void HotkeyRecorder::changed() const {
    if (onChange)
        onChange();
}

} // namespace tessarine
