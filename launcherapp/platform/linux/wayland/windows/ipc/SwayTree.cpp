#include "launcherapp/platform/linux/wayland/windows/ipc/SwayTree.h"

#include "LauncherCore/text/ForeignJson.h"
#include "LauncherCore/text/JsonFields.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;

constexpr std::string_view hiddenOutput = "__i3"; ///< the one that holds the scratchpad
/// Deeper than people nest containers; what is below isn't read.
constexpr int deepest = 100;

std::string text(JsonFields& node, const char* key) {
    return node.optional<std::string>(key).value_or("");
}

std::int64_t number(JsonFields& node, const char* key) {
    return node.optional<std::int64_t>(key).value_or(0);
}

bool isTrue(JsonFields& node, const char* key) {
    return node.optional<bool>(key).value_or(false);
}

Json* list(JsonFields& node, const char* key) {
    auto* const found = node.member(key);
    return found && found->is_array() ? found : nullptr;
}

Rectangle rectangle(JsonFields& node, const char* key) {
    auto* const found = node.member(key);
    if (!found)
        return {};
    JsonFields fields(*found);
    const auto side = [&](const char* name) { return fields.optional<double>(name).value_or(0); };
    return {.x = side("x"), .y = side("y"), .width = side("width"), .height = side("height")};
}

/// One walk through a tree.
class Reading {
public:
    WindowScene scene;

    bool readRoot(Json& json) {
        JsonFields root(json);
        if (text(root, "type") != "root")
            return false;
        const auto focus = focusOf(root);
        if (auto* const outputs = list(root, "nodes")) {
            for (auto& each : *outputs)
                readOutput(each, focus);
        }
        std::ranges::sort(scene.windows, {}, [](const auto& each) { return each.window.id; });
        return true;
    }

private:
    /// The id of the child that has the focus, or gets it when this node does; 0 for none.
    static std::int64_t focusOf(JsonFields& node) {
        auto* const order = list(node, "focus");
        return order && !order->empty() && order->front().is_number_integer()
                   ? order->front().get<std::int64_t>()
                   : 0;
    }

    void readOutput(Json& json, std::int64_t focus) {
        JsonFields output(json);
        const auto name = text(output, "name");
        const bool isHidden = name == hiddenOutput;
        const bool hasFocus = number(output, "id") == focus;
        const auto frame = rectangle(output, "rect");
        Screen screen{.name = name, .frame = frame, .workArea = frame, .isMain = hasFocus};
        const auto current = text(output, "current_workspace");
        const auto inside = focusOf(output);
        if (auto* const workspaces = list(output, "nodes")) {
            for (auto& each : *workspaces) {
                JsonFields workspace(each);
                if (text(workspace, "name") == current)
                    screen.workArea = rectangle(workspace, "rect");
                const bool leads = hasFocus && number(workspace, "id") == inside;
                readChildren(workspace,
                             leads && !isTrue(workspace, "focused"),
                             {.isTiled = true, .isHidden = isHidden},
                             0);
            }
        }
        if (!isHidden && screen.frame.width > 0 && screen.frame.height > 0)
            scene.screens.push_back(std::move(screen));
    }

    struct Place {
        bool isTiled = true;
        bool isHidden = false;
    };

    /// `leads` says that the node is on the way to the active window.
    void readChildren(JsonFields& node, bool leads, Place place, int depth) {
        if (depth > deepest)
            return;
        const auto focus = focusOf(node);
        const auto readAll = [&](const char* key, Place where) {
            auto* const children = list(node, key);
            if (!children)
                return;
            for (auto& each : *children)
                readContainer(each, leads ? focus : 0, where, depth);
        };
        readAll("nodes", place);
        place.isTiled = false;
        readAll("floating_nodes", place);
    }

    void readContainer(Json& json, std::int64_t focus, Place place, int depth) {
        JsonFields container(json);
        const auto id = number(container, "id");
        const bool leads = id != 0 && id == focus;
        const auto process = container.optional<std::int64_t>("pid");
        if (!process) { // a container of containers
            // One that has the focus itself, with all its windows, gives the keyboard to none.
            readChildren(container, leads && !isTrue(container, "focused"), place, depth + 1);
            return;
        }
        if (id <= 0)
            return;
        scene.windows.push_back(window(container, id, *process, place));
        if (leads)
            scene.active = static_cast<std::uint64_t>(id);
    }

    static WindowScene::Window
    window(JsonFields& container, std::int64_t id, std::int64_t process, Place place) {
        WindowScene::Window read{.window = {.id = static_cast<std::uint64_t>(id),
                                            .applicationID = text(container, "app_id"),
                                            .processID = processNumber(process),
                                            .hidden = place.isHidden},
                                 .frame = rectangle(container, "rect"),
                                 .isTiled = place.isTiled,
                                 .isFullScreen = number(container, "fullscreen_mode") != 0,
                                 .isX11 = text(container, "shell") == "xwayland",
                                 .x11Window = static_cast<std::uint64_t>(
                                     std::max<std::int64_t>(0, number(container, "window")))};
        // What is told as the place is that below the title bar.
        const auto title = rectangle(container, "deco_rect").height;
        read.frame.y -= title;
        read.frame.height += title;
        // What a program of Wayland calls itself is matched as the class of X11 is.
        read.window.className = read.window.applicationID;
        if (auto* const properties = container.member("window_properties")) {
            JsonFields names(*properties);
            read.window.className = text(names, "class");
            read.window.instanceName = text(names, "instance");
        }
        return read;
    }
};

} // namespace

std::optional<WindowScene> SwayTree::read(std::string_view json) {
    auto tree = ForeignJson::read(json);
    Reading reading;
    if (tree.is_discarded() || !reading.readRoot(tree))
        return std::nullopt;
    return std::move(reading.scene);
}

std::optional<std::uint64_t> SwayTree::focused(std::string_view event) {
    auto json = ForeignJson::read(event);
    JsonFields fields(json);
    auto* const container =
        text(fields, "change") == "focus" ? fields.member("container") : nullptr;
    if (!container)
        return std::nullopt;
    JsonFields window(*container);
    const auto id = number(window, "id");
    return id > 0 ? std::optional(static_cast<std::uint64_t>(id)) : std::nullopt;
}

} // namespace tessarine
