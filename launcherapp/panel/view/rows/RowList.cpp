#include "launcherapp/panel/view/rows/RowList.h"

#include "LauncherCore/text/Folding.h"
#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"
#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr int lastDigit = 9;
constexpr int wheelStep = 40; ///< eighths of a degree for a row: a notch of 15 degrees is three
constexpr int scrollMarkWidth = 3;

} // namespace

RowList::RowList(QWidget* parent, Sources sources)
    : ItemView(parent, Role::list), sources_(sources) {
    setAccessibleName(QStringLiteral("Results"));
    setMouseTracking(true);
}

int RowList::rowsShown() const {
    const auto& model = sources_.model;
    return static_cast<int>(std::min(model.rows().size(), model.rowsAtATime()));
}

int RowList::rowsThatFit() const {
    return std::max(1, (height() - 2 * PanelStyle::listPadding) / sources_.style.rowHeight);
}

int RowList::wantedHeight() const {
    const int rows = rowsShown();
    return itemCount() == 0 ? 0 : rows * sources_.style.rowHeight + 2 * PanelStyle::listPadding;
}

void RowList::refresh() {
    const auto& rows = sources_.model.rows();
    const auto leader = rows.empty() ? std::string() : rows.front().id;
    if (leader != listed_ || static_cast<int>(rows.size()) <= first_)
        first_ = 0;
    listed_ = leader;
    lines_.resize(rows.size());
    // The pointer rests where another row is now, and that one is not what it pointed at.
    const bool isSame = hovered_ >= 0 && hovered_ < itemCount() &&
                        rows[static_cast<std::size_t>(hovered_)].id == hoveredID_;
    if (!isSame)
        setHovered(-1);
    keepSelectionSeen();
    announceCurrent();
    update();
}

void RowList::restyle() {
    lines_.clear();
    refresh();
}

void RowList::setCommandKey(CommandKey key) {
    if (std::exchange(commandKey_, key) != key)
        update();
}

void RowList::markFirstApp() {
    marksFirstApp_ = true;
    update();
}

void RowList::keepSelectionSeen() {
    const int selected = currentItem();
    if (selected < 0)
        return;
    const int fit = rowsThatFit();
    first_ = std::clamp(first_, std::max(0, selected - fit + 1), selected);
    first_ = std::clamp(first_, 0, std::max(0, itemCount() - fit));
}

void RowList::scrollTo(int first) {
    const int last = std::max(0, itemCount() - rowsThatFit());
    if (const int to = std::clamp(first, 0, last); std::exchange(first_, to) != to)
        update();
}

int RowList::itemCount() const {
    return static_cast<int>(sources_.model.rows().size());
}

ItemView::Item RowList::item(int index) const {
    const auto& row = sources_.model.rows()[static_cast<std::size_t>(index)];
    auto name = ShownText::harmless(row.title);
    if (!row.subtitle.empty())
        name += ", " + ShownText::harmless(row.subtitle);
    if (row.running)
        name += ", running";
    return {.name = Drawing::toQt(name)};
}

QRect RowList::itemRectangle(int index) const {
    const int place = index - first_;
    if (place < 0 || place >= rowsThatFit() || index >= itemCount())
        return {};
    const int rowHeight = sources_.style.rowHeight;
    return {0, PanelStyle::listPadding + place * rowHeight, width(), rowHeight};
}

int RowList::currentItem() const {
    return sources_.model.selectedRow() ? static_cast<int>(sources_.model.selection()) : -1;
}

void RowList::activate(int index) {
    sources_.model.select(static_cast<std::size_t>(index));
    sources_.model.runSelected();
}

RowLook RowList::look(int index) const {
    const auto& rows = sources_.model.rows();
    const auto firstApp = std::ranges::find(rows, RowKind::app, &ResultRow::kind);
    const auto& row = rows[static_cast<std::size_t>(index)];
    const bool isInert = row.kind == RowKind::hint && !row.primary; // a key would do nothing
    return {.rectangle = itemRectangle(index),
            .direction = layoutDirection(),
            .isRunning = row.running || (marksFirstApp_ && firstApp == rows.begin() + index),
            .isSelected = index == currentItem(),
            .isHovered = index == hovered_,
            .digit = index < lastDigit && !isInert ? index + 1 : 0,
            .isDigitAsked = commandKey_ == CommandKey::down};
}

