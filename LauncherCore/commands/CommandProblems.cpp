#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/commands/CommandTemplates.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <string_view>

namespace tessarine {

namespace {

bool isEmpty(const std::optional<std::string>& text) {
    return !text || text->empty();
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string actionNames() {
    std::string names;
    for (const auto action : allSystemActions) {
        if (!names.empty())
            names += ", ";
        names += SystemActions::name(action);
    }
    return names;
}

/// What is wrong with one word that is to be typed; nothing when nothing is.
std::optional<std::string> keywordProblem(std::string_view word) {
    if (word.find(' ') == std::string_view::npos)
        return std::nullopt;
    return "keyword " + quoted(word) + " contains a space, so it can never be typed as a keyword";
}

std::optional<std::string> hotkeyProblem(const std::string& hotkey) {
    if (hotkey.empty())
        return std::nullopt;
    const auto chord = Chord::parse(hotkey);
    if (!chord)
        return "hotkey " + quoted(hotkey) + " is not a chord I understand (try cmd+shift+c)";
    if (!chord->hasModifier())
        return "hotkey " + quoted(hotkey) + " needs a modifier (cmd, alt, ctrl or shift)";
    return std::nullopt;
}

/// What its kind needs and it doesn't have.
std::vector<std::string> kindProblems(const CommandSpec& command) {
    const auto when = [](bool isMissing, std::string problem) {
        return isMissing ? std::vector{std::move(problem)} : std::vector<std::string>();
    };
    switch (command.kind) {
    case CommandKind::open:
        return when(!command.urls || command.urls->empty(), "kind open needs at least one url");
    case CommandKind::script:
        return when(isEmpty(command.script), "kind script needs a script");
    case CommandKind::app:
        return when(isEmpty(command.path), "kind app needs a path");
    case CommandKind::search:
        return when(isEmpty(command.url) ||
                        command.url->find(CommandTemplates::placeholder) == std::string::npos,
                    "kind search needs a url containing {query}");
    case CommandKind::system:
        return when(!command.action, "kind system needs an action: " + actionNames());
    case CommandKind::files:
        return {};
    case CommandKind::list:
        return when(isEmpty(command.script), "kind list needs a script that prints JSON rows");
    case CommandKind::jump:
        auto problems = when(isEmpty(command.url) && isEmpty(command.path),
                             "kind jump needs a url (the deep link) or a path (the app), or both");
        if (command.press && std::ranges::any_of(*command.press, &std::string::empty))
            problems.emplace_back("kind jump has an empty name in press");
        return problems;
    }
    return {};
}

} // namespace

std::vector<std::string> CommandSpec::problems() const {
    std::vector<std::string> problems;
    if (Folding::trimmed(id).empty())
        problems.emplace_back("a command needs an id");
    const auto add = [&](const std::string& problem) { problems.push_back(id + ": " + problem); };
    if (Folding::trimmed(name).empty())
        add("needs a name");
    if (keyword) {
        if (const auto problem = keywordProblem(*keyword))
            add(*problem);
    }
    for (const auto& alias : aliases.value_or(std::vector<std::string>())) {
        if (const auto problem = keywordProblem(alias))
            add(*problem);
    }
    if (const auto problem = hotkeyProblem(hotkey.value_or("")))
        add(*problem);
    for (const auto& problem : kindProblems(*this))
        add(problem);
    return problems;
}

} // namespace tessarine
