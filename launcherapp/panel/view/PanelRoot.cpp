#include "launcherapp/panel/view/PanelRoot.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/FieldRow.h"
#include "launcherapp/panel/view/QueryField.h"
#include "launcherapp/panel/view/ShortcutSheet.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/heads/ModeParts.h"
#include "launcherapp/panel/view/menus/PanelMenus.h"
#include "launcherapp/panel/view/rows/RowList.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace tessarine {

namespace {

constexpr int menuMargin = 8; ///< from an open menu to the field row, the footer and the sides

} // namespace

PanelRoot::PanelRoot(QWidget* parent, PanelViewServices services)
    : QWidget(parent), services_(services),
      style_(services.appearance.palette(), services.prefs.textScale(), QApplication::font()),
      images_(services.icons, services.catalog),
      fieldRow_(new FieldRow(this, services.model, style_, images_)),
      list_(new RowList(this,
                        {.model = services.model,
                         .prefs = services.prefs,
                         .credits = services.credits,
                         .images = images_,
                         .style = style_})),
      footer_(new Footer(this, services.model, services.prefs, style_)),
      actions_(new ActionsMenuView(this, services.model, style_, images_)),
      filter_(new FilterMenuView(this, services.model, style_, images_)),
      sheet_(new ShortcutSheet(this, style_)),
      modeParts_(std::make_unique<ModeParts>(*this, services.model, style_, images_)) {
    setFocusProxy(fieldRow_);
    for (auto* view : {static_cast<ItemView*>(list_),
                       static_cast<ItemView*>(actions_),
                       static_cast<ItemView*>(filter_)})
        view->setController(&fieldRow_->field());
    images_.arrived = [this] { update(); };
    fieldRow_->restyle();
    refresh();
}

