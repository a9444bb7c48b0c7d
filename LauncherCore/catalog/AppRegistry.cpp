#include "LauncherCore/catalog/AppRegistry.h"

#include "LauncherCore/catalog/ExecLine.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view extension = ".desktop";

std::string_view lastPart(std::string_view text, char separator) {
    return text.substr(text.rfind(separator) + 1);
}

/// Programs that run others: a process of theirs may be any application. In order; without the
/// versions that installed ones end with.
constexpr auto runners = std::to_array<std::string_view>({"bash",
                                                          "bun",
                                                          "dash",
                                                          "deno",
                                                          "dotnet",
                                                          "electron",
                                                          "env",
                                                          "fish",
                                                          "flatpak",
                                                          "gjs",
                                                          "gjs-console",
                                                          "guile",
                                                          "java",
                                                          "javaw",
                                                          "lua",
                                                          "luajit",
                                                          "mono",
                                                          "mono-sgen",
                                                          "node",
                                                          "nodejs",
                                                          "perl",
                                                          "php",
                                                          "pkexec",
                                                          "python",
                                                          "qml",
                                                          "qmlscene",
                                                          "ruby",
                                                          "sh",
                                                          "snap",
                                                          "sudo",
                                                          "tclsh",
                                                          "wine",
                                                          "wine-preloader",
                                                          "wine64-preloader",
                                                          "wish",
                                                          "zsh"});
static_assert(std::ranges::is_sorted(runners));

bool isRunner(std::string_view program) {
    program = program.substr(0, program.find_last_not_of("0123456789.-") + 1);
    return std::ranges::binary_search(runners, program);
}

/// The file name of the program that an Exec key starts; empty for one that hides it behind a
/// program shared by many applications.
std::string programOf(const std::string& exec) {
    const auto words = ExecLine::words(exec);
    if (!words)
        return {};
    const auto name = lastPart(words->front(), '/');
    return isRunner(name) ? std::string() : std::string(name);
}

} // namespace

AppRegistry::AppRegistry(std::vector<InstalledApp> apps, MimeApps associations)
    : apps_(std::move(apps)), associations_(std::move(associations)) {
    // Listed applications come first, so that a window is never taken for a mere helper's.
    for (const bool listed : {true, false}) {
        for (std::size_t i = 0; i < apps_.size(); ++i) {
            const auto& app = apps_[i];
            if (app.listed != listed)
                continue;
            byPath_.try_emplace(app.path, i);
            const auto id = Folding::lowercase(app.bundleID);
            byID_.try_emplace(id, i);
            byShortID_.try_emplace(std::string(lastPart(id, '.')), i);
            if (!app.windowClass.empty())
                byWindowClass_.try_emplace(Folding::lowercase(app.windowClass), i);
            if (auto program = programOf(app.exec); !program.empty())
                byExecutable_.try_emplace(std::move(program), i);
        }
    }
}

const InstalledApp* AppRegistry::find(const Index& index, std::string_view key) const {
    if (key.empty())
        return nullptr;
    const auto found = index.find(std::string(key));
    return found == index.end() ? nullptr : &apps_[found->second];
}

const InstalledApp* AppRegistry::byID(std::string_view bundleID) const {
    if (bundleID.ends_with(extension))
        bundleID.remove_suffix(extension.size());
    return find(byID_, Folding::lowercase(bundleID));
}

const InstalledApp* AppRegistry::byPath(std::string_view path) const {
    return find(byPath_, path);
}

const InstalledApp* AppRegistry::named(std::string_view pathOrID) const {
    if (const auto* app = byPath(pathOrID))
        return app;
    const bool isPath = pathOrID.find('/') != std::string_view::npos;
    return !isPath || pathOrID.ends_with(extension) ? byID(lastPart(pathOrID, '/')) : nullptr;
}

const InstalledApp* AppRegistry::startedBy(std::string_view program) const {
    const auto* app = find(byExecutable_, lastPart(program, '/'));
    const auto words = app ? ExecLine::words(app->exec) : std::nullopt;
    if (!words)
        return nullptr;
    // A bare name may be found in any folder.
    const bool bothArePaths = program.starts_with('/') && words->front().starts_with('/');
    return !bothArePaths || words->front() == program ? app : nullptr;
}

const InstalledApp* AppRegistry::handlerForType(std::string_view mimeType) const {
    const auto type = Folding::lowercase(mimeType);
    for (const auto& id : associations_.preferred(type)) {
        if (const auto* app = byID(id))
            return app;
    }
    const auto declares = [&](const InstalledApp& app) {
        return std::ranges::count(app.mimeTypes, type) > 0 &&
               !associations_.isRemoved(type, app.bundleID);
    };
    const auto found = std::ranges::find_if(apps_, declares);
    return found == apps_.end() ? nullptr : &*found;
}

const InstalledApp* AppRegistry::handlerForScheme(std::string_view scheme) const {
    return handlerForType("x-scheme-handler/" + std::string(scheme));
}

const InstalledApp* AppRegistry::windowOwner(const WindowOwnerHints& window,
                                             Certainty certainty) const {
    if (const auto* app = byID(window.applicationID))
        return app;
    const auto className = Folding::lowercase(window.className);
    const auto instanceName = Folding::lowercase(window.instanceName);
    const auto named = [&](const Index& index) {
        const auto* app = find(index, className);
        return app ? app : find(index, instanceName);
    };
    for (const auto* index : {&byWindowClass_, &byID_}) {
        if (const auto* app = named(*index))
            return app;
    }
    if (certainty == Certainty::sure)
        return nullptr;
    if (const auto* app = named(byShortID_))
        return app;
    return find(byExecutable_, lastPart(window.executable, '/'));
}

} // namespace tessarine
