#pragma once

#include "launcherapp/platform/DirectoryWatcher.h"

#include <map>
#include <utility>

namespace tessarine {

/// Watches that a test fires by hand.
class FakeDirectoryWatcher : public DirectoryWatcher {
public:
    struct Watch {
        std::vector<std::string> directories;
        Seconds latency;
        std::function<void(const DirectoryChanges&)> changed;
    };

    Subscription watch(const std::vector<std::string>& directories,
                       Seconds latency,
                       std::function<void(const DirectoryChanges&)> changed) override {
        const int id = ++last_;
        watches.emplace(id, Watch{directories, latency, std::move(changed)});
        return Subscription([this, id] { watches.erase(id); });
    }

    /// Reports a change to every watch that names the directory.
    void fire(const std::string& directory) {
        const auto now = watches; // a callback may end its own watch
        for (const auto& [id, watch] : now) {
            for (const auto& watched : watch.directories) {
                if (watched == directory)
                    watch.changed({.directories = {directory}});
            }
        }
    }

    std::map<int, Watch> watches; ///< those that go on

private:
    int last_ = 0;
};

} // namespace tessarine
