#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/LocalSocket.h"

#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QSocketNotifier;

namespace tessarine {

/// Hyprland's interface for other programs: one socket that tells events, and one that takes a
/// question or order with each connection.
class HyprlandIpc : public CompositorIpc {
public:
    /// The folder of the sockets of the Hyprland that HYPRLAND_INSTANCE_SIGNATURE names. Nothing
    /// where none takes connections: the variable outlives the compositor that set it. Waits for
    /// nobody.
    static std::optional<std::string> runningFolder();

    /// `folder` is that of its sockets. One that can't be reached is unable from the start.
    explicit HyprlandIpc(std::string folder);
    ~HyprlandIpc() override;
    HyprlandIpc(const HyprlandIpc&) = delete;
    HyprlandIpc& operator=(const HyprlandIpc&) = delete;

    Ability ability() override;

    bool isConnected() const override { return events_.isOpen(); }

    std::optional<WindowScene> scene() override;
    void follow(std::function<void(WindowScene scene)> told) override;
    void takeWhatCame() override;
    void activate(std::uint64_t window) override;
    void unhide(const WindowScene::Window& window) override;
    void makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) override;
    void place(const WindowScene::Window& window, const Rectangle& frame) override;
    void close(std::uint64_t window) override;

private:
    struct Question;
    struct SceneQuestion;

    Ability asking();
    std::optional<WindowScene> readScene(std::string_view clients, std::string_view monitors);
    std::unique_ptr<Question> ask(std::string_view request) const;
    std::optional<std::string> await(const std::string& request);
    std::optional<std::string> await(const std::string& request, Clock::time_point deadline);
    void readEvents();
    void noteLoss();
    void askForScene();
    void finishScene();

    std::string folder_;
    LocalSocket events_;
    std::string unread_;             ///< part of an event
    std::unique_ptr<Question> late_; ///< somebody has waited for it in vain
    std::unique_ptr<QSocketNotifier> notifier_;
    std::function<void(WindowScene scene)> told_;
    std::unique_ptr<SceneQuestion> asked_;
    bool isSceneOld_ = false;   ///< something has happened since it was asked for
    bool isUnreadable_ = false; ///< the last scene that came
    QTimer again_;              ///< runs until a scene is asked for again
};

} // namespace tessarine
