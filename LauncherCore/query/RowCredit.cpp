#include "LauncherCore/query/RowCredit.h"

#include "LauncherCore/commands/BuiltinCommands.h"
#include "LauncherCore/commands/SettingsPanes.h"
#include "LauncherCore/query/Companions.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

RowCreditSpec app(std::string name, std::string bundleID) {
    return {.value =
                RowCreditSpec::App{.bundleIDs = {std::move(bundleID)}, .name = std::move(name)}};
}

/// The scheme of a URL, in lower case; nothing for a text that has none. "localhost:8080" is a
/// host and port.
std::optional<std::string> schemeOf(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0)
        return std::nullopt;
    const auto rest = text.substr(colon + 1);
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (!rest.empty() && std::ranges::all_of(rest, isDigit))
        return std::nullopt;
    std::string scheme;
    for (char c : text.substr(0, colon)) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
        const bool allowed =
            (c >= 'a' && c <= 'z') || isDigit(c) || c == '+' || c == '-' || c == '.';
        if (!allowed)
            return std::nullopt;
        scheme += c;
    }
    return scheme;
}

/// The last part of a path, without its extension; the path itself when that leaves nothing.
std::string stem(const std::string& path) {
    std::string_view rest = path;
    while (rest.size() > 1 && rest.ends_with('/'))
        rest.remove_suffix(1);
    auto last = rest.substr(rest.rfind('/') + 1);
    // A dot at the very front begins a hidden file's name and no extension.
    if (const auto dot = last.rfind('.'); dot != std::string_view::npos && dot > 0)
        last = last.substr(0, dot);
    return last.empty() ? path : std::string(last);
}

std::optional<RowCreditSpec> appPath(const std::optional<std::string>& path) {
    if (!path || path->empty())
        return std::nullopt;
    return RowCreditSpec{.value = RowCreditSpec::AppPath{*path}};
}

std::optional<RowCreditSpec> urlString(const std::optional<std::string>& url) {
    return url ? RowCreditSpec::forURLString(*url) : std::nullopt;
}

/// A page's own entry is no application that the user knows.
bool opensSettings(const CommandSpec& spec) {
    return spec.id.starts_with(SettingsPanes::idPrefix) || spec.id == BuiltinCommands::settingsID;
}

template <typename... Functions> struct Overloaded : Functions... {
    using Functions::operator()...;
};

template <typename... Functions> Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace

const RowCreditSpec& RowCreditSpec::systemSettings() {
    static const auto spec = app("System Settings", "com.apple.systempreferences");
    return spec;
}

const RowCreditSpec& RowCreditSpec::finder() {
    static const auto spec = app("Finder", "com.apple.finder");
    return spec;
}

const RowCreditSpec& RowCreditSpec::dock() {
    static const auto spec = app("Dock", "com.apple.dock");
    return spec;
}

const RowCreditSpec& RowCreditSpec::screenshot() {
    static const auto spec = app("Screenshot", "com.apple.screenshot.launcher");
    return spec;
}

const RowCreditSpec& RowCreditSpec::wisprFlow() {
    static const auto spec = app("Wispr Flow", "com.electron.wispr-flow");
    return spec;
}

const RowCreditSpec& RowCreditSpec::calendar() {
    static const auto spec = app("Calendar", "com.apple.iCal");
    return spec;
}

const RowCreditSpec& RowCreditSpec::dictionary() {
    static const auto spec = app("Dictionary", "com.apple.Dictionary");
    return spec;
}

const RowCreditSpec& RowCreditSpec::system() {
    static const auto spec = app("Desktop", "com.apple.systempreferences");
    return spec;
}

RowCreditSpec RowCreditSpec::companion(std::string_view id) {
    if (auto known = Companions::companion(id))
        return {.value =
                    App{.bundleIDs = std::move(known->bundleIDs), .name = std::move(known->name)}};
    return {.value = App{.bundleIDs = {}, .name = std::string(id)}};
}

