#include "launcherapp/catalog/FileOpener.h"

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/FileManager.h"
#include "launcherapp/platform/FileTypes.h"

#include <fmt/format.h>

#include <optional>

namespace tessarine {

void FileOpener::open(const std::string& path) {
    openFile(path, [&diagnostics = doors_.diagnostics](const std::optional<std::string>& problem) {
        if (problem)
            diagnostics.log(fmt::format("open: {}", *problem));
    });
}

void FileOpener::openFile(const std::string& path, const Done& done) {
    const auto types = doors_.types.types(path);
    const auto* application = handler(types);
    if (!application) {
        doors_.queue.post(
            [done,
             problem = types.empty()
                           ? fmt::format("{} is no longer there", path)
                           : fmt::format("no application opens {} ({})", path, types.front())] {
                done(problem);
            });
        return;
    }
    doors_.launcher.launch(
        *application, {Urls::fileUrl(path)}, [done, path](const std::optional<std::string>& why) {
            done(why ? std::optional(fmt::format("{} could not be opened: {}", path, *why))
                     : std::nullopt);
        });
}

const InstalledApp* FileOpener::handler(const std::vector<std::string>& types) const {
    for (const auto& type : types) {
        if (const auto* application = doors_.catalog.registry()->handlerForType(type))
            return application;
    }
    return nullptr;
}

void FileOpener::reveal(const std::string& path) {
    doors_.manager.reveal(path, revealTimeout, [this, path](std::optional<std::string> problem) {
        if (!problem)
            return;
        doors_.diagnostics.log(fmt::format("reveal: {}: {}; its folder is opened", path, *problem));
        open(std::string(Paths::parent(path)));
    });
}

void FileOpener::trash(const std::string& path) {
    if (const auto problem = doors_.manager.trash(path))
        doors_.diagnostics.log(fmt::format("trash: {}", *problem));
}

void FileOpener::openUrl(const std::string& url, const Done& done) {
    if (const auto path = Urls::filePath(url)) {
        openFile(*path, done);
        return;
    }
    // A copy: the caller's address is gone by the next turn.
    const std::string scheme(Urls::scheme(url));
    if (const auto* application = doors_.catalog.registry()->handlerForScheme(scheme))
        doors_.launcher.launch(*application, {url}, done);
    else
        doors_.queue.post(
            [done, scheme] { done(fmt::format("no application opens {} addresses", scheme)); });
}

} // namespace tessarine
