#pragma once

#include "launcherapp/platform/TreeWatcher.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Watches on trees that a test fires by hand. Must outlive its streams.
class FakeTreeWatcher : public TreeWatcher {
public:
    struct Cover {
        std::string root;
        std::vector<std::string> directories;
        double readAt = 0;
    };

    struct Stream : TreeStream {
        Stream(FakeTreeWatcher& owner,
               std::vector<std::string> watchedRoots,
               Seconds reportLatency,
               Changed report)
            : roots(std::move(watchedRoots)), latency(reportLatency), changed(std::move(report)),
              owner_(owner) {
            owner_.streams.push_back(this);
        }

        ~Stream() override { std::erase(owner_.streams, this); }

        Stream(const Stream&) = delete;
        Stream& operator=(const Stream&) = delete;

        void cover(const std::string& root,
                   std::vector<std::string> directories,
                   double readAt) override {
            covers.push_back({root, std::move(directories), readAt});
        }

        std::vector<std::string> roots;
        Seconds latency;
        Changed changed;
        std::vector<Cover> covers; ///< in the order they came

    private:
        FakeTreeWatcher& owner_;
    };

    std::unique_ptr<TreeStream>
    watch(const std::vector<std::string>& roots, Seconds latency, Changed changed) override {
        if (!works)
            return nullptr;
        return std::make_unique<Stream>(*this, roots, latency, std::move(changed));
    }

    TreeWatchCounts counts() const override { return watched; }

    /// Reports these directories to every stream, in one batch.
    void fire(const std::vector<std::string>& directories, std::uint32_t flags = 0) {
        TreeChanges changes;
        changes.folded = directories.size();
        for (const auto& directory : directories)
            changes.events.push_back({.path = directory, .flags = flags});
        const auto now = streams; // a callback may end its own stream
        for (auto* const stream : now) {
            if (std::ranges::find(streams, stream) == streams.end())
                continue;
            const auto callback = stream->changed;
            callback(changes);
        }
    }

    bool works = true;
    TreeWatchCounts watched;
    std::vector<Stream*> streams; ///< those that go on
};

} // namespace tessarine
