#pragma once

#include "launcherapp/platform/MountTable.h"
#include "launcherapp/platform/linux/files/MountInfoFile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

class QSocketNotifier;

namespace tessarine {

/// The mounts that the kernel lists for this process. Main thread only, with Qt's event loop.
class ProcMountTable : public MountTable {
public:
    ProcMountTable();
    ~ProcMountTable() override;
    ProcMountTable(const ProcMountTable&) = delete;
    ProcMountTable& operator=(const ProcMountTable&) = delete;

    std::vector<Mount> mounts() const override;
    Subscription onChange(std::function<void()> changed) override;

private:
    using Observers = std::map<std::uint64_t, std::function<void()>>;

    MountInfoFile file_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
    std::uint64_t lastObserver_ = 0;
};

} // namespace tessarine
