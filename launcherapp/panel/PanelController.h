#pragma once

#include "launcherapp/panel/PanelPlacement.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/PanelWindow.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WindowList.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class Diagnostics;
class Hotkey;
class Prefs;
struct ResultRow;
class SearchModel;
class StageMarks;
class Updater;

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
        StageMarks& stages;
        Updater& updater;
    };

    /// Takes over the window's events and the model's `dismiss`.
    explicit PanelController(Services services);
    PanelController(const PanelController&) = delete;
    PanelController& operator=(const PanelController&) = delete;

    /// Starts the warm passes; the first comes as soon as the program has nothing else to do.
    void start();

    void show();
    void show(const std::string& query);
    void showClipboard();
    /// Shows nothing, as there is no voice input yet: a line of the log says so.
    void showListening();
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
    /// Hands the selected row to `preview`. Nothing happens while that is empty, or without a row.
    void togglePreview();
    /// Opens the menu of the selected row, or closes what is open.
    void showActions();
    /// Opens the menu at a place of the panel: a row's, or the panel's own where there is no row.
    void showActions(Point at, std::optional<std::size_t> row);

    bool isVisible() const;

    /// The window that was in front when the panel came up, to paste into and go back to; nothing
    /// when there was none.
    const std::optional<AppWindow>& previousApp() const { return previousApp_; }

    /// "visible=… key=… height=… rows=…" as the display has them, after a show with a query.
    std::string selfTestShow();

    /// Takes over the heights of the view's parts, at once when the panel is up.
    void setHeights(const PanelPlacement::Heights& heights);

    /// Shows a row's contents in a window of its own, or takes that away. Empty until there is
    /// something that does.
    std::function<void(const ResultRow& row)> preview;

private:
    void showBody();
    void relayoutBody();
    std::vector<Screen> placeAtPointer();
    std::vector<Screen> place();
    void warm();
    void painted();
    void screensChanged();
    void moveWithScreen(const std::vector<Screen>& screens);
    void keyboardCame();
    void windowMoved(const Rectangle& frame);
    void rememberDrag();
    void putWindow(const Rectangle& frame);
    PanelPlacement::Contents contents() const;
    double milliseconds(Seconds from) const;

    Services services_;
    PanelPlacement::Heights heights_;
    std::optional<AppWindow> previousApp_;
    std::optional<Seconds> shownAt_;       ///< when the last show began
    bool isMeasured_ = true;               ///< the last show's time is noted
    std::optional<Seconds> countedPress_;  ///< the last press that says nothing of a later show
    std::optional<Seconds> lastVisibleAt_; ///< when the panel was last seen up
    std::optional<Point> pointer_;         ///< where it was when it was last asked for
    std::optional<Rectangle> lastFrame_;   ///< as the program put it last
    std::vector<Screen> screens_;          ///< that `lastFrame_`, or a drag, is in terms of
    std::optional<Point> draggedTo_;       ///< not stored yet
    bool placing_ = false;                 ///< the program itself moves the window
    Subscription modelChanges_;
    Subscription warmTimer_;
};

} // namespace tessarine
