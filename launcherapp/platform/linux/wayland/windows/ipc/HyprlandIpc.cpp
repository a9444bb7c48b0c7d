#include "launcherapp/platform/linux/wayland/windows/ipc/HyprlandIpc.h"

#include "launcherapp/platform/linux/wayland/windows/ipc/HyprlandScene.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/ReturningIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/SocketWatch.h"

#include <fmt/format.h>

#include <QSocketNotifier>
#include <QString>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

constexpr auto eventSocket = "/.socket2.sock";

/// Those after which windows are others, or elsewhere. Some more are told for what is nobody's
/// concern here, titles among them.
constexpr std::array<std::string_view, 8> changes{"openwindow",
                                                  "closewindow",
                                                  "activewindowv2",
                                                  "movewindow",
                                                  "workspace",
                                                  "focusedmon",
                                                  "activespecial",
                                                  "monitorremoved"};
/// Longest part of an event that is kept: a title of any length is cut far below.
constexpr std::size_t longestEvent = 65536;

std::string named(std::uint64_t window) {
    return fmt::format("address:{:#x}", window);
}

} // namespace

/// One request, whose answer ends with its connection.
struct HyprlandIpc::Question {
    LocalSocket socket;
    std::string answer;

    bool isAnswered() {
        answer += socket.takeWhatCame();
        return !socket.isOpen();
    }
};

/// What makes a scene, asked without waiting.
struct HyprlandIpc::SceneQuestion {
    std::array<std::unique_ptr<Question>, 2> parts; ///< windows, monitors
    std::array<std::unique_ptr<QSocketNotifier>, 2> notifiers;
};

std::optional<std::string> HyprlandIpc::runningFolder() {
    const auto instance = qEnvironmentVariable("HYPRLAND_INSTANCE_SIGNATURE").toStdString();
    if (instance.empty())
        return std::nullopt;
    const auto runtime = qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString();
    for (const auto& parent : {runtime, std::string("/tmp")}) { // older versions in the second
        auto folder = parent + "/hypr/" + instance;
        if (LocalSocket(folder + eventSocket).isOpen())
            return folder;
    }
    return std::nullopt;
}

HyprlandIpc::HyprlandIpc(std::string folder)
    : folder_(std::move(folder)), events_(folder_ + eventSocket) {
    again_.setSingleShot(true);
    again_.setInterval(ReturningIpc::pause);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { askForScene(); });
}

HyprlandIpc::~HyprlandIpc() = default;

Ability HyprlandIpc::ability() {
    const auto can = asking();
    if (can.available && isUnreadable_)
        return Ability::missing("what Hyprland tells of its windows can't be read");
    return can;
}

/// Whether questions and orders come through, whatever becomes of the answers.
Ability HyprlandIpc::asking() {
    readEvents();
    if (!events_.isOpen())
        return Ability::missing("the connection to Hyprland was lost");
    if (late_ && !late_->isAnswered())
        return Ability::missing("Hyprland doesn't answer");
    late_.reset();
    return {};
}

std::unique_ptr<HyprlandIpc::Question> HyprlandIpc::ask(std::string_view request) const {
    auto question = std::make_unique<Question>();
    question->socket = LocalSocket(folder_ + "/.socket.sock");
    question->socket.send(request);
    return question;
}

std::optional<std::string> HyprlandIpc::await(const std::string& request) {
    return await(request, Clock::now() + patience);
}

std::optional<std::string> HyprlandIpc::await(const std::string& request,
                                              Clock::time_point deadline) {
    if (!asking().available)
        return std::nullopt;
    auto question = ask(request);
    while (!question->isAnswered()) {
        if (!question->socket.wait(deadline)) {
            late_ = std::move(question);
            return std::nullopt;
        }
    }
    return std::move(question->answer);
}

std::optional<WindowScene> HyprlandIpc::scene() {
    const auto clients = await("j/clients");
    const auto monitors = clients ? await("j/monitors") : std::nullopt;
    return monitors ? readScene(*clients, *monitors) : std::nullopt;
}

/// Nothing also for a question that was never taken, whose answer is empty.
std::optional<WindowScene> HyprlandIpc::readScene(std::string_view clients,
                                                  std::string_view monitors) {
    if (clients.empty() || monitors.empty())
        return std::nullopt;
    auto scene = HyprlandScene::read(clients, monitors);
    isUnreadable_ = !scene;
    return scene;
}

