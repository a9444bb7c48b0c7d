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
#include "launcherapp/platform/linux/system/session/SessionEnd.h"

#include <array>
#include <cassert>
#include <cstddef>

namespace tessarine {

namespace {

Effect noWispr(const EffectContext&) {
    return Effect::missing("there is no Wispr Flow for Linux");
}

struct Row {
    SystemAction action;
    Effect (*effect)(const EffectContext& context); ///< null for one that the launcher does itself
};

constexpr auto table = std::to_array<Row>({
    {SystemAction::eject, UDisksEject::ejectAll},
    {SystemAction::lockScreen, SessionEffects::lock},
    {SystemAction::sleep, LogindPower::sleep},
    {SystemAction::emptyTrash, TrashEffects::empty},
    {SystemAction::toggleDarkMode, AppearanceSetting::toggle},
    {SystemAction::restart, SessionEnd::askingRestart},
    {SystemAction::shutDown, SessionEnd::askingShutDown},
    {SystemAction::logOut, SessionEnd::askingLogOut},
    {SystemAction::quitAll, nullptr},
    {SystemAction::sleepDisplays, ScreenEffects::sleepDisplays},
    {SystemAction::screenSaver, ScreenEffects::startScreenSaver},
    {SystemAction::showTrash, TrashEffects::show},
    {SystemAction::toggleHiddenFiles, FileManagerEffects::toggleHiddenFiles},
    {SystemAction::forceQuitDialog, nullptr},
    {SystemAction::restartFinder, FileManagerEffects::restart},
    {SystemAction::restartDock, SessionEffects::restartShell},
    {SystemAction::screenshotSelection, Screenshots::selection},
    {SystemAction::screenshotWindow, Screenshots::window},
    {SystemAction::restartImmediately, LogindPower::restart},
    {SystemAction::shutDownImmediately, LogindPower::powerOff},
    {SystemAction::logOutImmediately, SessionEnd::logOut},
    {SystemAction::darkMode, AppearanceSetting::dark},
    {SystemAction::lightMode, AppearanceSetting::light},
    {SystemAction::autoAppearance, AppearanceSetting::automatic},
    {SystemAction::timeHomeHere, nullptr},
    {SystemAction::timeHomeClocks, nullptr},
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

std::size_t placeOf(SystemAction action) {
    return static_cast<std::size_t>(action);
}

} // namespace

Effect effectOf(SystemAction action, const EffectContext& context) {
    auto* const effect = table[placeOf(action)].effect;
    assert(effect && "the launcher does this one by itself");
    return effect ? effect(context) : Effect{};
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
    return effects_.empty() ? Ability{} : effects_[placeOf(action)].ability;
}

EffectManner LinuxSystemEffects::manner(SystemAction action) const {
    return effects_.empty() ? EffectManner{} : effects_[placeOf(action)].manner;
}

Subscription LinuxSystemEffects::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

void LinuxSystemEffects::perform(SystemAction action, EffectDone done) {
    requireMainThread(doors_->queue);
    assert(table[placeOf(action)].effect && "the launcher does this one by itself");
    if (effects_.empty()) {
        waiting_.emplace_back(action, std::move(done));
        return;
    }
    const auto& effect = effects_[placeOf(action)];
    if (const auto way = effect.perform) {
        way(std::move(done));
        return;
    }
    doors_->queue.post([done = std::move(done), why = effect.ability.reason] { done(why); });
}

void LinuxSystemEffects::found() {
    effects_.resize(table.size());
    bool isOther = false;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!table[i].effect)
            continue;
        auto effect = effectOf(table[i].action, probe_->context());
        isOther |= effect.ability != effects_[i].ability || effect.manner != effects_[i].manner;
        effects_[i] = std::move(effect);
    }
    for (auto& [action, done] : std::exchange(waiting_, {}))
        perform(action, std::move(done));
    if (isOther)
        observers_.tell();
}

} // namespace tessarine
