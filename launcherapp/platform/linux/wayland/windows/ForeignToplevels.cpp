#include "launcherapp/platform/linux/wayland/windows/ForeignToplevels.h"

#include <wayland-client.h>
#include <wlr-foreign-toplevel-management-unstable-v1.h>

#include <QSocketNotifier>
#include <algorithm>
#include <span>
#include <utility>

namespace tessarine {

namespace {

constexpr std::uint32_t managerVersion = 3;

} // namespace

/// One window. What is told of it counts from the compositor's "done".
struct ForeignToplevels::Toplevel {
    struct State {
        std::string applicationID;
        bool isActive = false;
        bool isMinimised = false;
    };

    Toplevel(ForeignToplevels& inOwner, zwlr_foreign_toplevel_handle_v1* inHandle, std::uint64_t id)
        : owner(inOwner), handle(inHandle), number(id) {}

    ~Toplevel() { zwlr_foreign_toplevel_handle_v1_destroy(handle); }

    Toplevel(const Toplevel&) = delete;
    Toplevel& operator=(const Toplevel&) = delete;

    AppWindow window() const {
        // What a program of Wayland calls itself is matched as the class of X11 is.
        return {.id = number,
                .applicationID = told.applicationID,
                .className = told.applicationID,
                .hidden = told.isMinimised,
                .own = told.applicationID == owner.ownApplicationID_};
    }

    ForeignToplevels& owner;
    zwlr_foreign_toplevel_handle_v1* handle;
    std::uint64_t number;
    State next;
    State told;
    bool isKnown = false; ///< it has been told whole once
};

struct ForeignToplevels::Listener {
    using Handle = zwlr_foreign_toplevel_handle_v1;

    static Toplevel& toplevel(void* data) { return *static_cast<Toplevel*>(data); }

    static void title(void*, Handle*, const char*) {}

    static void appID(void* data, Handle*, const char* id) {
        toplevel(data).next.applicationID = id;
    }

    static void outputEnter(void*, Handle*, wl_output*) {}

    static void outputLeave(void*, Handle*, wl_output*) {}

    static void state(void* data, Handle*, wl_array* states) {
        const std::span all(static_cast<const std::uint32_t*>(states->data),
                            states->size / sizeof(std::uint32_t));
        const auto has = [&](std::uint32_t state) { return std::ranges::count(all, state) > 0; };
        auto& next = toplevel(data).next;
        next.isActive = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
        next.isMinimised = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED);
    }

    static void done(void* data, Handle*) {
        auto& changed = toplevel(data);
        changed.told = changed.next;
        if (!std::exchange(changed.isKnown, true))
            changed.owner.listChange.tellSoon();
    }

    static void closed(void* data, Handle*) {
        auto& gone = toplevel(data);
        gone.owner.listChange.tellSoon();
        std::erase_if(gone.owner.toplevels_, [&](const auto& each) { return each.get() == &gone; });
    }

    static void parent(void*, Handle*, Handle*) {}

    static void added(void* data, zwlr_foreign_toplevel_manager_v1*, Handle* handle) {
        auto& owner = *static_cast<ForeignToplevels*>(data);
        auto& made =
            owner.toplevels_.emplace_back(std::make_unique<Toplevel>(owner, handle, ++owner.last_));
        zwlr_foreign_toplevel_handle_v1_add_listener(handle, &ofWindow, made.get());
    }

    /// The compositor has given the object up already, and no request would reach it.
    static void finished(void* data, zwlr_foreign_toplevel_manager_v1* manager) {
        static_cast<ForeignToplevels*>(data)->manager_ = nullptr;
        zwlr_foreign_toplevel_manager_v1_destroy(manager);
    }

    static constexpr zwlr_foreign_toplevel_handle_v1_listener ofWindow{.title = title,
                                                                       .app_id = appID,
                                                                       .output_enter = outputEnter,
                                                                       .output_leave = outputLeave,
                                                                       .state = state,
                                                                       .done = done,
                                                                       .closed = closed,
                                                                       .parent = parent};
    static constexpr zwlr_foreign_toplevel_manager_v1_listener ofManager{.toplevel = added,
                                                                         .finished = finished};
};

