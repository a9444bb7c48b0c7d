#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"

#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>

namespace tessarine {

/// A compositor's interface whose lost connection is made again: compositors drop programs that
/// read too slowly, as a stopped one does. While it is lost there are no windows. Main thread only,
/// with Qt's event loop.
class ReturningIpc : public CompositorIpc {
public:
    /// Between two tries to connect that nobody but this asks for.
    static constexpr std::chrono::milliseconds pause{500};

    /// Gives a connection, or null when there is none to be had. Waits for `patience` at most.
    using Connect = std::function<std::unique_ptr<CompositorIpc>()>;

    /// `first` is a connection that stands.
    ReturningIpc(std::unique_ptr<CompositorIpc> first, Connect connect);

    Ability ability() override;

    bool isConnected() const override { return current_->isConnected(); }

    std::optional<WindowScene> scene() override;
    void follow(std::function<void(WindowScene scene)> told) override;
    void takeWhatCame() override;
    void activate(std::uint64_t window) override;
    void unhide(const WindowScene::Window& window) override;
    void makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) override;
    void place(const WindowScene::Window& window, const Rectangle& frame) override;
    void close(std::uint64_t window) override;

private:
    CompositorIpc& living();
    void renew();
    void followCurrent();

    std::unique_ptr<CompositorIpc> current_;
    Connect connect_;
    std::function<void(WindowScene scene)> told_;
    QTimer timer_; ///< runs until the next try
};

} // namespace tessarine
