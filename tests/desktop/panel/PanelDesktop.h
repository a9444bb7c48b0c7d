#pragma once

#include "tests/desktop/ProgramOnDesktop.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <optional>
#include <string>

namespace tessarine {

/// Where a window stands on the screen, in pixels.
struct WindowFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const WindowFrame&) const = default;
};

/// The real program on a real X11 display, driven by keys that come from outside of it, with
/// another program beside it. A display for every test, or for all of them.
class PanelDesktop : public ProgramOnDesktop {
protected:
    PanelDesktop();
    ~PanelDesktop() override;

    /// Presses the chord and waits until the panel is up and has the keyboard.
    void summon(const std::string& chord = "super+space");

    /// What "xdotool" is told.
    void keys(const std::string& words) const;

    /// The panel's window as the display has it; nothing while it isn't mapped.
    std::optional<X11Neighbour::Window> panelWindow();
    std::optional<WindowFrame> panelFrame();
    /// A managed window with what the window manager draws around it.
    std::optional<WindowFrame> frameOf(X11Neighbour::Window window);
    /// Whether it is gone, or is so after a moment.
    bool goesAway();

    /// All that is in the panel's field, as another program gets it that pastes.
    std::string fieldText();
    /// Copies the text in another program and pastes it here; whether the condition comes to hold.
    bool paste(const std::string& text, const std::function<bool()>& holds);

    /// The letters typed into the neighbour's windows since the last call.
    std::string keysOfNeighbour();

    X11Neighbour neighbour;

private:
    std::optional<WindowFrame> geometry(X11Neighbour::Window window);
    void answerPaste(const void* event, const std::string& text);

    X11Neighbour::Window clipboard_; ///< never seen; what is pasted goes through it
};

} // namespace tessarine
