#include "launcherapp/panel/PanelController.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/operations/StageMarks.h"
#include "launcherapp/operations/Updater.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr Seconds warmInterval{20};
constexpr Seconds warmTolerance{5};
constexpr Seconds userIsAround{15};  ///< after a hide: no warm pass gets in the way
constexpr double slowWarmPass = 100; ///< milliseconds
constexpr double slowPress = 100;    ///< milliseconds
constexpr Seconds longestPress{2};   ///< an older press brought up something else
/// A drag moves the window with every frame; the file of settings need not be written as often.
constexpr Seconds dragPause{0.3};
/// Between looks for a newer version that the panel's comings and goings start.
constexpr Seconds updateInterval{600};
constexpr std::string_view stage = "panel.show";
constexpr std::string_view selfTestQuery = "settings";

std::string inWords(const Rectangle& frame) {
    return fmt::format("{:g},{:g} {:g}x{:g}", frame.x, frame.y, frame.width, frame.height);
}

std::string inWords(const std::vector<Screen>& screens) {
    std::vector<std::string> each;
    each.reserve(screens.size());
    for (const auto& screen : screens)
        each.push_back(screen.name + " " + inWords(screen.frame));
    return fmt::format("{}", fmt::join(each, "; "));
}

} // namespace

PanelController::PanelController(Services services) : services_(services) {
    services_.window.setEvents({.lostKeyboard = [this] { hide(); },
                                .keyboardRefused =
                                    [this] {
                                        services_.diagnostics.log(
                                            "panel: another program holds the keyboard, so the "
                                            "panel goes away");
                                    },
                                .keyboardCame = [this] { keyboardCame(); },
                                .moved = [this](Rectangle frame) { windowMoved(frame); },
                                .painted = [this] { painted(); },
                                .screensChanged = [this] { screensChanged(); }});
    services_.model.dismiss = [this] { hide(); };
    modelChanges_ = services_.model.onChange([this] { relayout(); });
}

void PanelController::start() {
    warmTimer_ = services_.queue.every(warmInterval, warmTolerance, [this] { warm(); });
    services_.queue.post([this] { warm(); });
}

bool PanelController::isVisible() const {
    return services_.window.isVisible();
}

void PanelController::show() {
    const StageMarks::Stage inside(services_.stages, stage);
    showBody();
}

void PanelController::show(const std::string& query) {
    show();
    services_.model.setQuery(query);
}

void PanelController::showClipboard() {
    show();
    services_.model.enterClipboardMode();
}

void PanelController::showListening() {
    services_.diagnostics.log("panel: there is no voice input to listen with");
}

void PanelController::toggle() {
    if (isVisible())
        hide();
    else
        show();
}

void PanelController::toggleClipboard() {
    if (isVisible() && services_.model.clipboardMode())
        hide();
    else
        showClipboard();
}

void PanelController::hotkeyFired() {
    services_.diagnostics.log(fmt::format("hotkey fired (panel visible before: {})", isVisible()));
    toggle();
}

void PanelController::showBody() {
    auto& window = services_.window;
    shownAt_ = services_.queue.uptime();
    isMeasured_ = false;
    // The panel itself, or another window of this program, is never where the user came from.
    if (auto front = services_.windows.active(); !front || !front->own)
        previousApp_ = std::move(front);
    services_.model.previousApp = previousApp_;
    // Mostly it is at rest already, as hiding and the warm passes see to it.
    if (!services_.model.isAtRest())
        services_.model.reset();
    services_.model.closeMenus(); // of a panel that is up already
    const auto screens = placeAtPointer();
    window.show();
    services_.diagnostics.log(fmt::format("panel show: visible={} key={} frame={} screen={}",
                                          window.isVisible(),
                                          window.hasKeyboard(),
                                          inWords(window.frame()),
                                          inWords(screens)));
    if (!window.isVisible())
        services_.diagnostics.log("panel: the desktop gave it no place on a screen, so it is not "
                                  "to be seen");
    services_.updater.checkIfDue(updateInterval);
}

