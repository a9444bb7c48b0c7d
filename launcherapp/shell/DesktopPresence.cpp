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
#include "launcherapp/platform/ActivationTokens.h"
#include "launcherapp/platform/HotkeyRegistrar.h"
#include "launcherapp/platform/linux/desktop/SessionWatch.h"
#include "launcherapp/platform/linux/desktop/StatusItem.h"
#include "launcherapp/platform/linux/input/LinuxRivalLaunchers.h"
#include "launcherapp/platform/linux/input/X11HotkeyRegistrar.h"
#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/ProductInfo.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace tessarine {

/// The panel and its chords, in start-up order; each refers to those above it.
class DesktopPresence::OnScreen {
public:
    OnScreen(const Services& given, PanelViewServices viewed) : services(given), sources(viewed) {
        view.onResignKey = [this] { panel.hide(); };
        view.onHeights = [this] { takeHeights(); };
        view.onActions = [this] { panel.showActions(); };
        view.onMenu = [this](Point at, std::optional<std::size_t> row) {
            panel.showActions(at, row);
        };
        view.field().pasteText = services.pasteText;
        window.keyArrives = [this](std::uint32_t scanCode) { view.field().keyArrives(scanCode); };
        window.goesAway = [this] { services.tokens.prepare(); };
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

    /// A chord that other programs can't have any more must show something for it: this one is
    /// taken as soon as there is a clipboard history.
    std::function<void()> clipboardChord() {
        if (!sources.model.families.clipboard)
            return {};
        return [this] { panel.toggleClipboard(); };
    }

    const Services& services;
    PanelViewServices sources;
    LauncherPanel view{sources};
    QtPanelWindow window{view, view.field(), makePanelSurface()};
    SessionWatch session{services.work};
    LinuxRivalLaunchers rivals{services.queue, services.work, session};
    std::unique_ptr<HotkeyRegistrar> registrar =
        hotkeyRegistrar(services.queue, services.desktop, std::string(ProductInfo::bundleID));
    Hotkey hotkey{{.registrar = *registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    StageMarks stages; // no watch for stalls runs yet
    Updater updater;   // and nothing is updated
    PanelController panel{{.queue = services.queue,
                           .diagnostics = services.diagnostics,
                           .prefs = sources.prefs,
                           .model = sources.model,
                           .window = window,
                           .windows = services.windows,
                           .hotkey = hotkey,
                           .stages = stages,
                           .updater = updater}};
    HotkeySetup setup{
        {.hotkey = hotkey,
         .rivals = rivals,
         .prefs = sources.prefs,
         .diagnostics = services.diagnostics},
        {.panel = [this] { panel.hotkeyFired(); }, .clipboard = clipboardChord(), .voice = {}}};
    HotkeyGuard guard{{.queue = services.queue,
                       .hotkey = hotkey,
                       .setup = setup,
                       .rivals = rivals,
                       .prefs = sources.prefs,
                       .diagnostics = services.diagnostics}};
    Subscription activeChanges = services.windows.onActiveChanged([this] { rivals.look(); });
    Subscription locks;
};

class DesktopPresence::Parts {
public:
    Parts(Services given, std::function<void()> open)
        : services(std::move(given)),
          statusItem({.open = std::move(open),
                      .settings = services.openSettings,
                      .quit = services.quit,
                      .log = [this](const std::string& line) { services.diagnostics.log(line); }}) {
    }

    /// The copy state joins when the clipboard's history is there.
    void refreshStatusItem() {
        const auto& hotkey = onScreen->hotkey;
        const bool isAsked = hotkey.isAsked();
        const auto keys = hotkey.keysInWords().value_or(isAsked ? std::string() : keyless.keys);
        auto problem = hotkey.statusInWords();
        if (!isAsked && !keyless.advice.empty())
            problem += "; " + keyless.advice;
        statusItem.refresh(
            {.key = keys, .problem = keys.empty() ? problem : std::string(), .copy = {}});
    }

    Services services;
    StatusItem statusItem;
    std::optional<OnScreen> onScreen;
    Subscription hotkeyChanges;
    Keyless keyless;
};

DesktopPresence::DesktopPresence(Services services)
    : parts_(std::make_unique<Parts>(std::move(services), [this] { bringUp(); })) {}

DesktopPresence::~DesktopPresence() = default;

void DesktopPresence::installStatusItem() {
    parts_->statusItem.start();
}

PanelController& DesktopPresence::makePanel(PanelViewServices view) {
    auto& parts = *parts_;
    auto& onScreen = parts.onScreen.emplace(parts.services, view);
    parts.hotkeyChanges = onScreen.hotkey.onChange([&parts] { parts.refreshStatusItem(); });
    return onScreen.panel;
}

PanelController* DesktopPresence::panel() {
    return parts_->onScreen ? &parts_->onScreen->panel : nullptr;
}

Hotkey* DesktopPresence::hotkey() {
    return parts_->onScreen ? &parts_->onScreen->hotkey : nullptr;
}

void DesktopPresence::keepWarm() {
    parts_->onScreen->panel.start();
}

void DesktopPresence::watchSessionLock() {
    auto& onScreen = *parts_->onScreen;
    onScreen.locks = onScreen.session.onLocked([&panel = onScreen.panel] { panel.hide(); });
}

void DesktopPresence::registerHotkey() {
    parts_->onScreen->setup.registerHotkey();
    parts_->onScreen->guard.start();
}

void DesktopPresence::bringUp() {
    if (auto* const made = panel(); made && !made->isVisible())
        made->show();
}

std::string DesktopPresence::hotkeyStatus() const {
    const auto& hotkey = parts_->onScreen->hotkey;
    return hotkey.isAsked() ? "not known yet (" + hotkey.status() + ")" : hotkey.status();
}

std::string DesktopPresence::clipboardStatus() const {
    return parts_->onScreen->hotkey.status(HotkeyIDs::clipboard);
}

std::string DesktopPresence::voiceStatus() const {
    return parts_->onScreen->hotkey.status(HotkeyIDs::voice);
}

Invitation::Chord DesktopPresence::chord() const {
    using enum Invitation::Chord::State;
    const auto& hotkey = parts_->onScreen->hotkey;
    const auto keys = hotkey.keysInWords();
    return {.state = keys               ? held
                     : hotkey.isAsked() ? asked
                                        : none,
            .keys = keys.value_or(""),
            .status = hotkey.statusInWords()};
}

void DesktopPresence::setKeyless(Keyless keyless) {
    parts_->keyless = std::move(keyless);
    parts_->refreshStatusItem();
}

Subscription DesktopPresence::onChordChange(std::function<void()> changed) {
    return parts_->onScreen->hotkey.onChange(std::move(changed));
}

void DesktopPresence::toggle() {
    auto& onScreen = *parts_->onScreen;
    onScreen.hotkey.notePress(parts_->services.queue.uptime());
    onScreen.panel.hotkeyFired();
}

void DesktopPresence::toggleClipboard() {
    auto& onScreen = *parts_->onScreen;
    onScreen.hotkey.notePress(parts_->services.queue.uptime());
    onScreen.panel.toggleClipboard();
}

} // namespace tessarine
