#include "launcherapp/platform/linux/wayland/windows/ipc/SwayIpc.h"

#include "launcherapp/platform/linux/wayland/windows/ipc/SocketWatch.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/SwayTree.h"

#include <fmt/format.h>

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

namespace tessarine {

namespace {

// sway-ipc(7), "MESSAGES AND REPLIES" and "EVENTS"
constexpr std::string_view magic = "i3-ipc";
constexpr std::uint32_t runCommand = 0;
constexpr std::uint32_t subscribe = 2;
constexpr std::uint32_t getTree = 4;
constexpr std::uint32_t eventBit = 0x80000000U;
constexpr std::uint32_t windowEvent = eventBit | 3U;

using Sizes = std::array<std::uint32_t, 2>; ///< length and type, as the processor writes them
constexpr std::size_t headerSize = magic.size() + sizeof(Sizes);
/// Longest message that is read: a tree of ten thousand windows.
constexpr std::uint32_t longest = 16U << 20U;

/// A change that alters nothing which is told of a window: some change with each line of output.
bool isMinor(std::string_view event) {
    constexpr std::array changes{
        R"("change": "title")", R"("change": "mark")", R"("change": "urgent")"};
    const auto begin = event.substr(0, 40); // sway tells the change before the window
    return std::ranges::any_of(changes, [&](std::string_view change) {
        return begin.find(change) != std::string_view::npos;
    });
}

} // namespace

SwayIpc::SwayIpc(const std::string& path) : socket_(path) {}

SwayIpc::~SwayIpc() = default;

Ability SwayIpc::ability() {
    const auto can = asking();
    if (can.available && isUnreadable_)
        return Ability::missing("what sway tells of its windows can't be read");
    return can;
}

/// Whether questions and orders come through, whatever becomes of the answers.
Ability SwayIpc::asking() {
    read();
    if (!socket_.isOpen())
        return Ability::missing("the connection to sway was lost");
    if (late_ && !*late_)
        return Ability::missing("sway doesn't answer");
    return {};
}

void SwayIpc::ask(std::uint32_t type, std::string_view payload, Answer answer) {
    const Sizes sizes{static_cast<std::uint32_t>(payload.size()), type};
    std::string message(magic);
    message.append(reinterpret_cast<const char*>(sizes.data()), sizeof sizes);
    message += payload;
    socket_.send(message);
    asked_.push_back(std::move(answer));
}

std::optional<std::string> SwayIpc::await(std::uint32_t type, std::string_view payload) {
    if (!asking().available)
        return std::nullopt;
    // Shared, as the answer may come when nobody waits for it any more.
    const auto told = std::make_shared<std::optional<std::string>>();
    ask(type, payload, [told](std::string_view json) { told->emplace(json); });
    const auto end = Clock::now() + patience;
    while (!*told && socket_.isOpen()) {
        if (!socket_.wait(end)) {
            late_ = told;
            break;
        }
        read();
    }
    return *told;
}

std::optional<WindowScene> SwayIpc::scene() {
    const auto json = await(getTree, "");
    return json ? readTree(*json) : std::nullopt;
}

std::optional<WindowScene> SwayIpc::readTree(std::string_view json) {
    auto scene = SwayTree::read(json);
    isUnreadable_ = !scene;
    return scene;
}

void SwayIpc::follow(std::function<void(WindowScene scene)> told) {
    if (!socket_.isOpen())
        return;
    told_ = std::move(told);
    ask(subscribe, R"(["window", "workspace"])", {});
    askForTree();
    notifier_ = std::make_unique<QSocketNotifier>(socket_.descriptor(), QSocketNotifier::Read);
    QObject::connect(
        notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
}

void SwayIpc::takeWhatCame() {
    read();
}

/// Takes whole messages, the answers to the callers' questions in their order.
void SwayIpc::read() {
    unread_ += socket_.takeWhatCame();
    while (unread_.size() >= headerSize) {
        Sizes sizes{};
        std::memcpy(sizes.data(), unread_.data() + magic.size(), sizeof sizes);
        const auto [length, type] = sizes;
        if (!unread_.starts_with(magic) || length > longest) {
            socket_ = LocalSocket();
            unread_.clear();
            break;
        }
        if (unread_.size() < headerSize + length)
            break;
        const auto payload = unread_.substr(headerSize, length);
        unread_.erase(0, headerSize + length);
        note(type, payload);
    }
    noteLoss();
}

/// After all that was told before the end: what nobody keeps up is told no longer.
void SwayIpc::noteLoss() {
    if (socket_.isOpen() || !notifier_)
        return;
    retire(std::move(notifier_));
    told_({});
}

void SwayIpc::note(std::uint32_t type, std::string_view payload) {
    if ((type & eventBit) != 0) {
        noteEvent(type, payload);
        return;
    }
    if (asked_.empty())
        return;
    const auto answer = std::move(asked_.front());
    asked_.pop_front();
    if (answer)
        answer(payload);
}

/// The focus changes often, and a tree of five hundred windows takes ten milliseconds to read.
void SwayIpc::noteEvent(std::uint32_t type, std::string_view event) {
    if (!told_ || (type == windowEvent && isMinor(event)))
        return;
    const auto focused = type == windowEvent ? SwayTree::focused(event) : std::nullopt;
    const auto* window = focused ? latest_.find(*focused) : nullptr;
    if (!window || window->window.hidden || isTreeAsked_) {
        askForTree();
        return;
    }
    latest_.active = focused;
    told_(latest_);
}

/// At most one is under way: many windows that come at once are told in two trees.
void SwayIpc::askForTree() {
    isTreeOld_ = true;
    if (std::exchange(isTreeAsked_, true))
        return;
    isTreeOld_ = false;
    ask(getTree, "", [this](std::string_view json) {
        isTreeAsked_ = false;
        if (isTreeOld_)
            askForTree();
        latest_ = readTree(json).value_or(WindowScene());
        told_(latest_);
    });
}

/// Nobody waits for what becomes of it: sway carries orders out before it answers what is asked
/// later.
void SwayIpc::order(std::uint64_t window, std::string_view command) {
    if (asking().available)
        ask(runCommand, fmt::format("[con_id={}] {}", window, command), {});
}

void SwayIpc::activate(std::uint64_t window) {
    order(window, "focus");
}

void SwayIpc::unhide(const WindowScene::Window& window) {
    if (window.window.hidden) // it would hide one that is shown
        order(window.window.id, "scratchpad show");
}

void SwayIpc::makeOrdinary(const WindowScene::Window& window, Clock::time_point) {
    unhide(window);
    if (window.isFullScreen)
        order(window.window.id, "fullscreen disable");
    if (window.isTiled && !window.window.hidden)
        order(window.window.id, "floating enable");
}

void SwayIpc::place(const WindowScene::Window& window, const Rectangle& frame) {
    // The size first: sway keeps the middle of a window that gets another.
    order(window.window.id,
          fmt::format("resize set {} px {} px, move absolute position {} px {} px",
                      std::lround(frame.width),
                      std::lround(frame.height),
                      std::lround(frame.x),
                      std::lround(frame.y)));
}

void SwayIpc::close(std::uint64_t window) {
    order(window, "kill");
}

} // namespace tessarine
