#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScene.h"

#include "LauncherCore/text/JsonFields.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;

constexpr std::size_t keyLength = 16; ///< of 64 bits in hexadecimal digits

std::string text(JsonFields& object, const char* key) {
    return object.optional<std::string>(key).value_or("");
}

bool isTrue(JsonFields& object, const char* key) {
    return object.optional<bool>(key).value_or(false);
}

/// Of a member that is a whole number and not below zero; 0 for any other.
std::int64_t count(JsonFields& object, const char* key) {
    return std::max<std::int64_t>(0, object.optional<std::int64_t>(key).value_or(0));
}

Rectangle rectangle(JsonFields& object, const char* key) {
    auto* const found = object.member(key);
    if (!found)
        return {};
    JsonFields fields(*found);
    const auto side = [&](const char* name) { return fields.optional<double>(name).value_or(0); };
    return {.x = side("x"), .y = side("y"), .width = side("width"), .height = side("height")};
}

Json* list(JsonFields& object, const char* key) {
    auto* const found = object.member(key);
    return found && found->is_array() ? found : nullptr;
}

std::optional<WindowScene::Window> window(Json& json) {
    JsonFields fields(json);
    const auto id = KWinScene::number(text(fields, "window"));
    if (id == 0)
        return std::nullopt;
    const auto x11Window = static_cast<std::uint64_t>(count(fields, "x11Window"));
    return WindowScene::Window{.window = {.id = id,
                                          .applicationID = text(fields, "application"),
                                          .className = text(fields, "class"),
                                          .instanceName = text(fields, "instance"),
                                          .processID = processNumber(count(fields, "process")),
                                          .ordinary = isTrue(fields, "isOrdinary"),
                                          .hidden = isTrue(fields, "isHidden")},
                               .frame = rectangle(fields, "frame"),
                               .isTiled = isTrue(fields, "isTiled"),
                               .isFullScreen = isTrue(fields, "isFullScreen"),
                               .isX11 = x11Window != 0,
                               .x11Window = x11Window};
}

std::optional<Screen> screen(Json& json) {
    JsonFields fields(json);
    Screen read{.name = text(fields, "name"),
                .frame = rectangle(fields, "frame"),
                .workArea = rectangle(fields, "workArea"),
                .isMain = isTrue(fields, "isMain")};
    if (read.frame.width <= 0 || read.frame.height <= 0)
        return std::nullopt;
    return read;
}

} // namespace

std::optional<WindowScene> KWinScene::read(Json scene) {
    JsonFields fields(scene);
    auto* const windows = list(fields, "windows");
    auto* const screens = list(fields, "screens");
    if (!windows || !screens)
        return std::nullopt;
    WindowScene told;
    for (auto& each : *windows) {
        auto one = window(each);
        if (one && !told.find(one->window.id))
            told.windows.push_back(*std::move(one));
    }
    for (auto& each : *screens) {
        if (auto one = screen(each))
            told.screens.push_back(*std::move(one));
    }
    if (const auto active = number(text(fields, "active")); told.find(active))
        told.active = active;
    return told;
}

std::string KWinScene::key(std::uint64_t window) {
    return fmt::format("{:016x}", window);
}

std::uint64_t KWinScene::number(std::string_view key) {
    std::uint64_t number = 0;
    const auto* const end = key.data() + key.size();
    const auto [stopped, error] = std::from_chars(key.data(), end, number, 16);
    const bool isWhole = key.size() == keyLength && error == std::errc{} && stopped == end;
    return isWhole ? number : 0;
}

} // namespace tessarine
