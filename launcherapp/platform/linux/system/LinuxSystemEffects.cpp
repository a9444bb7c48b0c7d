#include "launcherapp/platform/linux/system/LinuxSystemEffects.h"

#include "launcherapp/platform/linux/system/DesktopProbe.h"
#include "launcherapp/platform/linux/system/EffectWays.h"
#include "launcherapp/platform/linux/system/files/FileManagerEffects.h"
#include "launcherapp/platform/linux/system/files/TrashEffects.h"
#include "launcherapp/platform/linux/system/files/UDisksEject.h"
#include "launcherapp/platform/linux/system/screen/AppearanceSetting.h"
#include "launcherapp/platform/linux/system/screen/ScreenEffects.h"
#include "launcherapp/platform/linux/system/screen/Screenshots.h"
#include "launcherapp/platform/linux/system/session/LogindPower.h"
#include "launcherapp/platform/linux/system/session/SessionEffects.h"

#include <array>
#include <cstddef>

namespace tessarine {

namespace {

/// The launcher's own, which it answers without the desktop.
Effect answeredElsewhere(const EffectContext& context) {
    return Effect::by([doors = context.doors](EffectDone done) {
        doors->queue.post([done = std::move(done)] { done("the desktop has no part in this"); });
    });
}

Effect noWispr(const EffectContext&) {
    return Effect::missing("there is no Wispr Flow for Linux");
}

struct Row {
    SystemAction action;
    Effect (*effect)(const EffectContext& context);
};

constexpr auto table = std::to_array<Row>({
    {SystemAction::eject, UDisksEject::ejectAll},
    {SystemAction::lockScreen, SessionEffects::lock},
    {SystemAction::sleep, LogindPower::sleep},
    {SystemAction::emptyTrash, TrashEffects::empty},
    {SystemAction::toggleDarkMode, AppearanceSetting::toggle},
    {SystemAction::restart, LogindPower::restart},
    {SystemAction::shutDown, LogindPower::powerOff},
    {SystemAction::logOut, SessionEffects::logOut},
    {SystemAction::quitAll, answeredElsewhere},
    {SystemAction::sleepDisplays, ScreenEffects::sleepDisplays},
    {SystemAction::screenSaver, ScreenEffects::startScreenSaver},
    {SystemAction::showTrash, TrashEffects::show},
    {SystemAction::toggleHiddenFiles, FileManagerEffects::toggleHiddenFiles},
    {SystemAction::forceQuitDialog, answeredElsewhere},
    {SystemAction::restartFinder, FileManagerEffects::restart},
    {SystemAction::restartDock, SessionEffects::restartShell},
    {SystemAction::screenshotSelection, Screenshots::selection},
    {SystemAction::screenshotWindow, Screenshots::window},
    {SystemAction::restartImmediately, LogindPower::restart},
    {SystemAction::shutDownImmediately, LogindPower::powerOff},
    {SystemAction::logOutImmediately, SessionEffects::logOut},
    {SystemAction::darkMode, AppearanceSetting::dark},
    {SystemAction::lightMode, AppearanceSetting::light},
    {SystemAction::autoAppearance, AppearanceSetting::automatic},
    {SystemAction::timeHomeHere, answeredElsewhere},
    {SystemAction::timeHomeClocks, answeredElsewhere},
    {SystemAction::fixWispr, noWispr},
});

constexpr bool isWhole() {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].action != allSystemActions[i])
            return false;
    }
    return table.size() == allSystemActions.size();
}

static_assert(isWhole(), "an action's place in the table is its value");

} // namespace

Effect effectOf(SystemAction action, const EffectContext& context) {
    return table[static_cast<std::size_t>(action)].effect(context);
}

LinuxSystemEffects::LinuxSystemEffects(SystemDoors doors)
    : doors_(std::make_shared<const SystemDoors>(std::move(doors))),
      probe_(std::make_shared<DesktopProbe>(doors_, [this] { found(); })) {}

LinuxSystemEffects::~LinuxSystemEffects() = default;

void LinuxSystemEffects::start() {
    requireMainThread(doors_->queue);
    probe_->start();
}

Ability LinuxSystemEffects::ability(SystemAction action) const {
    probe_->lookAgain();
    const auto found = effects_.find(action);
    return found == effects_.end() ? Ability{} : found->second.ability;
}

Subscription LinuxSystemEffects::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

void LinuxSystemEffects::perform(SystemAction action, EffectDone done) {
    requireMainThread(doors_->queue);
    const auto found = effects_.find(action);
    if (found == effects_.end()) {
        waiting_.emplace_back(action, std::move(done));
        return;
    }
    if (const auto way = found->second.perform) {
        way(std::move(done));
        return;
    }
    doors_->queue.post([done = std::move(done), why = found->second.ability.reason] { done(why); });
}

void LinuxSystemEffects::found() {
    bool isOther = false;
    for (const auto action : allSystemActions) {
        auto effect = effectOf(action, probe_->context());
        isOther |= effect.ability != ability(action);
        effects_[action] = std::move(effect);
    }
    for (auto& [action, done] : std::exchange(waiting_, {}))
        perform(action, std::move(done));
    if (isOther)
        observers_.tell();
}

} // namespace tessarine