std::optional<RowCreditSpec> RowCreditSpec::forSystemAction(SystemAction action) {
    switch (action) {
    case SystemAction::eject:
    case SystemAction::emptyTrash:
    case SystemAction::showTrash:
    case SystemAction::toggleHiddenFiles:
    case SystemAction::restartFinder:
        return finder();
    case SystemAction::lockScreen:
    case SystemAction::sleep:
    case SystemAction::restart:
    case SystemAction::shutDown:
    case SystemAction::logOut:
    case SystemAction::quitAll:
    case SystemAction::sleepDisplays:
    case SystemAction::screenSaver:
    case SystemAction::forceQuitDialog:
    case SystemAction::restartImmediately:
    case SystemAction::shutDownImmediately:
    case SystemAction::logOutImmediately:
        return system();
    case SystemAction::toggleDarkMode:
    case SystemAction::darkMode:
    case SystemAction::lightMode:
    case SystemAction::autoAppearance:
        return systemSettings();
    case SystemAction::restartDock:
        return dock();
    case SystemAction::screenshotSelection:
    case SystemAction::screenshotWindow:
        return screenshot();
    case SystemAction::timeHomeHere:
    case SystemAction::timeHomeClocks:
        return std::nullopt;
    case SystemAction::fixWispr:
        return wisprFlow();
    }
    return std::nullopt;
}

std::optional<RowCreditSpec> RowCreditSpec::forCommand(const CommandSpec& spec) {
    switch (spec.kind) {
    case CommandKind::open:
        if (!spec.urls || spec.urls->empty())
            return std::nullopt;
        return forURLString(spec.urls->front());
    case CommandKind::app:
        return opensSettings(spec) ? systemSettings() : appPath(spec.path);
    case CommandKind::search:
        return urlString(spec.url);
    case CommandKind::system:
        return spec.action ? forSystemAction(*spec.action) : std::nullopt;
    case CommandKind::jump:
        return spec.path && !spec.path->empty() ? appPath(spec.path) : urlString(spec.url);
    case CommandKind::script:
    case CommandKind::files:
    case CommandKind::list:
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<RowCreditSpec> RowCreditSpec::forURLString(std::string_view text) {
    const auto trimmed = Folding::trimmed(text);
    if (trimmed.empty())
        return std::nullopt;
    if (trimmed.front() == '/' || trimmed.front() == '~')
        return finder();
    auto scheme = schemeOf(trimmed);
    if (!scheme)
        return std::nullopt;
    if (*scheme == "x-apple.systempreferences")
        return systemSettings();
    if (*scheme == "glowcap")
        return companion(*scheme);
    if (*scheme == "file")
        return finder();
    if (*scheme == "dict")
        return dictionary();
    if (*scheme == "ical")
        return calendar();
    return RowCreditSpec{.value = UrlHandler{std::move(*scheme)}};
}

std::string RowCreditSpec::fallbackName() const {
    return std::visit(Overloaded{
                          [](const App& app) { return app.name; },
                          [](const UrlHandler& handler) {
                              return handler.scheme.starts_with("http") ? std::string("Browser")
                                                                        : handler.scheme;
                          },
                          [](const AppPath& app) { return stem(app.path); },
                          [](const Machine& machine) { return machine.name; },
                      },
                      value);
}

std::span<const CommandKind> RowCreditSpec::creditedKinds() {
    static constexpr std::array kinds{CommandKind::system,
                                      CommandKind::open,
                                      CommandKind::search,
                                      CommandKind::app,
                                      CommandKind::jump};
    return kinds;
}

std::span<const SystemAction> RowCreditSpec::ownSystemActions() {
    static constexpr std::array actions{SystemAction::timeHomeHere, SystemAction::timeHomeClocks};
    return actions;
}

} // namespace tessarine

std::size_t std::hash<tessarine::RowCreditSpec>::operator()(
    const tessarine::RowCreditSpec& spec) const noexcept {
    using tessarine::RowCreditSpec;
    std::size_t result = spec.value.index();
    const auto mix = [&result](const std::string& text) {
        // 2^64 divided by the golden ratio spreads what the string hash gives.
        result = (result ^ std::hash<std::string>{}(text)) * 0x9e3779b97f4a7c15u;
    };
    if (const auto* app = std::get_if<RowCreditSpec::App>(&spec.value)) {
        mix(app->name);
        for (const auto& id : app->bundleIDs)
            mix(id);
    } else if (const auto* handler = std::get_if<RowCreditSpec::UrlHandler>(&spec.value)) {
        mix(handler->scheme);
    } else if (const auto* path = std::get_if<RowCreditSpec::AppPath>(&spec.value)) {
        mix(path->path);
    } else if (const auto* machine = std::get_if<RowCreditSpec::Machine>(&spec.value)) {
        mix(machine->name);
        mix(machine->symbol);
    }
    return result;
}
