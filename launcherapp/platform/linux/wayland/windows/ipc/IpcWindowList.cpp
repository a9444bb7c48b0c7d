#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowList.h"

#include "launcherapp/platform/linux/processes/ProcessFacts.h"
#include "launcherapp/platform/linux/wayland/windows/WindowChange.h"

#include <algorithm>
#include <map>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

/// Adds what the window's process tells; for one that was told before, what it told then.
void complete(AppWindow& window, const AppWindow* before) {
    if (window.processID == 0)
        return;
    window.own = window.processID == ::getpid();
    const bool isKnown = before && before->processID == window.processID;
    window.executable = isKnown ? before->executable : ProcessFacts::executable(window.processID);
    if (window.applicationID.empty())
        window.applicationID =
            isKnown ? before->applicationID : ProcessFacts::applicationID(window.processID);
}

} // namespace

/// The compositor, and the last scene it told.
class IpcWindowList::Told {
public:
    explicit Told(std::unique_ptr<CompositorIpc> ipc) : compositor(std::move(ipc)) {
        compositor->follow([this](WindowScene next) { use(std::move(next)); });
    }

    /// What has been told so far; the first time, what is answered.
    const WindowScene& latest() {
        compositor->takeWhatCame();
        if (!std::exchange(isAsked_, true)) {
            if (auto first = compositor->scene())
                use(*std::move(first));
        }
        return scene_;
    }

    std::unique_ptr<CompositorIpc> compositor;
    WindowChange activeChange;
    WindowChange listChange;

private:
    void use(WindowScene next) {
        std::map<std::uint64_t, std::size_t> places;
        for (const auto& each : scene_.windows)
            places.emplace(each.window.id, places.size());
        for (auto& each : next.windows) {
            const auto* before = scene_.find(each.window.id);
            complete(each.window, before ? &before->window : nullptr);
        }
        // Windows keep the order in which they were first told.
        std::ranges::stable_sort(next.windows, {}, [&](const WindowScene::Window& each) {
            const auto place = places.find(each.window.id);
            return place == places.end() ? places.size() : place->second;
        });
        const bool isOther = next.active != scene_.active;
        const auto ofSameID = [](const WindowScene::Window& one, const WindowScene::Window& other) {
            return one.window.id == other.window.id;
        };
        const bool isOtherList = !std::ranges::equal(next.windows, scene_.windows, ofSameID);
        scene_ = std::move(next);
        if (isOtherList)
            listChange.tellSoon();
        if (isOther)
            activeChange.tellSoon();
    }

    bool isAsked_ = false;
    WindowScene scene_; ///< oldest window first
};

IpcWindowList::IpcWindowList(std::unique_ptr<CompositorIpc> compositor)
    : told_(std::make_unique<Told>(std::move(compositor))) {}

IpcWindowList::~IpcWindowList() = default;

Ability IpcWindowList::ability() const {
    return told_->compositor->ability();
}

std::vector<AppWindow> IpcWindowList::windows() const {
    std::vector<AppWindow> windows;
    for (const auto& each : told_->latest().windows)
        windows.push_back(each.window);
    return windows;
}

std::optional<AppWindow> IpcWindowList::active() const {
    const auto& scene = told_->latest();
    const auto* window = scene.active ? scene.find(*scene.active) : nullptr;
    return window ? std::optional(window->window) : std::nullopt;
}

bool IpcWindowList::stillRuns(const AppWindow& window) const {
    return ProcessFacts::stillRuns(window.processID, window.executable);
}

Subscription IpcWindowList::onActiveChanged(std::function<void()> changed) {
    return told_->activeChange.add(std::move(changed));
}

Subscription IpcWindowList::onListChanged(std::function<void()> changed) {
    return told_->listChange.add(std::move(changed));
}

void IpcWindowList::unhide(std::uint64_t window) {
    if (const auto* found = told_->latest().find(window))
        told_->compositor->unhide(*found);
}

void IpcWindowList::activate(std::uint64_t window) {
    told_->compositor->activate(window);
}

} // namespace tessarine
