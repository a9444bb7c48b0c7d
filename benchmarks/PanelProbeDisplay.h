#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

struct xcb_connection_t;

namespace tessarine {

/// The user's hands and eyes at an X11 display, over a connection of their own: presses real keys
/// and sees when the panel's window comes, goes and is drawn.
class PanelProbeDisplay {
public:
    using Clock = std::chrono::steady_clock;

    /// What was seen of the panel's window.
    struct Sight {
        enum class Kind { mapped, unmapped, drawn };
        Kind kind = Kind::drawn;
        Clock::time_point at;
        int top = 0; ///< of what was drawn, from the window's top
        int bottom = 0;
        int width = 0;
    };

    struct Extent {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };

    /// A key with what is held meanwhile, such as "super+space".
    struct Chord {
        std::uint8_t modifier = 0; ///< key code; none for 0
        std::uint8_t key = 0;
        std::uint16_t mask = 0;
    };

    /// Ends the program when there is no display or it lacks an extension.
    PanelProbeDisplay();
    ~PanelProbeDisplay();
    PanelProbeDisplay(const PanelProbeDisplay&) = delete;
    PanelProbeDisplay& operator=(const PanelProbeDisplay&) = delete;

    /// Of "super", "alt", "ctrl" or nothing, and "space" or a letter. Nothing for any other name.
    std::optional<Chord> chord(const std::string& name) const;

    /// Presses and lets go; gives the moment of the press.
    Clock::time_point press(const Chord& chord);
    Clock::time_point pressLetter(char letter);
    Clock::time_point pressKeysym(std::uint32_t keysym);
    void click(int x, int y, int times);

    /// What is seen next of a panel, up to the deadline; nothing by then.
    std::optional<Sight> next(Clock::time_point deadline);
    /// Forgets what was seen until now.
    void forget();
    Extent panel();

    /// Whether a program has taken the chord from everybody else. Nobody notices being asked.
    bool isTaken(const Chord& chord);

    /// The text that was selected last, by whatever program.
    std::string selectedText();

private:
    std::uint8_t keycode(std::uint32_t keysym) const;
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
    bool isPanel(std::uint32_t window);
    void watch(std::uint32_t window);
    std::optional<Sight> sight(const void* event);
    std::uint32_t atom(const char* name);

    xcb_connection_t* connection_;
    std::uint32_t root_ = 0;
    std::uint32_t panel_ = 0;
    std::uint32_t damage_ = 0;
    std::uint32_t receiver_ = 0; ///< a window of ours that selections are sent to
    int damageEvent_ = 0;
};

} // namespace tessarine
