#include "launcherapp/panel/view/LauncherPanel.h"

#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/KeyTranslation.h"
#include "launcherapp/panel/view/QueryField.h"
#include "launcherapp/panel/view/ShortcutSheet.h"
#include "launcherapp/panel/view/rows/RowList.h"
#include "launcherapp/platform/DesktopAppearance.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>

namespace tessarine {

namespace {

void call(const std::function<void()>& hook) {
    if (hook)
        hook();
}

} // namespace

LauncherPanel::LauncherPanel(PanelViewServices services)
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), services_(services),
      root_(new PanelRoot(this, services)), usualCursorFlash_(QApplication::cursorFlashTime()),
      modelChanges_(services.model.onChange([this] { root_->refresh(); })),
      appearanceChanges_(services.appearance.onChange([this] { restyle(); })),
      desktopChanges_(services.desktop.onChange([this] { restyle(); })),
      prefsChanges_(
          services.prefs.onChange([this](std::string_view key) { preferenceChanged(key); })) {
    const auto name = ProductInfo::name;
    setWindowTitle(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_TranslucentBackground);
    setContentsMargins(PanelShadow::margins());
    setFocusProxy(root_);
    setHooks();
    auto& field = root_->field();
    field.perform = [this](FieldCommand command, CaretPlace caret) {
        return perform(command, caret);
    };
    field.chordPressed = [this](const PanelChord& chord) { return chordPressed(chord); };
    field.typed = [this](const std::string& text) {
        root_->hideSheet();
        services_.model.setQuery(text);
    };
    field.commandKeyMoved = [this](CommandKey key) { root_->setCommandKey(key); };
    root_->heightChanged = [this] { call(onHeights); };
    root_->list().menuAsked = [this](const QPoint& place) {
        askForMenu(root_->list().mapTo(root_, place));
    };
    root_->sheet().offers = [this](PanelKeyAction action) { return offers(action); };
    restyle();
}

// While there is still a panel for the parts to speak to: a field that goes loses the keyboard.
LauncherPanel::~LauncherPanel() {
    delete root_;
}

void LauncherPanel::setHooks() {
    auto& model = services_.model;
    onEscape = [this, &model] {
        if (root_->isSheetShown())
            root_->hideSheet();
        else
            model.escape();
    };
    onCommandReturn = [&model] { model.runSecondary(); };
    onDigit = [&model](int digit) { model.runDigit(digit); };
    onActions = [&model] {
        if (model.actions().empty())
            model.openActions();
        else
            model.closeActions();
    };
    onMenu = [&model](Point at, std::optional<std::size_t> row) {
        if (!row)
            return model.openPanelActions(at);
        model.select(*row);
        model.openActions(at);
    };
    onFavorite = [&model] { model.toggleFavorite(); };
    const auto copy = [&model] {
        if (model.copySelected())
            call(model.dismiss);
    };
    onCopy = copy;
    onCopyToTop = copy;
    onCopyField = copy;
    onSettings = [&model] { call(model.verbs.openSettings); };
    onShortcuts = [this] {
        if (root_->isSheetShown())
            root_->hideSheet();
        else
            root_->showSheet();
    };
}

bool LauncherPanel::perform(FieldCommand command, CaretPlace caret) {
    if (command == FieldCommand::escape) {
        call(onEscape);
        return true;
    }
    // The sheet is read, not used: the next key takes it away and does what it always does.
    root_->hideSheet();
    return services_.model.perform(command, caret);
}

/// `place` is the root's. Below the last row it is the panel's own menu that is meant.
void LauncherPanel::askForMenu(const QPoint& place) {
    if (!onMenu)
        return;
    const auto& list = root_->list();
    const int row = list.isHidden() ? -1 : list.itemAt(list.mapFrom(root_, place));
    onMenu({.x = static_cast<double>(place.x()), .y = static_cast<double>(place.y())},
           row < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(row)));
}

