#include "launcherapp/panel/PanelController.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/operations/Diagnostics.h"
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
                                .moved = [this](Rectangle frame) { windowMoved(frame); },
                                .painted = [this] { painted(); },
                                .screensChanged =
                                    [this] {
                                        if (isVisible())
                                            place();
                                    }});
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
    previousApp_ = services_.windows.active();
    // Mostly it is at rest already, as hiding and the warm passes see to it.
    if (!services_.model.isAtRest())
        services_.model.reset();
    place();
    window.show();
    services_.diagnostics.log(fmt::format("panel show: visible={} key={} frame={} screen={}",
                                          window.isVisible(),
                                          window.hasKeyboard(),
                                          inWords(window.frame()),
                                          inWords(window.screens())));
}

/// The work of drawing is over, so that it counts.
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
    if (!isVisible())
        return;
    rememberDrag();
    if (!model.actions().empty())
        model.closeActions();
    services_.window.hide();
    // Here rather than at the next show: now nobody waits for it.
    model.reset();
    isMeasured_ = true;
    countedPress_ = services_.hotkey.lastPressEventTime(); // it may be the one that hides
    lastVisibleAt_ = services_.queue.uptime();
    services_.diagnostics.log("panel hide");
}

void PanelController::runTopRow() {
    services_.model.runDigit(1);
    if (isVisible())
        hide();
    else if (!services_.model.isAtRest())
        services_.model.reset();
}

double PanelController::desiredHeight() const {
    const auto& model = services_.model;
    const auto& prefs = services_.prefs;
    auto mostRows = prefs.resultRows();
    if (model.clipboardMode() && prefs.clipRows() > 0)
        mostRows = prefs.clipRows();
    return PanelPlacement::desiredHeight(
        {.rows = model.rows().size(),
         .mostRows = static_cast<std::size_t>(std::max<std::int64_t>(mostRows, 0)),
         .rowHeight = rowHeight,
         .previewBelow = previewBelow});
}

void PanelController::place() {
    rememberDrag();
    const auto screen =
        PanelPlacement::screen(services_.window.screens(), services_.window.pointer());
    if (!screen)
        return;
    const auto& prefs = services_.prefs;
    auto frame = PanelPlacement::frame(screen->workArea,
                                       prefs.position(),
                                       PanelPlacement::width(prefs.width()),
                                       desiredHeight(),
                                       prefs.rememberedOrigin());
    frame.height = PanelPlacement::fittingHeight(screen->workArea, frame.y, frame.height);
    putWindow(frame);
}

void PanelController::putWindow(const Rectangle& frame) {
    placing_ = true;
    lastFrame_ = frame;
    services_.window.setFrame(frame);
    placing_ = false;
}

void PanelController::relayout() {
    relayoutBody();
}

/// The list grows downward, so that the field keeps its place.
void PanelController::relayoutBody() {
    if (!isVisible())
        return;
    auto frame = services_.window.frame();
    const auto before = frame.height;
    frame.height = desiredHeight();
    const Point top{.x = frame.x + frame.width / 2, .y = frame.y};
    if (const auto screen = PanelPlacement::screen(services_.window.screens(), top))
        frame.height = PanelPlacement::fittingHeight(screen->workArea, frame.y, frame.height);
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
    return fmt::format("visible={} key={} height={:.0f} rows={}",
                       window.isVisible(),
                       window.hasKeyboard(),
                       window.frame().height,
                       services_.model.rows().size());
}

} // namespace tessarine
