#pragma once

#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/platform/MainQueue.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

class AppCatalog;
class Diagnostics;
class FileOpener;
class FileTypes;
class WorkQueues;

/// Hands addresses to the applications that open them, in their order, and waits for none. What
/// fails is logged. Main thread only.
class LinkOpener {
public:
    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        const AppCatalog& catalog;
        AppLauncher& launcher;
        const FileOpener& opener;
        std::shared_ptr<const FileTypes> types; ///< a disk that hangs may ask it after our end
        Diagnostics& diagnostics;
    };

    using Activation = AppLauncher::Activation;

    /// How long a disk may take to say what a file is before other links go ahead of it.
    static constexpr Seconds diskPatience{5};

    explicit LinkOpener(Services services) : services_(std::move(services)) {}

    LinkOpener(const LinkOpener&) = delete;
    LinkOpener& operator=(const LinkOpener&) = delete;

    /// Those of one application that follow each other go in one go, and the next application's
    /// only when the one before has taken its own.
    void open(std::vector<std::string> urls, Activation activation);

    /// Whether all that was to be opened was handed over, or failed.
    bool isSettled() const { return underWay_ == 0; }

private:
    struct Opening;
    void askTypes(const std::shared_ptr<Opening>& opening);
    void begin(const std::shared_ptr<Opening>& opening);
    void group(Opening& opening) const;
    void step(const std::shared_ptr<Opening>& opening);
    void logHold(const Opening& opening, Seconds since) const;

    Services services_;
    std::size_t underWay_ = 0;                               ///< calls of `open`
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
