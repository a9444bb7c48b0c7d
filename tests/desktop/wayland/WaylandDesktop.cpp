#include "tests/desktop/wayland/WaylandDesktop.h"

#include <stdexcept>
#include <unistd.h>

namespace tessarine {

namespace {

const nlohmann::json* focusedNode(const nlohmann::json& node) {
    if (node.value("focused", false))
        return &node;
    for (const auto* children : {"nodes", "floating_nodes"}) {
        if (!node.contains(children))
            continue;
        for (const auto& child : node.at(children))
            if (const auto* found = focusedNode(child))
                return found;
    }
    return nullptr;
}

} // namespace

WaylandDesktop::WaylandDesktop()
    : ProgramOnWayland({{"WAYLAND_DISPLAY", variable("WAYLAND_DISPLAY")},
                        {"SWAYSOCK", variable("SWAYSOCK")},
                        {"XDG_SESSION_TYPE", "wayland"},
                        {"XDG_CURRENT_DESKTOP", "sway"}}) {
    // What follows a comma would be the compositor's next command.
    const auto address = variable("DBUS_SESSION_BUS_ADDRESS");
    const auto bus = address.substr(0, address.find(','));
    const auto bind = [&](const std::string& keys, const std::string& action) {
        sway("'bindsym " + keys + " exec env DBUS_SESSION_BUS_ADDRESS=" + bus +
             " gapplication action com.corvane.tessarine " + action + "'");
    };
    bind("Mod4+space", "toggle");
    bind("Mod4+Shift+v", "clipboard");
}

WaylandDesktop::~WaylandDesktop() = default;

void WaylandDesktop::summon(std::initializer_list<std::uint32_t> chord) {
    const int before = logged(shown);
    keyboard.press(chord);
    if (!becomes(before + 1, shown))
        throw std::runtime_error("the panel did not come up");
}

void WaylandDesktop::strike(std::initializer_list<std::uint32_t> keys) {
    for (const auto key : keys)
        keyboard.press({key});
}

bool WaylandDesktop::goesAway(int times) const {
    return becomes(times, hidden);
}

nlohmann::json WaylandDesktop::sway(const std::string& words) const {
    return nlohmann::json::parse(outputOf("swaymsg -r " + words), nullptr, false);
}

std::optional<std::string> WaylandDesktop::focused() const {
    const auto tree = sway("-t get_tree");
    const auto* const node = focusedNode(tree);
    if (!node || node->value("type", "") == "workspace")
        return std::nullopt;
    return node->value("name", "");
}

bool WaylandDesktop::focuses(const std::string& title) const {
    return waitUntil(patience, [&] { return focused() == title; });
}

void WaylandDesktop::openTerminal() {
    launch("foot --title=Terminal sh -c 'cat > " + folder.path("/lines") + "'");
    ASSERT_TRUE(focuses("Terminal"));
    // The program that reads in it may start after its window is there.
    ASSERT_TRUE(terminalHas(""));
}

void WaylandDesktop::openField() {
    launchField();
    ASSERT_TRUE(focuses("Field Notes"));
}

bool WaylandDesktop::terminalHas(const std::string& lines) const {
    const auto path = folder.path("/lines");
    return waitUntil(patience,
                     [&] { return ::access(path.c_str(), F_OK) == 0 && textOf(path) == lines; });
}

bool WaylandDesktop::fieldHas(const std::string& text) const {
    return waitUntil(patience, [&] { return written() == text; });
}

} // namespace tessarine
