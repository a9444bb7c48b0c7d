#include "launcherapp/panel/view/menus/MenuView.h"

#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr int padding = 6; ///< around all entries
constexpr int separatorHeight = 9;
constexpr int symbolSide = 17;
constexpr int symbolLeft = 16;
constexpr int textLeft = 44;
constexpr int textRight = 16;
constexpr int detailGap = 28;
constexpr int leastWidth = 230;
constexpr int mostWidth = 380;

} // namespace

MenuView::MenuView(QWidget* parent, const PanelStyle& style, RowImages& images)
    : ItemView(parent, Role::menu), style_(style), images_(images) {
    setMouseTracking(true);
    hide();
}

void MenuView::setEntries(std::vector<Entry> entries) {
    entries_ = std::move(entries);
    hovered_ = -1;
    keepCurrentSeen();
    announceCurrent();
    update();
}

QSize MenuView::wantedSize() const {
    const QFontMetrics titles(style_.title);
    const QFontMetrics notes(style_.small);
    const QFontMetrics details(style_.small);
    int width = leastWidth;
    for (const auto& entry : entries_) {
        const int detail =
            entry.detail.isEmpty() ? 0 : detailGap + details.horizontalAdvance(entry.detail);
        const auto& metrics = entry.isNote ? notes : titles;
        width = std::max(
            width, textLeft + metrics.horizontalAdvance(entry.title) + 1 + detail + textRight);
    }
    return {std::min(width, mostWidth), contentHeight()};
}

int MenuView::heightOf(const Entry& entry) const {
    return entry.isSeparator() ? separatorHeight : style_.menuItemHeight;
}

int MenuView::contentHeight() const {
    int height = 2 * padding;
    for (const auto& entry : entries_)
        height += heightOf(entry);
    return height;
}

int MenuView::itemCount() const {
    return static_cast<int>(entries_.size());
}

ItemView::Item MenuView::item(int index) const {
    const auto& entry = entries_[static_cast<std::size_t>(index)];
    auto name = entry.title;
    if (!entry.detail.isEmpty())
        name += QStringLiteral(", ") + entry.detail;
    return {.name = name,
            .isDestructive = entry.isDestructive,
            .isSeparator = entry.isSeparator(),
            .isNote = entry.isNote};
}

QRect MenuView::place(int index) const {
    int top = padding - scrolled_;
    for (int i = 0; i < index; ++i)
        top += heightOf(entries_[static_cast<std::size_t>(i)]);
    return {0, top, width(), heightOf(entries_[static_cast<std::size_t>(index)])};
}

QRect MenuView::itemRectangle(int index) const {
    return index < itemCount() ? place(index).intersected(rect()) : QRect();
}

void MenuView::keepCurrentSeen() {
    const int most = std::max(0, contentHeight() - height());
    const int current = currentItem();
    if (current >= 0 && current < itemCount()) {
        const auto entry = place(current).translated(0, scrolled_);
        // The entry's top counts where there is no room for all of it.
        scrolled_ = std::max(scrolled_, entry.bottom() + 1 + padding - height());
        scrolled_ = std::min(scrolled_, entry.top() - padding);
    }
    scrolled_ = std::clamp(scrolled_, 0, most);
}

void MenuView::resizeEvent(QResizeEvent* event) {
    keepCurrentSeen();
    ItemView::resizeEvent(event);
}

void MenuView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    Drawing::roundedRectangle(painter, rect(), PanelStyle::menuRadius, toQt(style_.palette.menu));
    painter.save();
    painter.setClipRect(rect().adjusted(1, 1, -1, -1));
    for (int i = 0; i < itemCount(); ++i) {
        if (!itemRectangle(i).isEmpty())
            drawEntry(painter, i);
    }
    painter.restore();
    Drawing::roundedFrame(painter, rect(), PanelStyle::menuRadius, toQt(style_.palette.border));
}

void MenuView::drawEntry(QPainter& painter, int index) const {
    const auto& palette = style_.palette;
    const auto& entry = entries_[static_cast<std::size_t>(index)];
    const auto area = place(index);
    const auto mirrored = [&](int left, int width) {
        return Drawing::mirrored(layoutDirection(), area, left, width);
    };
    if (entry.isSeparator()) {
        painter.fillRect(QRect(padding * 2, area.center().y(), width() - padding * 4, 1),
                         toQt(palette.separator));
        return;
    }
    const bool isCurrent = index == currentItem();
    if (isCurrent || (index == hovered_ && entry.canBeChosen()))
        Drawing::roundedRectangle(painter,
                                  QRectF(area).adjusted(padding, 1, -padding, -1),
                                  PanelStyle::menuRadius - padding / 2.0,
                                  toQt(isCurrent ? palette.menuSelection : palette.hover));
    const auto color = toQt(entry.isDestructive ? palette.destructive
                            : entry.isNote      ? palette.subtitle
                                                : palette.menuText);
    const std::string symbol = entry.isChecked ? "checkmark" : entry.symbol;
    if (const auto* drawing = images_.symbol(symbol, {symbolSide, Drawing::scale(painter)}, color))
        Drawing::centred(painter, mirrored(symbolLeft, symbolSide), *drawing);

    const int detailWidth =
        entry.detail.isEmpty() ? 0 : QFontMetrics(style_.small).horizontalAdvance(entry.detail);
    const auto title = mirrored(textLeft, width() - textLeft - textRight - detailWidth);
    const auto& font = entry.isNote ? style_.small : style_.title;
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(title,
                     Drawing::leading(layoutDirection()) | Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(entry.title, Qt::ElideRight, title.width()));
    painter.setFont(style_.small);
    painter.setPen(toQt(isCurrent ? palette.selectedSubtitle : palette.subtitle));
    painter.drawText(mirrored(width() - textRight - detailWidth, detailWidth),
                     Qt::AlignCenter | Qt::TextSingleLine,
                     entry.detail);
}

void MenuView::mouseMoveEvent(QMouseEvent* event) {
    const int at = itemAt(event->position().toPoint());
    if (std::exchange(hovered_, at) != at)
        update();
}

void MenuView::leaveEvent(QEvent*) {
    hovered_ = -1;
    update();
}

void MenuView::mousePressEvent(QMouseEvent* event) {
    event->accept(); // what is below the menu is not meant
}

void MenuView::mouseReleaseEvent(QMouseEvent* event) {
    const int at = itemAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && at >= 0 &&
        entries_[static_cast<std::size_t>(at)].canBeChosen())
        activate(at);
}

void MenuView::wheelEvent(QWheelEvent* event) {
    scrolled_ = std::clamp(
        scrolled_ - event->angleDelta().y() / 4, 0, std::max(0, contentHeight() - height()));
    update();
    event->accept();
}

} // namespace tessarine
