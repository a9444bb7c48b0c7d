#include "launcherapp/platform/linux/wayland/CompositorVariables.h"

#include "launcherapp/platform/linux/wayland/windows/ipc/LocalSocket.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace tessarine {

namespace {

namespace fs = std::filesystem;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// Empty without a display or a folder to find it in.
fs::path displaySocket() {
    const fs::path display = variable("WAYLAND_DISPLAY");
    const fs::path runtime = variable("XDG_RUNTIME_DIR");
    if (display.empty() || display.is_absolute())
        return display;
    return runtime.empty() ? fs::path() : runtime / display;
}

std::vector<fs::path> entries(const fs::path& folder) {
    std::vector<fs::path> found;
    std::error_code failed;
    for (fs::directory_iterator each(folder, failed), end; !failed && each != end;
         each.increment(failed))
        found.push_back(each->path());
    return found;
}

/// What a variable may say, and the socket that stands behind it.
struct Place {
    std::string value;
    fs::path socket;
};

/// The variable is left alone while it names the display's compositor, or somebody alive where
/// nobody else does: a compositor may be listened for by the process that started it.
void renewOne(const char* name,
              pid_t compositor,
              const std::vector<fs::path>& told,
              const std::vector<Place>& places) {
    bool isAlive = false;
    for (const auto& socket : told) {
        const LocalSocket taken(socket.string());
        isAlive = isAlive || taken.isOpen();
        if (taken.listener() == compositor)
            return;
    }
    for (const auto& [value, socket] : places) {
        if (LocalSocket(socket.string()).listener() == compositor) {
            ::setenv(name, value.c_str(), 1);
            return;
        }
    }
    if (!isAlive)
        ::unsetenv(name);
}

/// `folders` are those in which compositors make their sockets.
void renewSway(pid_t compositor, const std::vector<fs::path>& folders) {
    std::vector<Place> places;
    for (const auto& folder : folders) {
        for (const auto& entry : entries(folder)) {
            if (entry.filename().string().starts_with("sway-ipc."))
                places.push_back({.value = entry.string(), .socket = entry});
        }
    }
    renewOne("SWAYSOCK", compositor, {variable("SWAYSOCK")}, places);
}

void renewHyprland(pid_t compositor, std::vector<fs::path> folders) {
    constexpr auto name = "HYPRLAND_INSTANCE_SIGNATURE";
    constexpr auto events = ".socket2.sock";
    folders.emplace_back("/tmp"); // older versions
    std::vector<Place> places;
    std::vector<fs::path> told;
    for (const auto& folder : folders) {
        for (const auto& entry : entries(folder / "hypr"))
            places.push_back({.value = entry.filename().string(), .socket = entry / events});
        if (const auto signature = variable(name); !signature.empty())
            told.push_back(folder / "hypr" / signature / events);
    }
    renewOne(name, compositor, told, places);
}

} // namespace

void CompositorVariables::findDisplay() {
    const auto runtime = variable("XDG_RUNTIME_DIR");
    const bool isLost = variable("WAYLAND_DISPLAY").empty() && variable("DISPLAY").empty();
    if (!isLost || runtime.empty() || variable("DBUS_STARTER_ADDRESS").empty())
        return;
    std::vector<std::string> displays;
    for (const auto& entry : entries(runtime)) {
        // Compositors take the first number that is free, each with a lock of the same name.
        const auto name = entry.filename().string();
        if (name.starts_with("wayland-") && LocalSocket(entry.string()).isOpen())
            displays.push_back(name);
    }
    if (displays.size() == 1)
        ::setenv("WAYLAND_DISPLAY", displays.front().c_str(), 1);
}

void CompositorVariables::renew() {
    const auto display = displaySocket();
    const auto compositor = LocalSocket(display.string()).listener();
    if (!compositor)
        return;
    std::vector<fs::path> folders{display.parent_path()};
    if (const fs::path runtime = variable("XDG_RUNTIME_DIR");
        !runtime.empty() && runtime != folders.front())
        folders.push_back(runtime);
    renewSway(*compositor, folders);
    renewHyprland(*compositor, folders);
}

} // namespace tessarine
