#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowControl.h"

#include "launcherapp/platform/linux/desktop/X11WindowControl.h"
#include "launcherapp/platform/linux/desktop/X11WindowList.h"

#include <array>
#include <chrono>
#include <csignal>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

using namespace std::chrono_literals;

/// A program that answers late to the size it had before takes the window back to that size: when,
/// after an order and after the check before, it is seen whether it has. Compositors wait for
/// programs for about 200 ms.
constexpr std::array checkTimes{100ms, 300ms};

/// The number that the X server has for a window of the same process; 0 when none is found. Where
/// the compositor doesn't tell the window's own, any of them ends the program. One whose sandbox
/// counts its processes anew isn't found: the number may be another program's.
std::uint64_t x11Window(const WindowScene::Window& window) {
    if (window.x11Window != 0 || window.window.processID <= 1)
        return window.x11Window;
    for (const auto& each : X11WindowList().windows()) {
        if (each.processID == window.window.processID && each.className == window.window.className)
            return each.id;
    }
    return 0;
}

} // namespace

IpcWindowControl::IpcWindowControl(std::unique_ptr<CompositorIpc> compositor)
    : compositor_(std::move(compositor)) {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { check(); });
}

Ability IpcWindowControl::ability() const {
    return compositor_->ability();
}

std::vector<Screen> IpcWindowControl::screens() const {
    auto scene = compositor_->scene();
    return scene ? std::move(scene->screens) : std::vector<Screen>();
}

std::optional<WindowScene::Window> IpcWindowControl::find(std::uint64_t window) const {
    const auto scene = compositor_->scene();
    const auto* found = scene ? scene->find(window) : nullptr;
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<Rectangle> IpcWindowControl::frame(std::uint64_t window) const {
    const auto found = find(window);
    return found ? std::optional(found->frame) : std::nullopt;
}

void IpcWindowControl::restore(std::uint64_t window) {
    wanted_.reset();
    // The question before counts too.
    const auto deadline = CompositorIpc::Clock::now() + longestRestore;
    if (const auto found = find(window))
        compositor_->makeOrdinary(*found, deadline);
}

void IpcWindowControl::resize(std::uint64_t window, double width, double height) {
    place(window, [&](Rectangle& frame) {
        frame.width = width;
        frame.height = height;
    });
}

void IpcWindowControl::move(std::uint64_t window, const Point& topLeft) {
    place(window, [&](Rectangle& frame) {
        frame.x = topLeft.x;
        frame.y = topLeft.y;
    });
}

void IpcWindowControl::place(std::uint64_t window,
                             const std::function<void(Rectangle& frame)>& change) {
    const auto found = find(window);
    if (!found)
        return;
    if (!wanted_ || wanted_->window != window)
        wanted_ = {.window = window, .frame = found->frame};
    wanted_->checks = 0;
    change(wanted_->frame);
    compositor_->place(*found, wanted_->frame);
    checkSoon();
}

void IpcWindowControl::checkSoon() {
    timer_.start(checkTimes[wanted_->checks]);
}

void IpcWindowControl::check() {
    if (!wanted_)
        return;
    const auto found = find(wanted_->window);
    if (found && found->frame != wanted_->frame && !found->isTiled && !found->isFullScreen)
        compositor_->place(*found, wanted_->frame);
    if (found && ++wanted_->checks < checkTimes.size())
        checkSoon();
    else
        wanted_.reset();
}

void IpcWindowControl::close(std::uint64_t window) {
    compositor_->close(window);
}

Ability IpcWindowControl::killing() const {
    return ability();
}

bool IpcWindowControl::kill(std::uint64_t window) {
    const auto found = find(window);
    if (!found)
        return false;
    // The compositor has the process of an X11 window from the window, which may have counted it
    // in a sandbox; the X server knows better.
    if (found->isX11) {
        const auto number = x11Window(*found);
        return number != 0 && X11WindowControl().kill(number);
    }
    const auto process = found->window.processID;
    // To kill(2), numbers below 1 are groups of processes, and -1 is all of them.
    return process > 1 && std::in_range<pid_t>(process) && process != ::getpid() &&
           ::kill(static_cast<pid_t>(process), SIGKILL) == 0;
}

} // namespace tessarine
