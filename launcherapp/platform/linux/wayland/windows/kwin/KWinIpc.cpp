#include "launcherapp/platform/linux/wayland/windows/kwin/KWinIpc.h"

#include "LauncherCore/text/JsonFields.h"
#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScene.h"

#include <nlohmann/json.hpp>

#include <QSocketNotifier>
#include <stdexcept>
#include <utility>

namespace tessarine {

namespace {

using Clock = KWinScripts::Clock;
using Json = nlohmann::json;

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
}

KWinIpc::~KWinIpc() = default;

Ability KWinIpc::ability() {
    read();
    if (!isConnected())
        return Ability::missing("the connection to KWin was lost");
    if (answered_ < late_)
        return Ability::missing("KWin doesn't answer");
    if (!problem_.empty())
        return Ability::missing(problem_);
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
    notifier_->setEnabled(false);       // a closed connection would wake the loop for ever
    notifier_.release()->deleteLater(); // it may be the one that tells
    if (told_)
        told_({});
}

std::optional<WindowScene> KWinIpc::scene() {
    read();
    if (!isConnected() || answered_ < late_)
        return std::nullopt;
    // One that runs already may have told what was before the last order.
    const auto wanted = started_ + 1;
    isSceneWanted_ = true;
    start();
    const auto end = Clock::now() + patience;
    while (answered_ < wanted && isConnected()) {
        if (!scripts_->wait(end)) {
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
    answer_ = sceneOf(message);
    ++answered_;
    if (const auto done = std::exchange(running_, std::nullopt))
        scripts_->end(*done);
    start();
}

std::optional<WindowScene> KWinIpc::sceneOf(Json* message) {
    auto told = message ? std::optional<JsonFields>(*message) : std::nullopt;
    auto* const scene = told ? told->member("scene") : nullptr;
    auto read = scene ? KWinScene::read(*scene) : std::nullopt;
    problem_ = read      ? ""
               : message ? "KWin tells its windows in another way than is known here"
                         : "KWin runs no scripts of this program's";
    return read;
}

void KWinIpc::follow(std::function<void(WindowScene scene)> told) {
    if (!isConnected())
        return;
    told_ = std::move(told);
    scripts_->start({.follows = true}, [this](Json* message) {
        if (auto scene = sceneOf(message))
            told_(*std::move(scene));
    });
}

void KWinIpc::order(const char* verb, std::uint64_t window) {
    if (!isConnected())
        return;
    orders_->list.push_back({{"do", verb}, {"window", KWinScene::key(window)}});
    start();
}

void KWinIpc::activate(std::uint64_t window) {
    order("activate", window);
}

void KWinIpc::unhide(const WindowScene::Window& window) {
    order("unhide", window.window.id);
}

/// Its program has a say in the size, so KWin has done it when the program has.
void KWinIpc::makeOrdinary(const WindowScene::Window& window) {
    order("makeOrdinary", window.window.id);
    if (!window.isFullScreen && !window.isTiled)
        return;
    const auto end = Clock::now() + patience;
    while (Clock::now() < end) {
        const auto now = scene();
        const auto* found = now ? now->find(window.window.id) : nullptr;
        if (!found || (!found->isFullScreen && !found->isTiled))
            return;
    }
}

void KWinIpc::place(const WindowScene::Window& window, const Rectangle& frame) {
    if (!isConnected())
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
