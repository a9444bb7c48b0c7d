#include "LauncherCore/text/Printable.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/FileTypes.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace tessarine {

namespace {

/// From here on the user notices.
constexpr Seconds longHold{0.05};

std::int64_t millisOf(Seconds duration) {
    return std::chrono::round<std::chrono::milliseconds>(duration).count();
}

using TypesByPath = std::map<std::string, std::vector<std::string>>;

} // namespace

/// Links on their way to their applications.
struct CommandRuntime::Opening {
    struct Group {
        std::optional<InstalledApp> application;
        std::vector<std::string> urls; ///< just one without an application
        std::string problem;           ///< why there is no application
    };

    std::vector<std::string> urls;
    Activation activation;
    Seconds began;
    std::optional<TypesByPath> types; ///< nothing while the disk has not answered
    std::vector<Group> groups;
    std::size_t next = 0;     ///< of the groups
    std::size_t accepted = 0; ///< links
};

void CommandRuntime::open(std::vector<std::string> urls, Activation activation) {
    requireMainThread(services_.queue);
    if (urls.empty())
        return;
    const auto began = services_.queue.uptime();
    std::vector<std::string> paths;
    for (const auto& url : urls) {
        if (auto path = Urls::filePath(url))
            paths.push_back(*std::move(path));
    }
    const auto opening = std::make_shared<Opening>(
        Opening{.urls = std::move(urls), .activation = activation, .began = began});
    if (!paths.empty()) {
        openFiles(opening, paths);
        return;
    }
    group(*opening);
    openStep(opening);
    logHold(*opening, began);
}

/// Goes on once the disk has told what the files are. One that hangs holds up a thread of its own
/// and, for a while, the other links.
void CommandRuntime::openFiles(const std::shared_ptr<Opening>& opening,
                               const std::vector<std::string>& paths) {
    const auto goOn = [this, opening, weak = std::weak_ptr(alive_)] {
        if (weak.expired() || !opening->groups.empty())
            return;
        const auto since = services_.queue.uptime();
        group(*opening);
        openStep(opening);
        logHold(*opening, since);
    };
    services_.work.runApart(
        [&types = services_.types, paths] {
            TypesByPath result;
            for (const auto& path : paths)
                result[path] = types.types(path);
            return result;
        },
        [opening, goOn](TypesByPath types) {
            opening->types = std::move(types);
            goOn();
        });
    services_.queue.postAfter(diskPatience, goOn);
}

void CommandRuntime::group(Opening& opening) const {
    const auto& registry = *services_.catalog.registry();
    for (const auto& url : opening.urls) {
        const InstalledApp* application = nullptr;
        std::string problem = "no application opens it";
        const auto path = Urls::filePath(url);
        if (!path) {
            application = registry.handlerForScheme(Urls::scheme(url));
        } else if (!opening.types) {
            problem = fmt::format("the disk of {} doesn't answer", Printable::line(*path));
        } else {
            const auto& types = opening.types->at(*path);
            application = services_.opener.handler(types);
            if (types.empty())
                problem = fmt::format("{} is no longer there", Printable::line(*path));
        }
        if (!application)
            opening.groups.push_back({.urls = {url}, .problem = problem});
        else if (!opening.groups.empty() && opening.groups.back().application &&
                 opening.groups.back().application->bundleID == application->bundleID)
            opening.groups.back().urls.push_back(url);
        else
            opening.groups.push_back({.application = *application, .urls = {url}});
    }
}

void CommandRuntime::openStep(const std::shared_ptr<Opening>& opening) {
    const auto failed = [this](const Opening::Group& group, const std::string& problem) {
        services_.diagnostics.log(
            group.urls.size() > 1
                ? fmt::format("open: {} could not start: {}", group.application->name, problem)
                : fmt::format(
                      "open: a {} link failed: {}", Urls::scheme(group.urls.front()), problem));
    };
    for (; opening->next < opening->groups.size(); ++opening->next) {
        const auto& group = opening->groups[opening->next];
        if (group.application)
            break;
        failed(group, group.problem);
    }
    if (opening->next == opening->groups.size()) {
        services_.diagnostics.log(fmt::format("open: {} link(s) accepted in {} ms",
                                              opening->accepted,
                                              millisOf(services_.queue.uptime() - opening->began)));
        return;
    }
    const auto& group = opening->groups[opening->next++];
    services_.launcher.launch(
        *group.application,
        group.urls,
        [this, opening, &group, failed, weak = std::weak_ptr(alive_)](
            const std::optional<std::string>& problem) {
            if (weak.expired())
                return;
            if (problem)
                failed(group, *problem);
            else
                opening->accepted += group.urls.size();
            openStep(opening);
        },
        opening->activation);
}

void CommandRuntime::logHold(const Opening& opening, Seconds since) const {
    const auto held = services_.queue.uptime() - since;
    if (held >= longHold)
        services_.diagnostics.log(
            fmt::format("open: handing {} link(s) to the desktop held the caller {} ms",
                        opening.urls.size(),
                        millisOf(held)));
}

} // namespace tessarine
