#pragma once

#include "launcherapp/panel/PanelPlacement.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/PanelWindow.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WindowList.h"

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

class Diagnostics;
class Hotkey;
class Prefs;
class SearchModel;

/// Owns the life of the panel's window: brings it up within a frame, keeps it where it belongs,
/// takes it away without a trace, and keeps it warm while nobody looks. Main thread only.
class PanelController {
public:
    struct Services {
        MainQueue& queue;
        Diagnostics& diagnostics;
        Prefs& prefs;
        SearchModel& model;
        PanelWindow& window;
        const WindowList& windows;
        const Hotkey& hotkey;
    };

    explicit PanelController(Services services);
    PanelController(const PanelController&) = delete;
    PanelController& operator=(const PanelController&) = delete;

    /// Starts the warm passes.
    void start();

    void show();
    void show(const std::string& query);
    void showClipboard();
    void hide();
    void toggle();
    /// Puts the window into the height that its rows want; nothing happens while it is hidden.
    void relayout();
    /// Runs the first row with no list to be seen: for a command's own chord.
    void runTopRow();

    bool isVisible() const;

    /// The window that was in front when the panel came up, to paste into and go back to; nothing
    /// when there was none.
    const std::optional<AppWindow>& previousApp() const { return previousApp_; }

    /// "visible=… key=… height=… rows=…" of the window itself, after a show with a query.
    std::string selfTestShow();

    /// Height of a row as it is drawn now; set by the view when the text's size changes.
    double rowHeight = 0;
    /// Height of a clipping's preview below the list; 0 for none.
    double previewBelow = 0;

private:
    void showBody();
    void relayoutBody();
    void place();
    void warm();
    void windowMoved(const Rectangle& frame);
    double desiredHeight() const;

    Services services_;
    Subscription modelChanges_;
    Subscription warmTimer_;
    std::optional<AppWindow> previousApp_;
    std::optional<double> shownAt_;
    std::optional<double> lastVisibleAt_;
    bool placing_ = false;
};

} // namespace tessarine
