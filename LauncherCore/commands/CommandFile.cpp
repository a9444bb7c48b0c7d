#include "LauncherCore/commands/CommandFile.h"

#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/CommandJson.h"
#include "LauncherCore/text/Folding.h"

#include <nlohmann/json.hpp>

#include <set>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;

std::string serialized(const Json& document, int indent) {
    return document.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json document(const CommandFile& file) {
    auto commands = Json::array();
    for (const auto& command : file.commands)
        commands.push_back(CommandJson::encoded(command));
    return {{"version", file.version}, {"commands", std::move(commands)}};
}

constexpr int indentation = 2;

CommandSpec starterCommand(std::string word, std::string name, CommandKind kind, std::string icon) {
    CommandSpec command{.id = word, .name = std::move(name), .keyword = word, .kind = kind};
    command.icon = std::move(icon);
    return command;
}

CommandSpec fileSearch(std::string word,
                       std::string name,
                       std::vector<std::string> extensions,
                       std::string icon) {
    auto command =
        starterCommand(std::move(word), std::move(name), CommandKind::files, std::move(icon));
    command.extensions = std::move(extensions);
    return command;
}

CommandSpec systemCommand(std::string word, SystemAction action, std::string icon) {
    auto command = starterCommand(std::move(word),
                                  std::string(SystemActions::title(action)),
                                  CommandKind::system,
                                  std::move(icon));
    command.action = action;
    return command;
}

} // namespace

LenientCommandFile CommandFile::decodeLenient(std::string_view data) {
    const auto root = CommandJson::parsed(data);
    if (!root.is_object())
        throw CommandFileError("it is no object with a list of \"commands\"");
    const auto list = root.find("commands");
    if (list == root.end() || !list->is_array())
        throw CommandFileError("it has no list of \"commands\"");

    LenientCommandFile result{.file = {.version = CommandJson::version(root)}};
    result.file.commands.reserve(list->size());
    for (const auto& each : *list) {
        if (!each.is_structured())
            continue;
        if (auto command = CommandJson::command(each))
            result.file.commands.push_back(*std::move(command));
        else
            result.unreadable.push_back(serialized(each, -1));
    }
    return result;
}

std::string CommandFile::encoded() const {
    return encoded({});
}

std::string CommandFile::encoded(const std::vector<std::string>& keeping) const {
    auto whole = document(*this);
    for (const auto& entry : keeping)
        whole["commands"].push_back(CommandJson::parsed(entry));
    return serialized(whole, indentation) + "\n";
}

std::vector<std::string> CommandFile::problems() const {
    std::vector<std::string> problems;
    for (const auto& command : commands) {
        auto own = command.problems();
        problems.insert(problems.end(),
                        std::make_move_iterator(own.begin()),
                        std::make_move_iterator(own.end()));
    }
    for (auto& duplicate : duplicates())
        problems.push_back(std::move(duplicate.problem));
    return problems;
}

std::vector<CommandFile::Duplicate> CommandFile::duplicates() const {
    std::vector<Duplicate> found;
    std::set<std::string> ids;
    std::set<std::string> keywords;
    std::set<std::string> hotkeys;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const auto& command = commands[i];
        if (!ids.insert(command.id).second)
            found.push_back({i, "duplicate id: " + command.id});
        const auto keyword = Folding::lowercase(command.keyword.value_or(""));
        if (!keyword.empty() && !keywords.insert(keyword).second)
            found.push_back({i, "duplicate keyword: " + keyword});
        const auto chord = Chord::parse(command.hotkey.value_or(""));
        if (chord && !hotkeys.insert(chord->text()).second)
            found.push_back({i, "duplicate hotkey: " + chord->display()});
    }
    return found;
}

CommandFile CommandFile::starter() {
    auto google = starterCommand("g", "Google", CommandKind::search, "magnifyingglass");
    google.url = "https://www.google.com/search?q={query}";
    auto folder = starterCommand("f", "Find a folder", CommandKind::files, "folder");
    folder.foldersOnly = true;
    return {
        .commands = {
            std::move(google),
            std::move(folder),
            fileSearch("p", "Find a PDF", {"pdf"}, "doc.richtext"),
            fileSearch("s", "Find a spreadsheet", {"xlsx", "xls", "csv", "numbers"}, "tablecells"),
            fileSearch(
                "doc",
                "Find a document",
                {"docx", "doc", "pptx", "ppt", "xlsx", "xls", "pages", "key", "md", "txt", "rtf"},
                "doc.text"),
            systemCommand("eject", SystemAction::eject, "eject"),
            systemCommand("lock", SystemAction::lockScreen, "lock"),
            systemCommand("sleep", SystemAction::sleep, "moon.zzz"),
            systemCommand("trash", SystemAction::emptyTrash, "trash"),
            systemCommand("dark", SystemAction::toggleDarkMode, "circle.lefthalf.filled"),
        }};
}

} // namespace tessarine
