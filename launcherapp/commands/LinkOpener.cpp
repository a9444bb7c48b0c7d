#include "launcherapp/commands/LinkOpener.h"

#include "LauncherCore/text/Printable.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/FileOpener.h"
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

} // namespace

/// Links on their way to their applications.
struct LinkOpener::Opening {
    struct Group {
        std::optional<InstalledApp> application;
        std::vector<std::string> urls;      ///< just one without an application
        std::optional<std::string> problem; ///< why there is no application
    };

    /// The MIME types of a file; nothing while its disk has not answered.
    using Types = std::optional<std::vector<std::string>>;

    std::vector<std::string> urls;
    Activation activation;
    Seconds began;
    std::map<std::string, Types> files; ///< by path
    std::size_t unanswered = 0;         ///< of the files
    bool hasBegun = false;
    std::vector<Group> groups;
    std::size_t next = 0;     ///< of the groups
    std::size_t accepted = 0; ///< links
};

void LinkOpener::open(std::vector<std::string> urls, Activation activation) {
    requireMainThread(services_.queue);
    if (urls.empty())
        return;
    ++underWay_;
    const auto opening = std::make_shared<Opening>(Opening{
        .urls = std::move(urls), .activation = activation, .began = services_.queue.uptime()});
    for (const auto& url : opening->urls) {
        if (auto path = Urls::filePath(url))
            opening->files.try_emplace(*std::move(path));
    }
    opening->unanswered = opening->files.size();
    if (opening->files.empty())
        begin(opening);
    else
        askTypes(opening);
}

/// Each file has a thread of its own, since each may lie on a disk that hangs: such a one keeps the
/// others waiting for a while, and is then left out.
void LinkOpener::askTypes(const std::shared_ptr<Opening>& opening) {
    const auto goOn = [this, opening, weak = std::weak_ptr(alive_)] {
        if (!weak.expired() && !opening->hasBegun)
            begin(opening);
    };
    for (const auto& [path, unknown] : opening->files)
        services_.work.runApart(
            [types = services_.types, path = path] { return types->types(path); },
            [opening, goOn, path = path](std::vector<std::string> types) {
                opening->files[path] = std::move(types);
                if (--opening->unanswered == 0)
                    goOn();
            });
    services_.queue.postAfter(diskPatience, goOn);
}

void LinkOpener::begin(const std::shared_ptr<Opening>& opening) {
    const auto since = services_.queue.uptime();
    opening->hasBegun = true;
    group(*opening);
    step(opening);
    logHold(*opening, since);
}

void LinkOpener::group(Opening& opening) const {
    const auto& registry = *services_.catalog.registry();
    for (const auto& url : opening.urls) {
        const InstalledApp* application = nullptr;
        std::string problem = "no application opens it";
        const auto path = Urls::filePath(url);
        const auto types = path ? opening.files.at(*path) : std::nullopt;
        if (!path)
            application = registry.handlerForScheme(Urls::scheme(url));
        else if (!types)
            problem = fmt::format("the disk of {} doesn't answer", Printable::line(*path));
        else if (types->empty())
            problem = fmt::format("{} is no longer there", Printable::line(*path));
        else
            application = services_.opener.handler(*types);

        auto& groups = opening.groups;
        if (!application)
            groups.push_back({.urls = {url}, .problem = problem});
        else if (!groups.empty() && groups.back().application &&
                 groups.back().application->bundleID == application->bundleID)
            groups.back().urls.push_back(url);
        else
            groups.push_back({.application = *application, .urls = {url}});
    }
}

void LinkOpener::step(const std::shared_ptr<Opening>& opening) {
    const auto failed = [this](const Opening::Group& group, const std::string& problem) {
        services_.diagnostics.log(
            group.urls.size() > 1
                ? fmt::format("open: {} could not start: {}", group.application->name, problem)
                : fmt::format(
                      "open: a {} link failed: {}", Urls::scheme(group.urls.front()), problem));
    };
    for (; opening->next < opening->groups.size(); ++opening->next) {
        const auto& group = opening->groups[opening->next];
        if (!group.problem)
            break;
        failed(group, *group.problem);
    }
    if (opening->next == opening->groups.size()) {
        --underWay_;
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
            step(opening);
        },
        opening->activation);
}

void LinkOpener::logHold(const Opening& opening, Seconds since) const {
    const auto held = services_.queue.uptime() - since;
    if (held >= longHold)
        services_.diagnostics.log(
            fmt::format("open: handing {} link(s) to the desktop held the caller {} ms",
                        opening.urls.size(),
                        millisOf(held)));
}

} // namespace tessarine
