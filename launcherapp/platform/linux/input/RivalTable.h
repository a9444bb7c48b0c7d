#pragma once

#include <array>
#include <span>
#include <string_view>

/// The launchers that people run on Linux desktops and summon by a key: those that stay in memory
/// and so hold it. The desktop's own runner is one where it is a program of its own (KDE's, Xfce's,
/// LXQt's). Where the shell or the window manager has it built in, it can't be quit, and its keys
/// show by being refused. Pure; any thread.
namespace tessarine::RivalTable {

struct Rival {
    std::string_view name;                    ///< as its users know it
    std::array<std::string_view, 2> busNames; ///< that it owns on the session bus; "" for none
    std::string_view program;                 ///< the file name of its program, or of its script
};

std::span<const Rival> rivals();

} // namespace tessarine::RivalTable
