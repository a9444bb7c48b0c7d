#include "launcherapp/commands/CommandHotkeys.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/CommandRows.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

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
    : services_(services), actions_(std::move(actions)) {}

void CommandHotkeys::sync(const std::vector<CommandSpec>& commands) {
    for (const auto id : ids_)
        services_.hotkey()->remove(id);
    ids_.clear();
    registered_.clear();
    failed_.clear();
    for (const auto& command : commands) {
        if (command.hotkey && !command.hotkey->empty())
            take(command);
    }
    log();
}

void CommandHotkeys::take(const CommandSpec& command) {
    const auto chord = Chord::parse(*command.hotkey);
    if (!chord) {
        failed_[command.id] = *command.hotkey + " is not a chord";
        return;
    }
    auto* hotkey = services_.hotkey();
    if (!hotkey) {
        failed_[command.id] = chord->display() + " not registered: there is no display";
        return;
    }
    // Never one that was given back: a press of it may still be on its way.
    const auto id = nextID_++;
    if (hotkey->add(chord->binding(), id, [this, command] { fire(command); })) {
        registered_[command.id] = *chord;
        ids_.push_back(id);
        return;
    }
    failed_[command.id] = fmt::format(
        "{} not registered: {}", chord->display(), cause(hotkey->status(id), chord->display()));
    hotkey->remove(id);
}

void CommandHotkeys::log() {
    auto line = fmt::format("command hotkeys: {} registered", registered_.size());
    if (!failed_.empty()) {
        std::vector<std::string> reasons;
        for (const auto& [id, reason] : failed_)
            reasons.push_back(fmt::format("{} ({})", id, reason));
        line += fmt::format(" failed: {}", fmt::join(reasons, ", "));
    }
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