/// The time of a show ends here, so that drawing is part of it.
void PanelController::painted() {
    if (std::exchange(isMeasured_, true))
        return;
    const double inside = milliseconds(*shownAt_);
    services_.diagnostics.recordShow(inside);
    const auto pressed = services_.hotkey.lastPressEventTime();
    if (!pressed || pressed == countedPress_)
        return;
    countedPress_ = pressed;
    const double sincePress = milliseconds(*pressed);
    if (services_.queue.uptime() - *pressed > longestPress)
        return;
    services_.diagnostics.recordPress(sincePress);
    services_.diagnostics.log(
        fmt::format("hotkey {}: {:.0f} ms from keypress to panel ({:.0f} ms of it inside show)",
                    sincePress >= slowPress ? "slow" : "press",
                    sincePress,
                    inside));
}

void PanelController::hide() {
    auto& model = services_.model;
    if (!isVisible()) {
        // A show that the desktop gave no place to may have had a query.
        if (!model.isAtRest())
            model.reset();
        return;
    }
    rememberDrag();
    model.closeMenus();
    services_.window.hide();
    // Here rather than at the next show: now nobody waits for it.
    model.reset();
    isMeasured_ = true;
    countedPress_ = services_.hotkey.lastPressEventTime(); // it may be the one that hides
    lastVisibleAt_ = services_.queue.uptime();
    services_.diagnostics.log("panel hide");
    services_.updater.checkIfDue(updateInterval);
}

void PanelController::runTopRow() {
    services_.model.runDigit(1);
    if (isVisible())
        hide();
    else if (!services_.model.isAtRest())
        services_.model.reset();
}

void PanelController::togglePreview() {
    if (const auto* row = services_.model.selectedRow(); row && preview)
        preview(*row);
}

void PanelController::showActions() {
    auto& model = services_.model;
    if (model.actions().empty())
        model.openActions();
    else
        model.closeActions();
}

void PanelController::showActions(Point at, std::optional<std::size_t> row) {
    auto& model = services_.model;
    if (!row)
        return model.openPanelActions(at);
    model.select(*row);
    model.openActions(at);
}

PanelPlacement::Contents PanelController::contents() const {
    const auto& model = services_.model;
    return {.rows = model.rows().size(), .mostRows = model.rowsAtATime(), .heights = heights_};
}

void PanelController::setHeights(const PanelPlacement::Heights& heights) {
    heights_ = heights;
    relayout();
}

std::vector<Screen> PanelController::placeAtPointer() {
    pointer_ = services_.window.pointer();
    return place();
}

/// Gives the screens that it chose from.
std::vector<Screen> PanelController::place() {
    rememberDrag();
    auto screens = services_.window.screens();
    screens_ = screens;
    const auto screen = PanelPlacement::screen(screens, pointer_);
    if (!screen)
        return screens;
    const auto& prefs = services_.prefs;
    const auto shown = contents();
    const bool isRemembered = prefs.position() == PanelPosition::remembered;
    auto frame = PanelPlacement::frame(screen->workArea,
                                       prefs.position(),
                                       PanelPlacement::width(prefs.width()),
                                       isRemembered ? PanelPlacement::heightToKeepFree(shown)
                                                    : PanelPlacement::desiredHeight(shown),
                                       prefs.rememberedOrigin());
    frame.height = PanelPlacement::fittingHeight(screen->workArea, frame.y, shown);
    putWindow(frame);
    return screens;
}

/// A panel that can still be seen stays where it is: a bar that hides itself changes the screens
/// too.
void PanelController::screensChanged() {
    if (!isVisible())
        return;
    const auto screens = services_.window.screens();
    moveWithScreen(screens);
    auto field = services_.window.frame();
    field.height = PanelPlacement::emptyHeight;
    const bool isSeen = std::ranges::any_of(screens, [&](const Screen& screen) {
        const auto& area = screen.workArea;
        return field.x >= area.x && field.y >= area.y && field.right() <= area.right() &&
               field.bottom() <= area.bottom();
    });
    if (isSeen)
        relayout();
    else
        placeAtPointer();
}

