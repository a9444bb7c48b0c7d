#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"
#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScripts.h"

#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QSocketNotifier;

namespace tessarine {

/// KWin's windows, through scripts that it runs for this program. Each script carries out what has
/// been ordered until it starts, and tells the scene after that; another one stays and tells
/// changes. One script takes a few milliseconds.
class KWinIpc : public CompositorIpc {
public:
    /// Null where KWin takes no scripts of this program's. Waits as `KWinScripts::connect`, at
    /// most `patience`.
    static std::unique_ptr<KWinIpc> connect();

    explicit KWinIpc(std::unique_ptr<KWinScripts> scripts);
    ~KWinIpc() override;
    KWinIpc(const KWinIpc&) = delete;
    KWinIpc& operator=(const KWinIpc&) = delete;

    Ability ability() override;

    bool isConnected() const override { return scripts_->isConnected(); }

    std::optional<WindowScene> scene() override;
    void follow(std::function<void(WindowScene scene)> told) override;
    void takeWhatCame() override;
    void activate(std::uint64_t window) override;
    void unhide(const WindowScene::Window& window) override;
    void makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) override;
    void place(const WindowScene::Window& window, const Rectangle& frame) override;
    void close(std::uint64_t window) override;

private:
    struct Orders;

    /// What was read of a message: a scene, or why there is none, or both where what was to be done
    /// before failed.
    struct Reading {
        std::optional<WindowScene> scene;
        std::string problem;
    };

    std::optional<WindowScene> sceneBy(Clock::time_point deadline);
    void read();
    bool takesOrders();
    void order(const char* verb, std::uint64_t window);
    void start();
    void note(nlohmann::json* message);
    void startFollower();
    void noteChange(nlohmann::json* message);
    void noteFollower(Reading read);
    void logOrderProblem(const std::string& problem);
    static Reading reading(nlohmann::json* message);
    void noteLoss();

    std::unique_ptr<KWinScripts> scripts_;
    std::unique_ptr<Orders> orders_;       ///< that wait for a script
    std::optional<std::uint64_t> running_; ///< the script that carries some out
    bool isSceneWanted_ = false;           ///< somebody waits for the next script's
    std::uint64_t answered_ = 0;           ///< scripts that have told or failed
    std::uint64_t started_ = 0;
    /// How many are to have answered until somebody may wait again; 0 when nobody has in vain.
    std::uint64_t late_ = 0;
    std::optional<WindowScene> answer_;     ///< of the last script that carried out orders
    std::string problem_;                   ///< why that one didn't tell; empty when it did
    std::optional<std::uint64_t> follower_; ///< the script that stays
    std::string followerProblem_;           ///< why it doesn't tell; empty while it does
    std::string loggedProblem_;             ///< of an order
    QTimer again_;                          ///< runs until another one is started in its place
    std::function<void(WindowScene scene)> told_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace tessarine
