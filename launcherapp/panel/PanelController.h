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

    /// Becomes the window's and the model's: it hears of what happens to the one, and hides the
    /// panel for the other.
    explicit PanelController(Services services);
    PanelController(const PanelController&) = delete;
    PanelController& operator=(const PanelController&) = delete;

    /// Starts the warm passes; the first comes as soon as the program has nothing else to do.
    void start();

    void show();
    void show(const std::string& query);
    void showClipboard();
    void hide();
    void toggle();
    /// Hides the clipboard's list if that is what is up, else shows it.
    void toggleClipboard();
    /// What the panel's own chord does: a toggle, noted in the log.
    void hotkeyFired();
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
    void painted();
    void windowMoved(const Rectangle& frame);
    void rememberDrag();
    void putWindow(const Rectangle& frame);
    double desiredHeight() const;
    double milliseconds(Seconds from) const;

    Services services_;
    std::optional<AppWindow> previousApp_;
    std::optional<Seconds> shownAt_;       ///< when the last show began
    bool isMeasured_ = true;               ///< the last show's time is noted
    std::optional<Seconds> countedPress_;  ///< the last press that says nothing of a later show
    std::optional<Seconds> lastVisibleAt_; ///< when the panel was last seen up
    std::optional<Rectangle> lastFrame_;   ///< as the program put it last
    std::optional<Point> draggedTo_;       ///< not stored yet
    bool placing_ = false;                 ///< the program itself moves the window
    Subscription modelChanges_;
    Subscription warmTimer_;
};

} // namespace tessarine
