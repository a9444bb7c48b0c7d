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
    const auto types = doors_.types.types(path);
    if (types.empty()) {
        doors_.diagnostics.log(fmt::format("open: {} is no longer there", path));
        return;
    }
    const auto* application = handler(types);
    if (!application) {
        doors_.diagnostics.log(
            fmt::format("open: no application opens {} ({})", path, types.front()));
        return;
    }
    doors_.launcher.launch(
        *application,
        {Urls::fileUrl(path)},
        [&diagnostics = doors_.diagnostics, path](std::optional<std::string> problem) {
            if (problem)
                diagnostics.log(fmt::format("open: {} could not be opened: {}", path, *problem));
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

void FileOpener::openUrl(const std::string& url,
                         const std::function<void(std::optional<std::string> problem)>& done) {
    const auto scheme = Urls::scheme(url);
    const auto* application = doors_.catalog.registry()->handlerForScheme(scheme);
    if (application)
        doors_.launcher.launch(*application, {url}, done);
    else
        doors_.queue.post(
            [done, scheme] { done(fmt::format("no application opens {} addresses", scheme)); });
}

} // namespace tessarine
