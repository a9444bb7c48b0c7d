#include "launcherapp/shell/FreshRows.h"

#include "launcherapp/query/SearchModel.h"

#include <algorithm>
#include <string>
#include <utility>

namespace tessarine {

FreshRows::FreshRows(MainQueue& queue, SearchModel& model, std::function<bool()> isVisible)
    : queue_(queue), model_(model), isVisible_(std::move(isVisible)) {}

void FreshRows::published() {
    if (!isVisible_()) {
        model_.reset();
        return;
    }
    refreshAfter(shortestPause);
}

void FreshRows::windowsChanged() {
    if (!isVisible_())
        model_.reset();
}

void FreshRows::pictureArrived() {
    if (isVisible_())
        refreshAfter(picturePause);
}

/// So long after the refresh before.
void FreshRows::refreshAfter(Seconds pause) {
    if (isDue_)
        return;
    const auto now = queue_.uptime();
    const auto next = lastRefresh_ ? *lastRefresh_ + pause : now;
    if (next <= now) {
        refreshVisible();
        return;
    }
    isDue_ = true;
    queue_.postAfter(next - now, [this, alive = std::weak_ptr(alive_)] {
        if (alive.expired())
            return;
        isDue_ = false;
        // What hides the panel resets the list, which is then as new as it can be.
        if (isVisible_())
            refreshVisible();
    });
}

void FreshRows::refreshVisible() {
    lastRefresh_ = queue_.uptime();
    // A menu is about the row that it was opened on; the next key makes the list anew anyway.
    if (!model_.actions().empty() || model_.filterMenuOpen())
        return;
    // The best row is the one that Return is meant for, until the user goes to another.
    const bool isUsersOwn = model_.selection() > 0;
    const auto selected = isUsersOwn ? model_.selectedRow()->id : std::string();
    model_.recompute();
    if (!isUsersOwn)
        return;
    const auto found = std::ranges::find(model_.rows(), selected, &ResultRow::id);
    if (found != model_.rows().end())
        model_.select(static_cast<std::size_t>(found - model_.rows().begin()));
}

} // namespace tessarine
