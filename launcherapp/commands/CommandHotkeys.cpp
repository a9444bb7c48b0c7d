#include "launcherapp/commands/CommandHotkeys.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/CommandRows.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// What is typed to engage the command.
std::string wordOf(const CommandSpec& command) {
    if (command.keyword && !command.keyword->empty())
        return *command.keyword;
    for (const auto& alias : command.aliases.value_or(std::vector<std::string>())) {
        if (!alias.empty())
            return alias;
    }
    return command.name;
}

/// "is held by another app (…)" of "⌘C is held by another app (…); not registered", and the reason
/// alone of "could not register ⌘C (…)".
std::string cause(std::string status, const std::string& display) {
    constexpr std::string_view ending = "; not registered";
    const auto refused = "could not register " + display + " (";
    if (status.starts_with(refused) && status.ends_with(')'))
        return status.substr(refused.size(), status.size() - refused.size() - 1);
    if (status.ends_with(ending))
        status.resize(status.size() - ending.size());
    if (status.starts_with(display + " "))
        status.erase(0, display.size() + 1);
    return status;
}

} // namespace

CommandHotkeys::CommandHotkeys(Services services, Actions actions)
    : services_(std::move(services)), actions_(std::move(actions)) {}

CommandHotkeys::~CommandHotkeys() {
    letGo();
}

void CommandHotkeys::letGo() {
    isSyncing_ = true;
    for (const auto& each : taken_)
        services_.hotkey()->remove(each.id);
    isSyncing_ = false;
    taken_.clear();
}

void CommandHotkeys::sync(const std::vector<CommandSpec>& commands) {
    if (!services_.hotkey)
        return;
    letGo();
    registered_.clear();
    failed_.clear();
    isSyncing_ = true;
    for (const auto& command : commands) {
        if (command.hotkey && !command.hotkey->empty())
            take(command);
    }
    isSyncing_ = false;
    if (auto* const hotkey = services_.hotkey(); hotkey && !statuses_.active())
        statuses_ = hotkey->onChange([this] { refresh(); });
    log();
}

void CommandHotkeys::take(const CommandSpec& command) {
    const auto chord = Chord::parse(*command.hotkey);
    if (!chord) {
        failed_[command.id] = *command.hotkey + " is not a chord";
        return;
    }
    auto* const hotkey = services_.hotkey();
    if (!hotkey) {
        failed_[command.id] = chord->display() + " not registered: there is no display";
        return;
    }
    const auto holder = std::ranges::find(taken_, *chord, &Taken::chord);
    if (holder != taken_.end()) {
        failed_[command.id] = fmt::format(
            "{} not registered: the command {} has it", chord->display(), holder->command);
        return;
    }
    // Never one that was given back: a press of it may still be on its way.
    const auto id = nextID_++;
    hotkey->describe(id, {.name = "command " + command.id, .description = command.name});
    const bool isTaken = hotkey->add(chord->binding(), id, [this, command] { fire(command); });
    if (hotkey->binding(id))
        registered_[command.id] = *chord;
    else
        failed_[command.id] = reason(*chord, id);
    // A desktop that chooses the keys may list what it refuses, for its user to give it some.
    if (isTaken || hotkey->takesNoStandIns())
        taken_.push_back({.id = id, .command = command.id, .chord = *chord});
    else
        hotkey->remove(id);
}

/// A change of the keyboard, or another program, may take a chord away and give it back.
void CommandHotkeys::refresh() {
    if (isSyncing_)
        return;
    bool isChanged = false;
    for (const auto& each : taken_) {
        const bool isHeld = services_.hotkey()->binding(each.id).has_value();
        auto why = isHeld ? std::string() : reason(each.chord, each.id);
        const auto told = failed_.find(each.command);
        if (isHeld == registered_.contains(each.command) &&
            (told == failed_.end() || told->second == why))
            continue;
        isChanged = true;
        if (isHeld) {
            registered_[each.command] = each.chord;
            failed_.erase(each.command);
        } else {
            registered_.erase(each.command);
            failed_[each.command] = std::move(why);
        }
    }
    if (!isChanged)
        return;
    const bool isAnyWaiting =
        std::ranges::any_of(taken_, [this](const Taken& each) { return isWaiting(each.command); });
    if (hasToldOfWaiting_ && !isAnyWaiting)
        log();
    changes_.tell();
}

bool CommandHotkeys::isWaiting(const std::string& command) const {
    const auto taken = std::ranges::find(taken_, command, &Taken::command);
    return taken != taken_.end() && services_.hotkey()->isAsked(taken->id);
}

std::string CommandHotkeys::reason(const Chord& chord, std::uint32_t id) const {
    return fmt::format("{} not registered: {}",
                       chord.display(),
                       cause(services_.hotkey()->status(id), chord.display()));
}

void CommandHotkeys::log() {
    auto line = fmt::format("command hotkeys: {} registered", registered_.size());
    std::vector<std::string> waiting;
    std::vector<std::string> reasons;
    for (const auto& [id, reason] : failed_) {
        if (isWaiting(id))
            waiting.push_back(id);
        else
            reasons.push_back(fmt::format("{} ({})", id, reason));
    }
    if (!reasons.empty())
        line += fmt::format(" failed: {}", fmt::join(reasons, ", "));
    if (!waiting.empty())
        line += fmt::format(" waiting for the desktop: {}", fmt::join(waiting, ", "));
    hasToldOfWaiting_ = !waiting.empty();
    services_.diagnostics.log(line);
}

void CommandHotkeys::fire(const CommandSpec& command) {
    services_.usage.record(std::string(commandRowPrefix) + command.id);
    if (command.takesArgument())
        actions_.showPanel(wordOf(command) + " ");
    else
        actions_.run(command);
}

} // namespace tessarine
