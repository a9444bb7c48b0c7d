#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <memory>
#include <optional>

namespace tessarine {

class SearchModel;

/// Keeps the panel's list as new as what its sources have published: what came after the list was
/// made appears by itself. Main thread only.
class FreshRows {
public:
    /// A walk of many folders publishes again and again; whoever reads the list meanwhile is not
    /// to see it change under the eyes more often, nor the keys to wait behind it.
    static constexpr Seconds shortestPause{1};
    /// Pictures of one list come one by one, and are waited for by whoever looks at it.
    static constexpr Seconds picturePause{0.05};

    FreshRows(MainQueue& queue, SearchModel& model, std::function<bool()> isVisible);
    FreshRows(const FreshRows&) = delete;
    FreshRows& operator=(const FreshRows&) = delete;

    /// To be called when a source has published. While the panel is hidden the list is made anew
    /// at once, so that the next show finds it done. While it is visible its rows are, at most
    /// once in `shortestPause`, and the row that the user went to stays selected.
    void published();

    /// To be called when applications came, went or came forward. While the panel is visible
    /// nothing happens: it may itself be what changes the windows, and its hiding makes the list
    /// anew.
    void windowsChanged();

    /// To be called when a picture or a file has been read that a row or a preview lacked.
    void pictureArrived();

private:
    void refreshAfter(Seconds pause);
    void refreshVisible();

    MainQueue& queue_;
    SearchModel& model_;
    std::function<bool()> isVisible_;
    std::optional<Seconds> lastRefresh_;                   ///< uptime
    bool isDue_ = false;                                   ///< a refresh waits for its time
    std::shared_ptr<int> alive_ = std::make_shared<int>(); ///< for what comes back later
};

} // namespace tessarine
