#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/LocalSocket.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QSocketNotifier;

namespace tessarine {

/// Sway's interface for other programs (sway-ipc(7)), over one connection.
class SwayIpc : public CompositorIpc {
public:
    /// `path` is that of its socket. One that can't be reached is unable from the start.
    explicit SwayIpc(const std::string& path);
    ~SwayIpc() override;
    SwayIpc(const SwayIpc&) = delete;
    SwayIpc& operator=(const SwayIpc&) = delete;

    Ability ability() override;

    bool isConnected() const override { return socket_.isOpen(); }

    std::optional<WindowScene> scene() override;
    void follow(std::function<void(WindowScene scene)> told) override;
    void takeWhatCame() override;
    void activate(std::uint64_t window) override;
    void unhide(const WindowScene::Window& window) override;
    void makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) override;
    void place(const WindowScene::Window& window, const Rectangle& frame) override;
    void close(std::uint64_t window) override;

private:
    using Answer = std::function<void(std::string_view json)>;

    Ability asking();
    std::optional<WindowScene> readTree(std::string_view json);
    void ask(std::uint32_t type, std::string_view payload, Answer answer);
    std::optional<std::string> await(std::uint32_t type, std::string_view payload);
    void order(std::uint64_t window, std::string_view command);
    void read();
    void noteLoss();
    void note(std::uint32_t type, std::string_view payload);
    void noteEvent(std::uint32_t type, std::string_view event);
    void askForTree();

    LocalSocket socket_;
    std::string unread_;
    std::deque<Answer> asked_; ///< sway answers in this order
    /// Where the answer goes that somebody has waited for in vain; null when there is none such.
    std::shared_ptr<const std::optional<std::string>> late_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::function<void(WindowScene scene)> told_;
    WindowScene latest_;        ///< that was told
    bool isUnreadable_ = false; ///< the last tree that came
    bool isTreeAsked_ = false;
    bool isTreeOld_ = false; ///< something has happened since it was asked for
};

} // namespace tessarine
