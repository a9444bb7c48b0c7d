#include "LauncherCore/commands/CommandSpec.h"

#include "LauncherCore/commands/CommandTemplates.h"

#include <algorithm>
#include <string_view>

namespace tessarine {

namespace {

constexpr std::string_view firstParameter = "$1";

bool contains(const std::optional<std::string>& text, std::string_view part) {
    return text && text->find(part) != std::string::npos;
}

} // namespace

bool CommandSpec::takesArgument() const {
    switch (kind) {
    case CommandKind::search:
    case CommandKind::files:
    case CommandKind::list:
        return true;
    case CommandKind::app:
    case CommandKind::system:
        return false;
    case CommandKind::script:
        return contains(script, firstParameter);
    case CommandKind::open:
        return urls && std::ranges::any_of(*urls, [](const std::string& each) {
                   return each.find(CommandTemplates::placeholder) != std::string::npos;
               });
    case CommandKind::jump:
        return contains(url, CommandTemplates::placeholder);
    }
    return false;
}

std::string CommandSpec::defaultSymbol() const {
    if (icon && !icon->empty())
        return *icon;
    switch (kind) {
    case CommandKind::open:
        return "link";
    case CommandKind::script:
        return "terminal";
    case CommandKind::app:
        return "app";
    case CommandKind::search:
        return "magnifyingglass";
    case CommandKind::system:
        return "gearshape";
    case CommandKind::files:
        return foldersOnly.value_or(false) ? "folder" : "doc";
    case CommandKind::list:
        return "list.bullet";
    case CommandKind::jump:
        return "arrow.up.forward.app";
    }
    return {};
}

} // namespace tessarine
