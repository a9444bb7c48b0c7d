#pragma once

#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/input/typing/TypedText.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace tessarine {

/// Presses keys through the test extension of an X11 display, on a connection of its own. Whatever
/// is locked, as Caps Lock is, counts for nothing and is as before afterwards. Modifiers that the
/// user holds are held again at the end of a paste; after a text that took several turns of the
/// event loop nobody knows whether they still are, and they stay let go.
///
/// A character that no layout has is typed by a key that means nothing otherwise and gets it as
/// its meaning for the moment, which every program of the display hears of. Main thread only.
class X11KeyInjector : public KeyInjector {
public:
    static constexpr std::size_t longestText = TypedText::longest;

    /// Programs read the keyboard anew before the first key with a new meaning comes, and must have
    /// taken the last before that meaning goes.
    static constexpr Seconds beforeNewMeanings{0.05};
    static constexpr Seconds afterNewMeanings{0.3};

    /// `queue` outlives it.
    explicit X11KeyInjector(MainQueue& queue);
    ~X11KeyInjector() override;
    X11KeyInjector(const X11KeyInjector&) = delete;
    X11KeyInjector& operator=(const X11KeyInjector&) = delete;

    /// Missing where the display lacks the extension or is lost.
    Ability ability() const override;

    bool paste(PasteChord chord) override;

    /// Line breaks are Return and tabs Tab; other control characters are left out. One text after
    /// the other.
    void type(const std::string& text, std::function<void(bool typed)> done) override;

private:
    class Keyboard;
    std::unique_ptr<Keyboard> keyboard_;
};

} // namespace tessarine
