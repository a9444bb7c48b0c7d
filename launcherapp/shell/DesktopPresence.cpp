#include "launcherapp/shell/DesktopPresence.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/hotkeys/HotkeyGuard.h"
#include "launcherapp/hotkeys/HotkeyNames.h"
#include "launcherapp/hotkeys/HotkeySetup.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/operations/StageMarks.h"
#include "launcherapp/operations/Updater.h"
#include "launcherapp/panel/PanelController.h"
#include "launcherapp/panel/view/LauncherPanel.h"
#include "launcherapp/panel/view/QueryField.h"
#include "launcherapp/platform/HotkeyRegistrar.h"
#include "launcherapp/platform/linux/desktop/DesktopApplication.h"
#include "launcherapp/platform/linux/desktop/StatusItem.h"
#include "launcherapp/platform/linux/input/LinuxRivalLaunchers.h"
#include "launcherapp/platform/linux/input/X11HotkeyRegistrar.h"
#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace tessarine {

/// In start-up order; each refers to those above it.
class DesktopPresence::Parts {
public:
    explicit Parts(Services given) : services(std::move(given)) {
        view.onSettings = services.openSettings;
        view.onResignKey = [this] { panel.hide(); };
        view.onHeights = [this] { takeHeights(); };
        view.onActions = [this] { panel.showActions(); };
        view.onMenu = [this](Point at, std::optional<std::size_t> row) {
            panel.showActions(at, row);
        };
        window.keyArrives = [this](std::uint32_t scanCode) { view.field().keyArrives(scanCode); };
        window.drawsHidden = [this] { view.warm(); };
        window.mixesChanged = [this] { blend(); };
        blend();
        takeHeights();
    }

    void blend() {
        view.setBlending(window.mixes() ? PanelRoot::Blending::mixed : PanelRoot::Blending::opaque);
        window.setFrame(window.frame()); // with another shadow around it
    }

    void takeHeights() { panel.setHeights(view.heights()); }

    Services services;
    LauncherPanel view{services.view};
    QtPanelWindow window{view, view.field(), makePanelSurface()};
    LinuxRivalLaunchers rivals{services.queue, services.work};
    std::unique_ptr<HotkeyRegistrar> registrar = hotkeyRegistrar(services.queue);
    Hotkey hotkey{{.registrar = *registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    StageMarks stages; // no watch for stalls runs yet
    Updater updater;   // and nothing is updated
    PanelController panel{{.queue = services.queue,
                           .diagnostics = services.diagnostics,
                           .prefs = services.view.prefs,
                           .model = services.view.model,
                           .window = window,
                           .windows = services.windows,
                           .hotkey = hotkey,
                           .stages = stages,
                           .updater = updater}};
    HotkeySetup setup{{.hotkey = hotkey,
                       .rivals = rivals,
                       .prefs = services.view.prefs,
                       .diagnostics = services.diagnostics},
                      {.panel = [this] { panel.hotkeyFired(); },
                       .clipboard = [this] { panel.toggleClipboard(); },
                       .voice = {}}};
    HotkeyGuard guard{{.queue = services.queue,
                       .hotkey = hotkey,
                       .setup = setup,
                       .rivals = rivals,
                       .prefs = services.view.prefs,
                       .diagnostics = services.diagnostics}};
    StatusItem statusItem{
        {.open = [this] { panel.show(); },
         .settings = services.openSettings,
         .quit = services.quit,
         .log = [this](const std::string& line) { services.diagnostics.log(line); }}};
    Subscription hotkeyChanges = hotkey.onChange([this] { statusItem.setStatus(hotkey.status()); });
    std::optional<DesktopApplication> application; ///< from `start` on
};

DesktopPresence::DesktopPresence(Services services)
    : parts_(std::make_unique<Parts>(std::move(services))) {}

DesktopPresence::~DesktopPresence() = default;

PanelController& DesktopPresence::panel() {
    return parts_->panel;
}

void DesktopPresence::start() {
    auto& parts = *parts_;
    parts.statusItem.start();
    parts.panel.start();
    parts.application.emplace(
        std::string(ProductInfo::bundleID),
        DesktopApplication::Handlers{
            .activate = [&parts] { parts.panel.show(); },
            .actions = {{"toggle", [&parts] { parts.panel.toggle(); }},
                        {"clipboard", [&parts] { parts.panel.toggleClipboard(); }},
                        {"settings", parts.services.openSettings}},
            .problem =
                [&parts](const std::string& line) { parts.services.diagnostics.log(line); }});
}

void DesktopPresence::registerHotkey() {
    parts_->setup.registerHotkey();
    parts_->guard.start();
}

std::string DesktopPresence::hotkeyStatus() const {
    return parts_->hotkey.status();
}

std::string DesktopPresence::clipboardStatus() const {
    return parts_->hotkey.status(HotkeyIDs::clipboard);
}

std::string DesktopPresence::invitation() const {
    if (const auto binding = parts_->hotkey.binding(HotkeyIDs::panel))
        return fmt::format("Tessarine is running. {} brings it up.",
                           HotkeyNames::onKeyboard(*binding));
    return fmt::format("Tessarine is running, and no key brings it up: {}. Bind a key of your "
                       "desktop's to\n    gapplication action {} toggle",
                       hotkeyStatus(),
                       ProductInfo::bundleID);
}

} // namespace tessarine
