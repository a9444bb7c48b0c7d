#include "launcherapp/hotkeys/HotkeyRecorder.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/hotkeys/HotkeyNames.h"

namespace tessarine {

namespace {

constexpr std::uint32_t escapeKey = 53;
constexpr std::uint32_t backspaceKey = 51;
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

HotkeyRecorder::Key HotkeyRecorder::keyDown(const std::optional<HotkeyBinding>& pressed) {
    if (!isRecording_ || !pressed)
        return Key::ignored;
    if (pressed->carbonModifiers != 0) {
        capture(pressed);
        return Key::captured;
    }
    if (pressed->keyCode == escapeKey) {
        stop();
        return Key::cancelled;
    }
    if (pressed->keyCode == backspaceKey && allowsClear()) {
        capture(std::nullopt);
        return Key::cleared;
    }
    isRefused_ = true;
    changed();
    return Key::refused;
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
