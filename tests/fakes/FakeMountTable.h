#pragma once

#include "launcherapp/platform/MountTable.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Mounts that a test makes and removes.
class FakeMountTable : public MountTable {
public:
    std::vector<Mount> mounts() const override { return mounted_; }

    Subscription onChange(std::function<void()> changed) override {
        const int id = ++last_;
        observers_.emplace(id, std::move(changed));
        return Subscription([this, id] { observers_.erase(id); });
    }

    void mount(const std::string& path, const std::string& type = "vfat") {
        mounted_.push_back({.path = path, .source = "/dev/" + path, .type = type});
        tell();
    }

    void unmount(const std::string& path) {
        std::erase_if(mounted_, [&](const Mount& mount) { return mount.path == path; });
        tell();
    }

    /// Something else is mounted there, before anybody noticed that the first one left.
    void replace(const std::string& path, const std::string& source) {
        for (auto& mount : mounted_) {
            if (mount.path == path)
                mount.source = source;
        }
        tell();
    }

    /// Something else about the mounts changed.
    void tell() {
        const auto now = observers_; // an observer may end itself
        for (const auto& [id, changed] : now)
            changed();
    }

private:
    std::vector<Mount> mounted_;
    std::map<int, std::function<void()>> observers_;
    int last_ = 0;
};

} // namespace tessarine
