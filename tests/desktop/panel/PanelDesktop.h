#pragma once

#include "tests/desktop/Program.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// Where a window stands on the screen, in pixels.
struct WindowFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const WindowFrame&) const = default;
};

/// The real program on a real display, driven by keys that come from outside of it, with another
/// program beside it. A display for every test, or for all of them.
class PanelDesktop : public testing::Test {
protected:
    PanelDesktop();
    ~PanelDesktop() override;

    /// An application that leaves a mark when it is launched.
    void install(const std::string& id, const std::string& name) const;
    bool started(const std::string& id) const;
    /// Whether it was, by now; forgets it.
    bool hasStarted(const std::string& id) const;

    /// The text of the file of preferences, a JSON object. Before the start.
    void prefer(const std::string& json) const;

    /// Starts the program and waits until it says which key brings it up.
    void start(const std::string& invitation = "Super+Space brings it up");
    /// Presses the chord and waits until the panel is up and has the keyboard.
    void summon(const std::string& chord = "super+space");

    /// What "xdotool" is told.
    void keys(const std::string& words) const;
    static void run(const std::string& command);

    /// How often the log has a line with this text.
    int logged(const std::string& text) const;
    bool becomes(int count, const std::string& text) const;

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

    static constexpr std::chrono::seconds patience{15};
    const std::string shown = "panel show: visible=true key=true";
    const std::string hidden = "panel hide";
    TemporaryFolder folder;
    Program::Variables environment;
    X11Neighbour neighbour;
    std::unique_ptr<Program> program;

private:
    std::string logPath() const;
    std::optional<WindowFrame> geometry(X11Neighbour::Window window);
    void answerPaste(const void* event, const std::string& text);

    X11Neighbour::Window clipboard_; ///< never seen; what is pasted goes through it
};

} // namespace tessarine
