#include "launcherapp/platform/linux/wayland/windows/ipc/HyprlandScene.h"

#include "LauncherCore/text/ForeignJson.h"
#include "LauncherCore/text/JsonFields.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <set>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;

std::string text(JsonFields& object, const char* key) {
    return object.optional<std::string>(key).value_or("");
}

double real(JsonFields& object, const char* key) {
    return object.optional<double>(key).value_or(0);
}

/// A list of numbers; 0 for one that isn't there.
double element(Json* list, std::size_t index) {
    const bool isThere =
        list && list->is_array() && index < list->size() && (*list)[index].is_number();
    return isThere ? (*list)[index].get<double>() : 0;
}

/// The number of the workspace in that member; 0 for none.
std::int64_t workspace(JsonFields& object, const char* key) {
    auto* const found = object.member(key);
    if (!found)
        return 0;
    JsonFields fields(*found);
    return fields.optional<std::int64_t>("id").value_or(0);
}

/// From a number like "0x55d0c8a4b2c0"; 0 for what is none.
std::uint64_t address(std::string_view text) {
    std::uint64_t number = 0;
    if (text.starts_with("0x"))
        std::from_chars(text.data() + 2, text.data() + text.size(), number, 16);
    return number;
}

/// Older versions tell it as a truth value, later ones as one of several kinds.
bool isFullScreen(JsonFields& client) {
    auto* const found = client.member("fullscreen");
    if (!found)
        return false;
    return found->is_boolean() ? found->get<bool>()
                               : found->is_number_integer() && found->get<std::int64_t>() != 0;
}

struct Monitors {
    std::vector<Screen> screens;
    std::set<std::int64_t> shown; ///< workspaces
    std::int64_t focused = 0;     ///< the workspace that has the focus
};

void readMonitor(Json& json, Monitors& monitors) {
    JsonFields monitor(json);
    const auto scale = monitor.optional<double>("scale").value_or(1);
    auto width = real(monitor, "width");
    auto height = real(monitor, "height");
    if (scale <= 0 || width <= 0 || height <= 0)
        return;
    if (monitor.optional<std::int64_t>("transform").value_or(0) % 2 != 0) // on its side
        std::swap(width, height);
    const Rectangle frame{.x = real(monitor, "x"),
                          .y = real(monitor, "y"),
                          .width = std::round(width / scale),
                          .height = std::round(height / scale)};
    auto* const reserved = monitor.member("reserved"); // left, top, right, bottom
    const Rectangle workArea{.x = frame.x + element(reserved, 0),
                             .y = frame.y + element(reserved, 1),
                             .width = frame.width - element(reserved, 0) - element(reserved, 2),
                             .height = frame.height - element(reserved, 1) - element(reserved, 3)};
    const bool isFocused = monitor.optional<bool>("focused").value_or(false);
    monitors.screens.push_back(
        {.name = text(monitor, "name"), .frame = frame, .workArea = workArea, .isMain = isFocused});
    const auto ordinary = workspace(monitor, "activeWorkspace");
    const auto special = workspace(monitor, "specialWorkspace"); // in front of the ordinary one
    monitors.shown.insert({ordinary, special});
    if (isFocused)
        monitors.focused = special != 0 ? special : ordinary;
}

void readClient(Json& json, const Monitors& monitors, WindowScene& scene) {
    JsonFields client(json);
    const auto id = address(text(client, "address"));
    if (id == 0 || !client.optional<bool>("mapped").value_or(true))
        return;
    const auto place = workspace(client, "workspace");
    // Ordinary ones that have names instead of numbers begin at -1337.
    const bool isSpecial = place < 0 && place > -1000;
    auto* const at = client.member("at");
    auto* const size = client.member("size");
    WindowScene::Window window{
        .window = {.id = id,
                   .applicationID = text(client, "class"),
                   .processID = processNumber(client.optional<std::int64_t>("pid").value_or(0)),
                   .hidden = isSpecial && !monitors.shown.contains(place)},
        .frame = {.x = element(at, 0),
                  .y = element(at, 1),
                  .width = element(size, 0),
                  .height = element(size, 1)},
        .isTiled = !client.optional<bool>("floating").value_or(false),
        .isFullScreen = isFullScreen(client),
        .isX11 = client.optional<bool>("xwayland").value_or(false)};
    window.window.className = window.window.applicationID;
    if (client.optional<std::int64_t>("focusHistoryID") == 0 && place == monitors.focused)
        scene.active = id;
    scene.windows.push_back(std::move(window));
}

} // namespace

std::optional<WindowScene> HyprlandScene::read(std::string_view clients,
                                               std::string_view monitors) {
    auto windows = ForeignJson::read(clients);
    auto outputs = ForeignJson::read(monitors);
    if (!windows.is_array() || !outputs.is_array())
        return std::nullopt;
    Monitors told;
    for (auto& each : outputs)
        readMonitor(each, told);
    WindowScene scene{.screens = told.screens};
    for (auto& each : windows)
        readClient(each, told, scene);
    return scene;
}

} // namespace tessarine