void HyprlandIpc::follow(std::function<void(WindowScene scene)> told) {
    if (!events_.isOpen())
        return;
    told_ = std::move(told);
    notifier_ = std::make_unique<QSocketNotifier>(events_.descriptor(), QSocketNotifier::Read);
    QObject::connect(
        notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { readEvents(); });
    askForScene();
}

void HyprlandIpc::takeWhatCame() {
    readEvents();
    finishScene();
}

/// Takes whole lines, "name>>data" each.
void HyprlandIpc::readEvents() {
    unread_ += events_.takeWhatCame();
    if (!events_.isOpen())
        return noteLoss();
    bool isChanged = false;
    for (auto end = unread_.find('\n'); end != std::string::npos; end = unread_.find('\n')) {
        const auto name = std::string_view(unread_).substr(0, std::min(end, unread_.find(">>")));
        isChanged = isChanged || std::ranges::count(changes, name) > 0;
        unread_.erase(0, end + 1);
    }
    if (unread_.size() > longestEvent)
        unread_.clear();
    if (isChanged && told_)
        askForScene();
}

/// What nobody keeps up is told no longer, nor what is still being answered.
void HyprlandIpc::noteLoss() {
    if (!notifier_)
        return;
    retire(std::move(notifier_));
    asked_.reset();
    again_.stop();
    told_({});
}

/// At most one is under way: many windows that come at once are told in two scenes. One that can't
/// be asked for, as too many others ask, is asked for again.
void HyprlandIpc::askForScene() {
    isSceneOld_ = asked_ != nullptr;
    if (asked_)
        return;
    again_.stop();
    asked_ = std::make_unique<SceneQuestion>();
    asked_->parts = {ask("j/clients"), ask("j/monitors")};
    if (!asked_->parts[0]->socket.isOpen() || !asked_->parts[1]->socket.isOpen()) {
        asked_.reset();
        again_.start();
        return;
    }
    for (std::size_t i = 0; i < asked_->parts.size(); ++i) {
        const auto& socket = asked_->parts[i]->socket;
        auto& notifier = asked_->notifiers[i];
        notifier = std::make_unique<QSocketNotifier>(socket.descriptor(), QSocketNotifier::Read);
        QObject::connect(
            notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { finishScene(); });
    }
}

/// Tells the scene once both its parts are there.
void HyprlandIpc::finishScene() {
    if (!asked_)
        return;
    bool isWhole = true;
    for (std::size_t i = 0; i < asked_->parts.size(); ++i) {
        const bool isThere = asked_->parts[i]->isAnswered();
        isWhole = isWhole && isThere;
        if (isThere)
            retire(std::move(asked_->notifiers[i]));
    }
    if (!isWhole)
        return;
    const auto done = std::move(asked_);
    if (std::exchange(isSceneOld_, false))
        askForScene();
    auto scene = readScene(done->parts[0]->answer, done->parts[1]->answer);
    if (scene || isUnreadable_)
        told_(std::move(scene).value_or(WindowScene()));
    else
        again_.start();
}

void HyprlandIpc::activate(std::uint64_t window) {
    await("dispatch focuswindow " + named(window));
}

void HyprlandIpc::unhide(const WindowScene::Window& window) {
    if (window.window.hidden)
        activate(window.window.id); // which shows its workspace
}

void HyprlandIpc::makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) {
    const auto name = named(window.window.id);
    if (window.window.hidden || window.isFullScreen)
        await("dispatch focuswindow " + name, deadline); // which shows its workspace
    // Both orders are for the active window alone; older versions know the second.
    if (window.isFullScreen &&
        await("dispatch fullscreenstate 0 0", deadline).value_or("ok") != "ok")
        await("dispatch fullscreen 0", deadline);
    if (window.isTiled)
        await("dispatch setfloating " + name, deadline);
}

void HyprlandIpc::place(const WindowScene::Window& window, const Rectangle& frame) {
    const auto name = named(window.window.id);
    await(fmt::format("[[BATCH]]dispatch resizewindowpixel exact {} {},{};"
                      "dispatch movewindowpixel exact {} {},{}",
                      std::lround(frame.width),
                      std::lround(frame.height),
                      name,
                      std::lround(frame.x),
                      std::lround(frame.y),
                      name));
}

void HyprlandIpc::close(std::uint64_t window) {
    await("dispatch closewindow " + named(window));
}

} // namespace tessarine
