#include "launcherapp/platform/linux/wayland/windows/ipc/ReturningIpc.h"

#include <utility>

namespace tessarine {

ReturningIpc::ReturningIpc(std::unique_ptr<CompositorIpc> first, Connect connect)
    : current_(std::move(first)), connect_(std::move(connect)) {
    timer_.setSingleShot(true);
    timer_.setInterval(pause);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { renew(); });
}

/// The connection to ask, made again if it was found lost and this is not too soon.
CompositorIpc& ReturningIpc::living() {
    if (!timer_.isActive())
        renew();
    return *current_;
}

void ReturningIpc::renew() {
    if (current_->isConnected())
        return;
    auto next = connect_();
    if (!next) {
        timer_.start();
        return;
    }
    current_ = std::move(next);
    if (told_)
        followCurrent();
}

void ReturningIpc::followCurrent() {
    current_->follow([this](WindowScene scene) {
        told_(std::move(scene));
        // Not at once: this is called by the connection that would be replaced, and one that is
        // taken and ended again and again must not keep the program busy.
        if (!current_->isConnected())
            timer_.start();
    });
}

Ability ReturningIpc::ability() {
    // What finds the loss is the question itself.
    const auto can = living().ability();
    return current_->isConnected() ? can : living().ability();
}

std::optional<WindowScene> ReturningIpc::scene() {
    return living().scene();
}

void ReturningIpc::follow(std::function<void(WindowScene scene)> told) {
    told_ = std::move(told);
    followCurrent();
}

void ReturningIpc::takeWhatCame() {
    living().takeWhatCame();
}

void ReturningIpc::activate(std::uint64_t window) {
    living().activate(window);
}

void ReturningIpc::unhide(const WindowScene::Window& window) {
    living().unhide(window);
}

void ReturningIpc::makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) {
    living().makeOrdinary(window, deadline);
}

void ReturningIpc::place(const WindowScene::Window& window, const Rectangle& frame) {
    living().place(window, frame);
}

void ReturningIpc::close(std::uint64_t window) {
    living().close(window);
}

} // namespace tessarine
