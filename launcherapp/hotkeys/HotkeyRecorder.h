#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

class Hotkey;

/// A field that a new chord is pressed into, as logic: what it shows, and what a key means to it.
/// While it records, a chord that the program holds reaches it in place of its action. For the
/// window of settings, which is not built yet. Main thread only.
class HotkeyRecorder {
public:
    enum class Clearing { forbidden, allowed };

    /// What became of a key.
    enum class Outcome {
        captured,  ///< it is the chord now
        cancelled, ///< Escape: the chord stays
        cleared,   ///< Backspace, where that is allowed
        refused,   ///< alone it would be lost to every other program; still recording
        ignored,   ///< not recording, or no key that a chord can have
    };

    HotkeyRecorder(Hotkey& hotkey, Clearing clearing) : hotkey_(hotkey), clearing_(clearing) {}

    HotkeyRecorder(const HotkeyRecorder&) = delete;
    HotkeyRecorder& operator=(const HotkeyRecorder&) = delete;

    /// Called with each chord that is recorded; with nothing when it was cleared.
    std::function<void(const std::optional<HotkeyBinding>& binding)> onCapture;

    /// Called when what it shows is another.
    std::function<void()> onChange;

    /// What it shows while it does not record; no key and no modifiers stand for none.
    void setBinding(const HotkeyBinding& binding);

    void start();

    /// Nothing happens when it doesn't record.
    void stop();

    bool isRecording() const { return isRecording_; }

    bool allowsClear() const { return clearing_ == Clearing::allowed; }

    bool hasBinding() const { return binding_.has_value(); }

    /// A key went down; `pressed` is nothing for one that no binding can name.
    Outcome keyDown(const std::optional<HotkeyBinding>& pressed);

    /// Takes the chord away; nothing happens where that is not allowed.
    void clear();

    /// "Super+Space", "None", or what to do while it records.
    std::string text() const;

private:
    void capture(const std::optional<HotkeyBinding>& binding);
    void changed() const;

    Hotkey& hotkey_;
    Clearing clearing_;
    std::optional<HotkeyBinding> binding_;
    bool isRecording_ = false;
    bool isRefused_ = false; ///< the last key was
    Subscription diversion_;
};

} // namespace tessarine
