#include "launcherapp/platform/linux/wayland/windows/kwin/KWinIpc.h"

#include "LauncherCore/text/JsonFields.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/ReturningIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/SocketWatch.h"
#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScene.h"

#include <nlohmann/json.hpp>

#include <QSocketNotifier>
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;

/// How long a window may stay as it is until it counts as one that nothing will change, such as one
/// that merely fills the place of a maximised one, which KWin 5 doesn't tell apart: programs answer
/// a new size within three pictures of 60 a second.
constexpr std::chrono::milliseconds settling{50};

} // namespace

/// JSON as the program inside KWin takes it.
struct KWinIpc::Orders {
    Json list = Json::array();
};

std::unique_ptr<KWinIpc> KWinIpc::connect() {
    auto scripts = KWinScripts::connect(Clock::now() + patience);
    return scripts ? std::make_unique<KWinIpc>(std::move(scripts)) : nullptr;
}

KWinIpc::KWinIpc(std::unique_ptr<KWinScripts> scripts)
    : scripts_(std::move(scripts)), orders_(std::make_unique<Orders>()),
      notifier_(std::make_unique<QSocketNotifier>(scripts_->descriptor(), QSocketNotifier::Read)) {
    QObject::connect(
        notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
    again_.setSingleShot(true);
    again_.setInterval(ReturningIpc::pause);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { startFollower(); });
}

KWinIpc::~KWinIpc() = default;

Ability KWinIpc::ability() {
    read();
    if (!isConnected())
        return Ability::missing("the connection to KWin was lost");
    if (answered_ < late_)
        return Ability::missing("KWin doesn't answer");
    if (!problem_.empty()) {
        // It may be over, which the next who asks is to know: whoever is told that nothing can be
        // done orders nothing that would show it.
        isSceneWanted_ = true;
        start();
    }
    for (const auto& problem : {problem_, followerProblem_}) {
        if (!problem.empty())
            return Ability::missing(problem);
    }
    return {};
}

void KWinIpc::takeWhatCame() {
    read();
}

void KWinIpc::read() {
    if (isConnected())
        scripts_->takeWhatCame();
    if (!isConnected())
        noteLoss();
}

void KWinIpc::noteLoss() {
    if (!notifier_)
        return;
    retire(std::move(notifier_));
    again_.stop();
    if (told_)
        told_({});
}

std::optional<WindowScene> KWinIpc::scene() {
    return sceneBy(Clock::now() + patience);
}

std::optional<WindowScene> KWinIpc::sceneBy(Clock::time_point deadline) {
    read();
    if (!isConnected() || answered_ < late_)
        return std::nullopt;
    // One that runs already may have told what was before the last order.
    const auto wanted = started_ + 1;
    isSceneWanted_ = true;
    start();
    while (answered_ < wanted && isConnected()) {
        if (!scripts_->wait(deadline)) {
            late_ = wanted;
            return std::nullopt;
        }
        read();
    }
    return isConnected() ? answer_ : std::nullopt;
}

/// At most one is under way, as two might be run in any order; what is ordered meanwhile the next
/// one does.
void KWinIpc::start() {
    if (running_ || !isConnected() || (orders_->list.empty() && !isSceneWanted_))
        return;
    auto orders = std::exchange(orders_->list, Json::array());
    isSceneWanted_ = false;
    ++started_;
    try {
        running_ =
            scripts_->start({.orders = orders.dump()}, [this](Json* message) { note(message); });
    } catch (const std::runtime_error& failure) {
        problem_ = failure.what();
        answer_.reset();
        ++answered_;
    }
}

void KWinIpc::note(Json* message) {
    auto read = reading(message);
    answer_ = std::move(read.scene);
    if (answer_)
        logOrderProblem(std::exchange(read.problem, {}));
    problem_ = std::move(read.problem);
    ++answered_;
    if (const auto done = std::exchange(running_, std::nullopt))
        scripts_->end(*done);
    start();
}

/// One order that failed says nothing of the next; one that fails always is logged once.
void KWinIpc::logOrderProblem(const std::string& problem) {
    if (!problem.empty() && problem != loggedProblem_)
        std::fputs(("tessarine: " + problem + "\n").c_str(), stderr);
    if (!problem.empty())
        loggedProblem_ = problem;
}

KWinIpc::Reading KWinIpc::reading(Json* message) {
    if (!message)
        return {.problem = "KWin runs no scripts of this program's"};
    JsonFields told(*message);
    auto* const scene = told.member("scene");
    Reading read{.scene = scene ? KWinScene::read(std::move(*scene)) : std::nullopt};
    if (const auto problem = told.optional<std::string>("problem"))
        read.problem = "this program's script in KWin failed: " + *problem;
    else if (!read.scene)
        read.problem = "what KWin tells of its windows can't be read";
    return read;
}

void KWinIpc::follow(std::function<void(WindowScene scene)> told) {
    if (!isConnected())
        return;
    told_ = std::move(told);
    startFollower();
}

void KWinIpc::startFollower() {
    if (!isConnected())
        return;
    try {
        follower_ =
            scripts_->start({.follows = true}, [this](Json* message) { noteChange(message); });
    } catch (const std::runtime_error& failure) {
        noteFollower({.problem = failure.what()});
    }
}

void KWinIpc::noteChange(Json* message) {
    noteFollower(reading(message));
}

/// One that fails may not tell again, so another takes its place: not at once, as that may fail
/// too.
void KWinIpc::noteFollower(Reading read) {
    const bool isNews = read.scene || followerProblem_.empty();
    followerProblem_ = std::move(read.problem);
    if (!followerProblem_.empty()) {
        if (const auto failed = std::exchange(follower_, std::nullopt))
            scripts_->end(*failed);
        again_.start();
    }
    if (isNews)
        told_(std::move(read.scene).value_or(WindowScene()));
}

void KWinIpc::order(const char* verb, std::uint64_t window) {
    if (!takesOrders())
        return;
    orders_->list.push_back({{"do", verb}, {"window", KWinScene::key(window)}});
    start();
}

/// What somebody wanted of a KWin that stands still he may not want any more when it goes on.
bool KWinIpc::takesOrders() {
    read();
    return isConnected() && answered_ >= late_;
}

void KWinIpc::activate(std::uint64_t window) {
    order("activate", window);
}

void KWinIpc::unhide(const WindowScene::Window& window) {
    order("unhide", window.window.id);
}

/// Its program has a say in the size, so KWin has done it when the program has.
void KWinIpc::makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) {
    order("makeOrdinary", window.window.id);
    if (!window.isFullScreen && !window.isTiled)
        return;
    const auto begin = Clock::now();
    auto before = window.frame;
    while (Clock::now() < deadline) {
        const auto now = sceneBy(deadline);
        const auto* found = now ? now->find(window.window.id) : nullptr;
        if (!found || (!found->isFullScreen && !found->isTiled))
            return;
        const bool isSettled = std::exchange(before, found->frame) == found->frame;
        if (isSettled && Clock::now() - begin > settling)
            return;
    }
    // The last question may have had no time: the place that it is given now is asked for all the
    // same.
    late_ = std::min(late_, answered_);
}

void KWinIpc::place(const WindowScene::Window& window, const Rectangle& frame) {
    if (!takesOrders())
        return;
    orders_->list.push_back({{"do", "place"},
                             {"window", KWinScene::key(window.window.id)},
                             {"x", frame.x},
                             {"y", frame.y},
                             {"width", frame.width},
                             {"height", frame.height}});
    start();
}

void KWinIpc::close(std::uint64_t window) {
    order("close", window);
}

} // namespace tessarine
