#pragma once

#include "launcherapp/platform/WindowList.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"

#include <memory>

namespace tessarine {

/// The windows as a compositor's own interface tells them. The first question waits for its answer,
/// at most `CompositorIpc::patience`; from then on it tells the changes, and no question waits.
/// Main thread only, with Qt's event loop.
class IpcWindowList : public WindowList {
public:
    explicit IpcWindowList(std::unique_ptr<CompositorIpc> compositor);
    ~IpcWindowList() override;
    IpcWindowList(const IpcWindowList&) = delete;
    IpcWindowList& operator=(const IpcWindowList&) = delete;

    Ability ability() const override;

    std::optional<std::string> gap() const override { return std::nullopt; }

    std::vector<AppWindow> windows() const override;
    std::optional<AppWindow> active() const override;
    bool stillRuns(const AppWindow& window) const override;
    Subscription onActiveChanged(std::function<void()> changed) override;
    Subscription onListChanged(std::function<void()> changed) override;
    void unhide(std::uint64_t window) override;
    void activate(std::uint64_t window) override;

private:
    class Told;
    std::unique_ptr<Told> told_;
};

} // namespace tessarine
