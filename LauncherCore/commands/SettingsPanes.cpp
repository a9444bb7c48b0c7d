#include "LauncherCore/commands/SettingsPanes.h"

#include "LauncherCore/catalog/ExecLine.h"
#include "LauncherCore/commands/CommandWords.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

constexpr std::string_view symbol = "gearshape";

/// Programs that open the page named by their first argument.
constexpr auto controlCentres = std::to_array<std::string_view>({
    "gnome-control-center",
    "unity-control-center",
    "budgie-control-center",
    "cinnamon-control-center",
    "cinnamon-settings",
    "cosmic-settings",
    "systemsettings",
    "systemsettings5",
    "kcmshell5",
    "kcmshell6",
});

/// The program that an Exec key starts at a page of its own; nothing for one that starts none.
std::optional<std::string> controlCentre(std::string_view exec) {
    const auto words = ExecLine::words(exec);
    if (!words || std::ranges::count(controlCentres, Paths::lastPart(words->front())) == 0)
        return std::nullopt;
    const auto isPage = [](const std::string& word) {
        return !word.empty() && word.front() != '-' && word.front() != '%';
    };
    if (std::none_of(words->begin() + 1, words->end(), isPage))
        return std::nullopt;
    return words->front();
}

} // namespace

bool SettingsPanes::opensPage(std::string_view exec) {
    return controlCentre(exec).has_value();
}

std::optional<CommandSpec> SettingsPanes::command(const Found& found,
                                                  std::span<const std::string> languages,
                                                  const Launchable::Session& session) {
    const auto program = controlCentre(found.entry.text("Exec").value_or(""));
    if (!program || Launchable::verdict(found.entry, session) != Launchable::Verdict::offered ||
        !session.canExecute(*program))
        return std::nullopt;
    const auto localized = found.entry.localized("Name", languages).value_or("");
    const auto known = std::ranges::find(paneNames(), found.entryID, &PaneName::entryID);
    const bool isKnown = known != paneNames().end();
    const std::string name(isKnown ? known->name : Folding::trimmed(localized));
    if (name.empty())
        return std::nullopt;

    CommandWords::Unique words;
    words.know(name);
    if (isKnown) {
        for (const auto& word : CommandWords::listed(known->words))
            words.add(word);
    }
    // A name that the row's own begins with finds the row anyway; as a word it would put the page
    // about the camera above the application Camera.
    const auto lowerName = Folding::lowercase(name);
    for (const auto& own : {localized, found.entry.text("Name").value_or("")}) {
        if (!lowerName.starts_with(Folding::lowercase(own)))
            words.add(own);
    }
    return CommandSpec{.id = std::string(idPrefix) + found.entryID,
                       .name = name,
                       .kind = CommandKind::app,
                       .path = found.path,
                       .aliases = words.words(),
                       .icon = std::string(symbol)};
}

} // namespace tessarine
