#pragma once

#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"

#include <QTimer>
#include <cstddef>
#include <functional>
#include <memory>

namespace tessarine {

/// Windows as a compositor's own interface lets them be moved. A tiled window becomes a floating
/// one before it is moved: its tile is not its own to leave. Each question waits at most
/// `CompositorIpc::patience`. Main thread only, with Qt's event loop.
class IpcWindowControl : public WindowControl {
public:
    explicit IpcWindowControl(std::unique_ptr<CompositorIpc> compositor);

    Ability ability() const override;
    std::vector<Screen> screens() const override;
    std::optional<Rectangle> frame(std::uint64_t window) const override;
    void restore(std::uint64_t window) override;
    void resize(std::uint64_t window, double width, double height) override;
    void move(std::uint64_t window, const Point& topLeft) override;
    void close(std::uint64_t window) override;
    Ability killing() const override;
    bool kill(std::uint64_t window) override;

private:
    /// The place that was asked for last.
    struct Wanted {
        std::uint64_t window = 0;
        Rectangle frame;
        std::size_t checks = 0; ///< how often it was seen whether the window is there
    };

    std::optional<WindowScene::Window> find(std::uint64_t window) const;
    void place(std::uint64_t window, const std::function<void(Rectangle& frame)>& change);
    void checkSoon();
    void check();

    std::unique_ptr<CompositorIpc> compositor_;
    std::optional<Wanted> wanted_; ///< until the last check
    QTimer timer_;
};

} // namespace tessarine