void RowList::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const auto& model = sources_.model;
    const RowPainter rows(sources_.style, sources_.images);
    const auto query =
        model.engaged() ? std::string() : std::string(Folding::trimmed(model.query()));
    const int end = std::min(itemCount(), first_ + rowsThatFit());
    for (int i = first_; i < end; ++i) {
        const auto look = this->look(i);
        if (!event->region().intersects(look.rectangle))
            continue;
        const auto& row = model.rows()[static_cast<std::size_t>(i)];
        rows.draw(painter, row, credit(row), query, look, lines_[static_cast<std::size_t>(i)]);
    }
    drawScrollMark(painter);
}

/// Where in a longer list one is; it is no handle.
void RowList::drawScrollMark(QPainter& painter) const {
    const int fit = rowsThatFit();
    if (itemCount() <= fit)
        return;
    const qreal track = height() - 2.0 * PanelStyle::listPadding;
    const qreal length = std::max(24.0, track * fit / itemCount());
    const qreal top = PanelStyle::listPadding + (track - length) * first_ / (itemCount() - fit);
    const QRectF mark(width() - scrollMarkWidth - 2, top, scrollMarkWidth, length);
    const auto place =
        layoutDirection() == Qt::RightToLeft ? QRectF(2, top, scrollMarkWidth, length) : mark;
    Drawing::roundedRectangle(
        painter, place, scrollMarkWidth / 2.0, toQt(sources_.style.palette.border));
}

const ResolvedCredit* RowList::credit(const ResultRow& row) {
    if (!row.credit)
        return nullptr;
    if (const auto* known = sources_.credits.fromMemory(*row.credit))
        return known;
    // The rest is looked for on disk, which is no business of a paint.
    if (creditsWanted_.empty())
        QTimer::singleShot(0, this, &RowList::lookUpCredits);
    creditsWanted_.push_back(*row.credit);
    return nullptr;
}

void RowList::lookUpCredits() {
    for (const auto& spec : std::exchange(creditsWanted_, {}))
        sources_.credits.resolve(spec);
    update();
}

void RowList::resizeEvent(QResizeEvent* event) {
    keepSelectionSeen();
    ItemView::resizeEvent(event);
}

void RowList::setHovered(int index) {
    hoveredID_ =
        index < 0 ? std::string() : sources_.model.rows()[static_cast<std::size_t>(index)].id;
    if (std::exchange(hovered_, index) != index)
        update();
}

void RowList::mouseMoveEvent(QMouseEvent* event) {
    // The panel that comes up under a pointer at rest must not look as if that meant a row.
    const auto place = event->globalPosition().toPoint();
    if (pointer_ && *pointer_ != place)
        setHovered(itemAt(event->position().toPoint()));
    pointer_ = place;
}

void RowList::leaveEvent(QEvent*) {
    setHovered(-1);
}

void RowList::hideEvent(QHideEvent* event) {
    setHovered(-1);
    pointer_.reset();
    ItemView::hideEvent(event);
}

void RowList::mousePressEvent(QMouseEvent* event) {
    const auto place = event->position().toPoint();
    pressed_ = itemAt(place);
    // Beside an open menu it is the menu that the press is about.
    if (event->button() == Qt::LeftButton && sources_.model.closeMenus())
        pressed_ = -1;
    if (event->button() != Qt::RightButton)
        return;
    if (pressed_ >= 0)
        sources_.model.select(static_cast<std::size_t>(pressed_));
    if (menuAsked)
        menuAsked(place);
}

void RowList::mouseReleaseEvent(QMouseEvent* event) {
    const int released = itemAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && released >= 0 && released == pressed_)
        activate(released);
}

void RowList::wheelEvent(QWheelEvent* event) {
    wheelRemainder_ += event->angleDelta().y();
    const int rows = wheelRemainder_ / wheelStep;
    wheelRemainder_ -= rows * wheelStep;
    scrollTo(first_ - rows);
    event->accept();
}

} // namespace tessarine
