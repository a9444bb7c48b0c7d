#include "tests/desktop/mutter/MutterDesktop.h"

#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <stdexcept>

namespace tessarine {

MutterDesktop::MutterDesktop()
    : ProgramOnWayland({{"WAYLAND_DISPLAY", variable("WAYLAND_DISPLAY")},
                        {"DISPLAY", variable("DISPLAY")},
                        {"XAUTHORITY", variable("XAUTHORITY")},
                        {"XDG_SESSION_TYPE", "wayland"},
                        {"XDG_CURRENT_DESKTOP", "GNOME"}}) {}

MutterDesktop::~MutterDesktop() = default;

void MutterDesktop::summon(const std::string& action) {
    const std::string isUp = "panel show: visible=true";
    const int before = logged(isUp);
    run("gapplication action com.corvane.tessarine " + action);
    // Without a graphics card it may draw for longer than the program waits for the keyboard, which
    // the window has by the time of the next answer.
    WaylandConnection connection;
    if (!becomes(before + 1, isUp) || !waitUntil(patience, [&] { return connection.roundTrip(); }))
        throw std::runtime_error("the panel did not come up");
}

bool MutterDesktop::goesAway(int times) const {
    return becomes(times, hidden);
}

std::string MutterDesktop::lines() const {
    return textOf(folder.path("/lines"));
}

void MutterDesktop::openTerminal() {
    launch("foot --title=Terminal sh -c 'cat > " + folder.path("/lines") + "'");
    // The compositor tells nobody which window has the keyboard.
    ASSERT_TRUE(waitUntil(patience, [&] {
        keyboard.press({KEY_ENTER});
        return !lines().empty();
    }));
}

bool MutterDesktop::terminalGets(const std::string& line) {
    keyboard.type(line + "\n");
    return waitUntil(patience, [&] { return lines().ends_with("\n" + line + "\n"); });
}

} // namespace tessarine