/// A chord that nothing stands behind is the field's: Shift with a blank types one.
bool LauncherPanel::offers(PanelKeyAction action) const {
    const bool isPreview =
        action == PanelKeyAction::preview || action == PanelKeyAction::previewShift;
    return !isPreview || onPreview;
}

bool LauncherPanel::chordPressed(const PanelChord& chord) {
    if (!offers(chord.action))
        return false;
    // As any other key, a chord takes the sheet away and does what it always does.
    if (chord.action != PanelKeyAction::shortcuts)
        root_->hideSheet();
    actOn(chord);
    return true;
}

void LauncherPanel::actOn(const PanelChord& chord) {
    using enum PanelKeyAction;
    switch (chord.action) {
    case preview:
    case previewShift:
        return call(onPreview);
    case secondary:
        return call(onCommandReturn);
    case actions:
        return call(onActions);
    case favorite:
        return call(onFavorite);
    case copy:
        return call(services_.model.clipboardMode() ? onCopyToTop : onCopy);
    case copyField:
        return call(onCopyField);
    case settings:
        return call(onSettings);
    case shortcuts:
        return call(onShortcuts);
    case digit:
        if (onDigit)
            onDigit(KeyTranslation::digit(chord));
        return;
    }
}

void LauncherPanel::setBlending(PanelRoot::Blending blending) {
    blending_ = blending;
    const bool isMixed = blending == PanelRoot::Blending::mixed;
    setContentsMargins(isMixed ? PanelShadow::margins() : QMargins());
    root_->setBlending(blending);
    root_->setGeometry(contentsRect());
    update();
}

void LauncherPanel::restyle() {
    const bool isStill = services_.desktop.motion() == Motion::reduced;
    // The caret is all that ever moves by itself.
    QApplication::setCursorFlashTime(isStill ? 0 : usualCursorFlash_);
    root_->restyle();
    update();
    call(onHeights);
}

void LauncherPanel::warm() {
    root_->images().warm({.side = PanelStyle::iconSide, .scale = devicePixelRatioF()});
}

void LauncherPanel::preferenceChanged(std::string_view key) {
    const auto& prefs = services_.prefs;
    const auto shown = std::to_array({prefs.textScale.key(),
                                      prefs.resultRows.key(),
                                      prefs.clipRows.key(),
                                      prefs.clipPreviewPlacement.key(),
                                      prefs.autoHideFooter.key()});
    if (std::ranges::count(shown, key) > 0)
        restyle();
}

void LauncherPanel::paintEvent(QPaintEvent* event) {
    // It shows beside the panel and in what the corners leave free.
    constexpr int radius = static_cast<int>(PanelStyle::cornerRadius);
    const auto panel = contentsRect();
    const auto& painted = event->rect();
    if (blending_ == PanelRoot::Blending::opaque ||
        panel.adjusted(0, radius, 0, -radius).contains(painted) ||
        panel.adjusted(radius, 0, -radius, 0).contains(painted))
        return;
    QPainter painter(this);
    shadow_.draw(painter, panel, PanelStyle::cornerRadius, toQt(root_->style().palette.shadow));
}

void LauncherPanel::resizeEvent(QResizeEvent* event) {
    root_->setGeometry(contentsRect());
    QWidget::resizeEvent(event);
}

void LauncherPanel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange)
        restyle();
    QWidget::changeEvent(event);
}

/// Nothing of one show is left for the next: the release of a key may go to another window.
void LauncherPanel::hideEvent(QHideEvent* event) {
    root_->hideSheet();
    QWidget::hideEvent(event);
}

void LauncherPanel::mousePressEvent(QMouseEvent* event) {
    // The shadow looks like the desktop, so a press on it is one beside the panel.
    if (!contentsRect().contains(event->position().toPoint())) {
        call(onResignKey);
        return;
    }
    if (event->button() == Qt::RightButton)
        askForMenu(root_->mapFrom(this, event->position().toPoint()));
    else
        QWidget::mousePressEvent(event);
}

} // namespace tessarine