PanelRoot::~PanelRoot() {
    modeParts_.reset();
    for (const auto& accessory : accessories_) {
        if (accessory)
            accessory->setParent(nullptr);
    }
    // While there are still the style and the pictures that the parts draw with.
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

QueryField& PanelRoot::field() {
    return fieldRow_->field();
}

void PanelRoot::refresh() {
    modeParts_->refresh();
    takeOver();
}

void PanelRoot::takeOver() {
    fieldRow_->refresh();
    list_->refresh();
    footer_->refresh();
    actions_->refresh();
    filter_->refresh();
    place();
    if (std::exchange(toldHeights_, heights()) != toldHeights_ && heightChanged)
        heightChanged();
}

void PanelRoot::restyle() {
    style_ = PanelStyle(services_.appearance.palette(),
                        heldTextScale_.value_or(services_.prefs.textScale()),
                        QApplication::font());
    fieldRow_->restyle();
    list_->restyle();
    refresh();
    update();
}

void PanelRoot::setBlending(Blending blending) {
    if (std::exchange(blending_, blending) != blending)
        update();
}

void PanelRoot::setTextScale(std::optional<TextScale> scale) {
    heldTextScale_ = scale;
    restyle();
}

void PanelRoot::settle(double scale) {
    // A picture that has come may be what shows that another is wanted: a symbol for an icon that
    // there is not.
    constexpr int rounds = 4;
    QImage screen((QSizeF(size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    screen.setDevicePixelRatio(scale);
    for (int i = 0; i < rounds; ++i) {
        render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
        list_->lookUpCredits();
        images_.readAll();
    }
}

void PanelRoot::setCommandKey(CommandKey key) {
    list_->setCommandKey(key);
    footer_->setCommandKey(key);
}

QWidget* PanelRoot::accessory(Slot slot) const {
    return accessories_[static_cast<std::size_t>(slot)];
}

void PanelRoot::setAccessory(Slot slot, QWidget* accessory) {
    auto& place = accessories_[static_cast<std::size_t>(slot)];
    if (place == accessory)
        return;
    if (place)
        place->hide();
    place = accessory;
    if (accessory) {
        accessory->setParent(this);
        accessory->stackUnder(actions_);
        accessory->show();
    }
    takeOver();
}

ClipPreviewPlacement PanelRoot::previewPlacement() const {
    return heldPlacement_.value_or(services_.prefs.clipPreviewPlacement());
}

void PanelRoot::holdPreview(std::optional<ClipPreviewPlacement> placement) {
    heldPlacement_ = placement;
    refresh();
}

void PanelRoot::showSheet() {
    if (isSheetShown())
        return;
    sheet_->show();
    refresh();
}

void PanelRoot::hideSheet() {
    if (!isSheetShown())
        return;
    sheet_->hide();
    refresh();
}

bool PanelRoot::isSheetShown() const {
    return !sheet_->isHidden();
}

int PanelRoot::accessoryHeight(Slot slot) const {
    const auto* part = accessory(slot);
    return part ? part->sizeHint().height() + PanelStyle::separatorHeight : 0;
}

/// What an open menu or the sheet needs below the field; 0 for none.
int PanelRoot::overlayHeight() const {
    int height = 0;
    for (const auto* menu :
         {static_cast<const MenuView*>(actions_), static_cast<const MenuView*>(filter_)}) {
        if (!menu->isHidden())
            height = std::max(height, menu->wantedSize().height());
    }
    if (isSheetShown())
        height = std::max(height, sheet_->wantedSize().height());
    return height == 0 ? 0 : height + 2 * menuMargin;
}

/// The least height of the list for a preview beside it; 0 without one.
int PanelRoot::besideHeight() const {
    const auto* beside = accessory(Slot::besideList);
    return beside ? beside->minimumSizeHint().height() : 0;
}

PanelPlacement::Heights PanelRoot::heights() const {
    const auto inSlot = [&](Slot slot) {
        const auto* part = accessory(slot);
        return part ? static_cast<double>(part->sizeHint().height()) : 0.0;
    };
    return {.row = static_cast<double>(style_.rowHeight),
            .headAbove = inSlot(Slot::aboveList),
            .previewBelow = inSlot(Slot::belowList),
            .previewBeside = static_cast<double>(besideHeight()),
            .overlay = static_cast<double>(overlayHeight())};
}

int PanelRoot::wantedHeight() const {
    const auto& model = services_.model;
    return static_cast<int>(PanelPlacement::desiredHeight(
        {.rows = model.rows().size(), .mostRows = model.rowsAtATime(), .heights = heights()}));
}

void PanelRoot::place() {
    fieldRow_->setGeometry(0, 0, width(), PanelStyle::headerHeight);
    footer_->setGeometry(0, height() - PanelStyle::footerHeight, width(), PanelStyle::footerHeight);
    placeList(QRect(0,
                    PanelStyle::headerHeight + PanelStyle::separatorHeight,
                    width(),
                    footer_->y() - PanelStyle::headerHeight - PanelStyle::separatorHeight));
    placeMenus();
}

void PanelRoot::placeList(QRect room) {
    if (auto* above = accessory(Slot::aboveList)) {
        above->setGeometry(room.x(), room.y(), room.width(), above->sizeHint().height());
        room.setTop(room.top() + accessoryHeight(Slot::aboveList));
    }
    // Room that an open menu has brought is none for more rows.
    const int height = std::min(std::max(list_->wantedHeight(), besideHeight()),
                                room.height() - accessoryHeight(Slot::belowList));
    room.setHeight(std::max(0, height));
    if (auto* below = accessory(Slot::belowList)) {
        below->setVisible(list_->itemCount() > 0);
        below->setGeometry(room.x(),
                           room.bottom() + 1 + PanelStyle::separatorHeight,
                           room.width(),
                           below->sizeHint().height());
    }
    if (auto* beside = accessory(Slot::besideList)) {
        const bool isLeft = previewPlacement() == ClipPreviewPlacement::left;
        const int width = room.width() / 2;
        beside->setGeometry(
            isLeft ? room.x() : room.right() + 1 - width, room.y(), width, room.height());
        if (isLeft)
            room.setLeft(room.left() + width + PanelStyle::separatorHeight);
        else
            room.setRight(room.right() - width - PanelStyle::separatorHeight);
    }
    list_->setGeometry(room);
    list_->setVisible(list_->itemCount() > 0 && services_.model.rowsAtATime() > 0);
}

void PanelRoot::placeMenus() {
    const int top = PanelStyle::headerHeight;
    const int bottom = footer_->y() - menuMargin;
    const auto inside = [&](const QPoint& corner, QSize size) {
        size.setHeight(std::clamp(bottom - top, 0, size.height()));
        const int x = std::clamp(
            corner.x(), menuMargin, std::max(menuMargin, width() - menuMargin - size.width()));
        const int y = std::clamp(corner.y(), top, std::max(top, bottom - size.height()));
        return QRect(QPoint(x, y), size);
    };
    const auto farEnd = [&](const QSize& size) {
        return layoutDirection() == Qt::RightToLeft ? menuMargin
                                                    : width() - menuMargin - size.width();
    };
    if (!actions_->isHidden()) {
        const auto size = actions_->wantedSize();
        const auto row = list_->itemRectangle(std::max(0, list_->currentItem()));
        const QPoint beside(farEnd(size), list_->y() + row.top());
        const auto& anchor = services_.model.actionAnchor();
        const auto corner = anchor ? QPointF(anchor->x, anchor->y).toPoint() : beside;
        actions_->setGeometry(inside(corner, size));
        actions_->raise();
    }
    if (!filter_->isHidden()) {
        const auto size = filter_->wantedSize();
        filter_->setGeometry(inside(QPoint(farEnd(size), top), size));
        filter_->raise();
    }
    if (isSheetShown()) {
        auto size = sheet_->wantedSize();
        size.setWidth(std::min(size.width(), width() - 2 * menuMargin));
        sheet_->setGeometry(inside(QPoint((width() - size.width()) / 2, top), size));
        sheet_->raise();
    }
}

void PanelRoot::resizeEvent(QResizeEvent* event) {
    place();
    QWidget::resizeEvent(event);
}

void PanelRoot::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange)
        place();
    QWidget::changeEvent(event);
}

/// The ground and its frame in full: what it looks like, and slow.
void PanelRoot::drawGround(QPainter& painter, const QRectF& plate) const {
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    Drawing::roundedRectangle(painter, plate, PanelStyle::cornerRadius, toQt(style_.palette.panel));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    Drawing::roundedFrame(painter, plate, PanelStyle::cornerRadius, toQt(style_.palette.border));
}

/// The same by four corners, drawn once, and plain fills between them. Only whole pixels meet
/// without a seam.
void PanelRoot::drawGroundByCorners(QPainter& painter, int scale) {
    const int radius = static_cast<int>(PanelStyle::cornerRadius);
    const int side = 2 * radius;
    const auto& palette = style_.palette;
    const CornersOf key{palette.panel, palette.border, scale};
    if (corners_.isNull() || cornersOf_ != key) {
        cornersOf_ = key;
        corners_ = QImage(side * scale, side * scale, QImage::Format_ARGB32_Premultiplied);
        corners_.setDevicePixelRatio(scale);
        corners_.fill(Qt::transparent);
        QPainter patch(&corners_);
        drawGround(patch, QRectF(0, 0, side, side));
    }

    const auto ground = toQt(palette.panel);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect().adjusted(0, radius, 0, -radius), ground);
    painter.fillRect(rect().adjusted(radius, 0, -radius, 0), ground);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver); // the shadow shows in them
    for (const int x : {0, 1}) {
        for (const int y : {0, 1}) {
            const QPoint to(x * (width() - radius), y * (height() - radius));
            const QRect from(
                x * radius * scale, y * radius * scale, radius * scale, radius * scale);
            painter.drawImage(QRect(to, QSize(radius, radius)), corners_, from);
        }
    }
    const auto border = toQt(palette.border);
    for (const int x : {0, width() - 1})
        painter.fillRect(QRect(x, radius, 1, height() - 2 * radius), border);
    for (const int y : {0, height() - 1})
        painter.fillRect(QRect(radius, y, width() - 2 * radius, 1), border);
}

void PanelRoot::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const auto& palette = style_.palette;
    const int radius = static_cast<int>(PanelStyle::cornerRadius);
    const bool isOpaque = blending_ == Blending::opaque;
    const double scale = Drawing::scale(painter);
    const auto ground = toQt(isOpaque ? palette.panel.withAlpha(255) : palette.panel);
    const auto separator = QRect(PanelStyle::edge,
                                 PanelStyle::headerHeight,
                                 width() - 2 * PanelStyle::edge,
                                 PanelStyle::separatorHeight);
    // A repaint of rows touches neither corner nor frame.
    const bool isInside = rect().adjusted(1, radius, -1, -radius).contains(event->rect());
    if (isOpaque || isInside) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(event->rect(), ground);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    } else if (scale == std::floor(scale)) {
        drawGroundByCorners(painter, static_cast<int>(scale));
    } else {
        drawGround(painter, rect());
    }
    if (list_->itemCount() > 0)
        painter.fillRect(separator, toQt(palette.separator));
    if (isOpaque && !isInside)
        Drawing::roundedFrame(painter, rect(), 0.5, toQt(palette.border));
}

} // namespace tessarine