bool ForeignToplevels::areTold(const WaylandConnection& connection) {
    return connection.answers() &&
           connection.registry().find(zwlr_foreign_toplevel_manager_v1_interface.name);
}

ForeignToplevels::ForeignToplevels(std::unique_ptr<WaylandConnection> connection,
                                   std::string ownApplicationID)
    : connection_(std::move(connection)), ownApplicationID_(std::move(ownApplicationID)) {
    if (!areTold(*connection_)) {
        isLost_ = true;
        return;
    }
    const auto& registry = connection_->registry();
    seat_ = registry.bindFirst<wl_seat>(wl_seat_interface, 1);
    manager_ = registry.bindFirst<zwlr_foreign_toplevel_manager_v1>(
        zwlr_foreign_toplevel_manager_v1_interface, managerVersion);
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &Listener::ofManager, this);
    connection_->roundTrip();
    notifier_ = std::make_unique<QSocketNotifier>(connection_->descriptor(), QSocketNotifier::Read);
    QObject::connect(
        notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
    noteActive();
}

ForeignToplevels::~ForeignToplevels() {
    notifier_.reset();
    toplevels_.clear();
    if (manager_)
        zwlr_foreign_toplevel_manager_v1_destroy(manager_);
    if (seat_)
        wl_seat_destroy(seat_);
}

/// Takes what the compositor has told.
void ForeignToplevels::read() {
    if (isLost_)
        return;
    if (!connection_->dispatchWhatCame()) {
        isLost_ = true;
        notifier_->setEnabled(false); // a broken connection would wake the loop for ever
    }
    // What nobody keeps up is told no longer.
    if ((isLost_ || !manager_) && !toplevels_.empty()) {
        toplevels_.clear();
        listChange.tellSoon();
    }
    noteActive();
}

void ForeignToplevels::noteActive() {
    const auto found =
        std::ranges::find_if(toplevels_, [](const auto& each) { return each->told.isActive; });
    auto now = found == toplevels_.end() ? active_ : std::optional((*found)->number);
    if (now) {
        const auto* window = find(*now);
        if (!window || window->told.isMinimised)
            now.reset();
    }
    if (std::exchange(active_, now) != now)
        activeChange.tellSoon();
}

Ability ForeignToplevels::ability() {
    read();
    if (isLost_)
        return Ability::missing("the connection to the Wayland compositor was lost");
    if (!manager_)
        return Ability::missing("the Wayland compositor tells its windows no more");
    return {};
}

std::vector<AppWindow> ForeignToplevels::windows() {
    read();
    std::vector<AppWindow> windows;
    for (const auto& each : toplevels_) {
        if (each->isKnown)
            windows.push_back(each->window());
    }
    return windows;
}

std::optional<AppWindow> ForeignToplevels::active() {
    read();
    const auto* window = active_ ? find(*active_) : nullptr;
    return window ? std::optional(window->window()) : std::nullopt;
}

ForeignToplevels::Toplevel* ForeignToplevels::find(std::uint64_t window) {
    const auto found =
        std::ranges::find(toplevels_, window, [](const auto& each) { return each->number; });
    return found == toplevels_.end() ? nullptr : found->get();
}

void ForeignToplevels::unhide(std::uint64_t window) {
    read();
    if (const auto* found = find(window))
        zwlr_foreign_toplevel_handle_v1_unset_minimized(found->handle);
    connection_->flush();
}

void ForeignToplevels::activate(std::uint64_t window) {
    read();
    if (const auto* found = find(window); found && seat_)
        zwlr_foreign_toplevel_handle_v1_activate(found->handle, seat_);
    connection_->flush();
}

void ForeignToplevels::close(std::uint64_t window) {
    read();
    if (const auto* found = find(window))
        zwlr_foreign_toplevel_handle_v1_close(found->handle);
    connection_->flush();
}

} // namespace tessarine
