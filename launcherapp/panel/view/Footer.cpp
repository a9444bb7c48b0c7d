#include "launcherapp/panel/view/Footer.h"

#include "launcherapp/panel/view/KeyTranslation.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/KeyCaps.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <string_view>

namespace tessarine {

namespace {

constexpr int hintGap = 18;
constexpr int keyGap = 7;
constexpr int leastPlaceWidth = 60;

/// Labels are words within a sentence; alone, they begin one.
QString capitalised(std::string_view label) {
    auto text = Drawing::harmless(label);
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

} // namespace

Footer::Footer(QWidget* parent, SearchModel& model, const Prefs& prefs, const PanelStyle& style)
    : QWidget(parent), model_(model), prefs_(prefs), style_(style) {
    setAccessibleName(QStringLiteral("Keys"));
}

Footer::FooterState Footer::state() const {
    if (held_)
        return *held_;
    const bool isAsked = isHovered_ || commandKey_ == CommandKey::down;
    return isAsked ? FooterState::hints : FooterState::collapsed;
}

std::vector<Footer::Hint> Footer::hints() const {
    if (state() == FooterState::collapsed)
        return {};
    const bool isMenuOpen = !model_.actions().empty() || model_.filterMenuOpen();
    return isMenuOpen ? menuHints() : rowHints();
}

/// An open menu has the keys, so what they would do to the row is not to be had.
std::vector<Footer::Hint> Footer::menuHints() const {
    return {{QStringLiteral("Choose"), {QStringLiteral("Enter")}},
            {QStringLiteral("Close"), {QStringLiteral("Esc")}}};
}

std::vector<Footer::Hint> Footer::rowHints() const {
    const auto* row = model_.selectedRow();
    std::vector<Hint> hints;
    if (row && !row->primaryLabel.empty())
        hints.push_back({capitalised(row->primaryLabel), {QStringLiteral("Enter")}});
    if (row && row->secondary && !row->secondaryLabel.empty())
        hints.push_back({capitalised(row->secondaryLabel),
                         KeyTranslation::keyNames(PanelKeyAction::secondary)});
    if (row && row->id.starts_with("clip:") && model_.families.removeClipping)
        hints.push_back(
            {QStringLiteral("Delete"), {QStringLiteral("Ctrl"), QStringLiteral("Backspace")}});
    if (row && model_.personPath() && row->id.starts_with("field:"))
        hints.push_back(
            {QStringLiteral("Copy field"), KeyTranslation::keyNames(PanelKeyAction::copyField)});
    if (model_.clipboardMode() && model_.canFilter())
        hints.push_back({QStringLiteral("Filter"), {QStringLiteral("Tab")}});
    hints.push_back({QStringLiteral("Actions"), KeyTranslation::keyNames(PanelKeyAction::actions)});
    hints.push_back(
        {QStringLiteral("Shortcuts"), KeyTranslation::keyNames(PanelKeyAction::shortcuts)});
    return hints;
}

void Footer::refresh() {
    QStringList spoken;
    for (const auto& hint : hints())
        spoken << hint.keys.join(QLatin1Char('+')) + QStringLiteral(": ") + hint.label;
    setAccessibleDescription(spoken.join(QStringLiteral(", ")));
    update();
}

void Footer::setCommandKey(CommandKey key) {
    commandKey_ = key;
    refresh();
}

void Footer::hold(std::optional<FooterState> state) {
    held_ = state;
    refresh();
}

void Footer::enterEvent(QEnterEvent*) {
    isHovered_ = true;
    refresh();
}

void Footer::leaveEvent(QEvent*) {
    isHovered_ = false;
    refresh();
}

/// Where one is, for the end that hints leave free.
QString Footer::place() const {
    if (model_.clipboardMode())
        return QStringLiteral("Clipboard");
    if (model_.personPath() && model_.personCache())
        return Drawing::harmless(model_.personCache()->name);
    if (model_.browsePath())
        return Drawing::harmless(*model_.browsePath());
    return Drawing::toQt(ProductInfo::name);
}

void Footer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto shown = hints();
    const QFontMetrics metrics(style_.small);
    const int middle = height() / 2 - 1;
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    int taken = PanelStyle::edge;
    // From the far end inward, so that Return's stands where it always is.
    for (const auto& hint : shown) {
        const int caps = KeyCaps::width(style_, hint.keys);
        const int text = metrics.horizontalAdvance(hint.label);
        const int width = text + keyGap + caps;
        if (taken + width > this->width() - PanelStyle::edge)
            break; // the others are in the sheet of shortcuts
        const QRect whole = QStyle::visualRect(
            layoutDirection(), rect(), QRect(this->width() - taken - width, 0, width, height()));
        const int capsLeft = isMirrored ? whole.left() : whole.right() + 1 - caps;
        const int textLeft = isMirrored ? whole.right() + 1 - text : whole.left();
        KeyCaps::draw(painter, style_, {capsLeft, middle}, hint.keys);
        painter.setFont(style_.small);
        painter.setPen(toQt(style_.palette.footerText));
        painter.drawText(QRect(textLeft, 0, text + 1, 2 * middle), Qt::AlignVCenter, hint.label);
        taken += width + hintGap;
    }
    if (state() == FooterState::collapsed && prefs_.autoHideFooter())
        return;
    const int room = width() - taken - PanelStyle::edge;
    if (room < leastPlaceWidth)
        return; // a lone ellipsis names no place
    const auto name = metrics.elidedText(place(), Qt::ElideMiddle, room);
    const auto rectangle =
        QStyle::visualRect(layoutDirection(), rect(), QRect(PanelStyle::edge, 0, room, 2 * middle));
    painter.setFont(style_.small);
    painter.setPen(toQt(style_.palette.footerText));
    painter.drawText(rectangle, Drawing::leading(layoutDirection()), name);
}

} // namespace tessarine
