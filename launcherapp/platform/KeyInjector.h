#pragma once

#include "launcherapp/platform/Ability.h"

#include <functional>
#include <string>

namespace tessarine {

/// Presses keys as if the user did, in whatever window has the keyboard. Keys that the user holds
/// down meanwhile are let go of first and held again after. Main thread only; a call waits for a
/// few round trips to the display at most.
class KeyInjector {
public:
    enum class PasteChord {
        ordinary, ///< Ctrl+V
        terminal, ///< Ctrl+Shift+V, as Ctrl+V is a control character there
    };

    virtual ~KeyInjector() = default;

    virtual Ability ability() const = 0;

    /// False when the keys could not be sent.
    virtual bool paste(PasteChord chord) = 0;

    /// Types the text, keys that the layout has and any other character alike. `done` is called
    /// once, later, with false when it could not be typed whole.
    virtual void type(const std::string& text, std::function<void(bool typed)> done) = 0;
};

} // namespace tessarine
