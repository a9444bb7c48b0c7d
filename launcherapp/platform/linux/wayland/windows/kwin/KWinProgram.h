#pragma once

#include <string>
#include <string_view>

/// The program that KWin runs for this one, since it tells and moves windows only from inside
/// itself: JavaScript for the scripting of KWin 5.27 and 6. Pure; any thread.
namespace tessarine::KWinProgram {

// Where the program calls this one: `told` with two texts, what it calls itself, and a JSON object
// {"scene": …, "problem": TEXT}: the second where something failed, without the first where that
// was the scene. KWinScene reads the scene.
inline constexpr std::string_view path = "/com/corvane/tessarine/KWin";
inline constexpr std::string_view interface = "com.corvane.tessarine.KWin";
inline constexpr std::string_view member = "told";

/// `orders` is a JSON list of what is to be done first, in its order:
/// {"do": "activate"|"unhide"|"makeOrdinary"|"close", "window": HEX} or {"do": "place", "window":
/// HEX, "x", "y", "width", "height": numbers}, a window being the sixteen digits of its number. It
/// tells `listener`, a name on the bus, the scene after that; and, where it is to follow, after
/// each change too, until it is unloaded. `script` is what it calls itself.
struct Task {
    std::string listener;
    std::string script;
    std::string orders = "[]";
    bool follows = false;
};

std::string text(const Task& task);

} // namespace tessarine::KWinProgram