/// A monitor that comes on the left moves the others, and the panel is to stay on its own.
void PanelController::moveWithScreen(const std::vector<Screen>& screens) {
    const auto before = std::exchange(screens_, screens);
    auto frame = services_.window.frame();
    const Point top{.x = frame.x + frame.width / 2, .y = frame.y};
    const auto own = std::ranges::find_if(
        before, [&](const Screen& screen) { return screen.frame.contains(top); });
    if (own == before.end())
        return;
    const auto now = std::ranges::find(screens, own->name, &Screen::name);
    if (now == screens.end())
        return;
    const auto right = now->frame.x - own->frame.x;
    const auto down = now->frame.y - own->frame.y;
    if (right == 0 && down == 0)
        return;
    rememberDrag(); // in terms of the screens as they were
    frame.x += right;
    frame.y += down;
    putWindow(frame);
}

void PanelController::keyboardCame() {
    services_.diagnostics.log(
        fmt::format("panel: key=true {:.0f} ms after the show, as the keyboard was not to be had "
                    "before",
                    milliseconds(shownAt_.value_or(services_.queue.uptime()))));
}

void PanelController::putWindow(const Rectangle& frame) {
    placing_ = true;
    lastFrame_ = frame;
    services_.window.setFrame(frame);
    placing_ = false;
}

void PanelController::relayout() {
    const StageMarks::Stage inside(services_.stages, stage);
    relayoutBody();
}

/// The list grows downward, so that the field keeps its place.
void PanelController::relayoutBody() {
    if (!isVisible())
        return;
    auto frame = services_.window.frame();
    const auto before = frame.height;
    const auto shown = contents();
    frame.height = PanelPlacement::desiredHeight(shown);
    const Point top{.x = frame.x + frame.width / 2, .y = frame.y};
    if (const auto screen = PanelPlacement::screen(services_.window.screens(), top))
        frame.height = PanelPlacement::fittingHeight(screen->workArea, frame.y, shown);
    if (frame.height != before)
        putWindow(frame);
}

void PanelController::windowMoved(const Rectangle& frame) {
    // A display may tell of the program's own placing only later.
    const bool isWherePut = lastFrame_ && lastFrame_->x == frame.x && lastFrame_->y == frame.y;
    if (placing_ || isWherePut || !isVisible())
        return;
    lastFrame_.reset();
    if (!std::exchange(draggedTo_, Point{.x = frame.x, .y = frame.y}))
        services_.queue.postAfter(dragPause, [this] { rememberDrag(); });
}

/// Dragging the panel is how its place is chosen.
void PanelController::rememberDrag() {
    const auto origin = std::exchange(draggedTo_, std::nullopt);
    if (!origin)
        return;
    services_.prefs.rememberedOrigin.set({origin->x, origin->y});
    if (services_.prefs.position() != PanelPosition::remembered)
        services_.prefs.position.set(PanelPosition::remembered);
}

void PanelController::warm() {
    auto& queue = services_.queue;
    const auto started = queue.uptime();
    if (isVisible() || (lastVisibleAt_ && started - *lastVisibleAt_ < userIsAround))
        return;
    if (!services_.model.isAtRest())
        services_.model.reset();
    const double rows = milliseconds(started);
    // In the size of the next show, on the screen of the last: some desktops tell where the pointer
    // is only to a surface that comes up, and nobody has asked for one.
    place();
    services_.window.drawHidden();
    const double total = milliseconds(started);
    if (total >= slowWarmPass)
        services_.diagnostics.log(
            fmt::format("panel warm: a hidden pass took {:.0f} ms (rows {:.0f} ms, draw {:.0f} "
                        "ms), absorbed before the next press",
                        total,
                        rows,
                        total - rows));
}

double PanelController::milliseconds(Seconds from) const {
    return std::chrono::duration<double, std::milli>(services_.queue.uptime() - from).count();
}

std::string PanelController::selfTestShow() {
    services_.model.reset();
    show(std::string(selfTestQuery));
    const auto& window = services_.window;
    const auto height = window.displayedHeight();
    return fmt::format("visible={} key={} height={:.0f} rows={}",
                       height.has_value(),
                       window.hasKeyboard(),
                       height.value_or(0),
                       services_.model.rows().size());
}

} // namespace tessarine
