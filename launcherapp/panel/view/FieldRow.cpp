#include "launcherapp/panel/view/FieldRow.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/QueryField.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"
#include "launcherapp/query/SearchModel.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace tessarine {

namespace {

constexpr int symbolSide = 22;
constexpr int chipHeight = 26;
constexpr int chipPadding = 10;
constexpr int chipArrowSide = 12;
constexpr int mostChipWidth = 200;
/// The editor's own margin inside its frame (qlineedit_p.h).
constexpr int editorMargin = 2;

/// What is searched at the moment.
struct Mode {
    std::string symbol = "magnifyingglass";
    std::string name; ///< empty for the ordinary one
    QString placeholder = QStringLiteral("Search or type a command");
    QString spoken; ///< for those who see neither symbol nor name; empty for the ordinary one
};

Mode modeOf(const SearchModel& model) {
    if (model.clipboardMode()) {
        // Nothing is narrowed while there is nothing at all.
        const auto filter = model.families.clipboard ? model.filterTitle() : std::string();
        return {
            "doc.on.clipboard",
            filter,
            QStringLiteral("Search the clipboard"),
            QStringLiteral("Clipboard") +
                (filter.empty() ? QString() : QStringLiteral(", ") + Drawing::harmless(filter))};
    }
    if (model.personPath()) {
        const auto name = model.personCache() ? model.personCache()->name : std::string();
        return {"person.crop.circle",
                name,
                QStringLiteral("Search this card"),
                QStringLiteral("Card of %1").arg(Drawing::harmless(name))};
    }
    if (model.browsePath()) {
        const auto name = ShownText::harmless(Paths::lastPart(*model.browsePath()));
        return {"folder",
                name.empty() ? "/" : name,
                QStringLiteral("Search in %1").arg(Drawing::toQt(name.empty() ? "/" : name)),
                QStringLiteral("Folder %1").arg(Drawing::harmless(*model.browsePath()))};
    }
    if (model.engaged())
        return {model.engaged()->defaultSymbol(),
                model.engaged()->name,
                {},
                QStringLiteral("Command %1").arg(Drawing::harmless(model.engaged()->name))};
    return {};
}

} // namespace

FieldRow::FieldRow(QWidget* parent, SearchModel& model, const PanelStyle& style, RowImages& images)
    : QWidget(parent), model_(model), style_(style), images_(images), field_(new QueryField(this)) {
    setFocusProxy(field_);
}

void FieldRow::refresh() {
    field_->setQuery(model_.query());
    const auto mode = modeOf(model_);
    const auto chip = Drawing::harmless(mode.name);
    field_->setPlaceholderText(mode.placeholder);
    if (mode.spoken != field_->accessibleDescription())
        field_->setAccessibleDescription(mode.spoken);
    if (chip == chip_ && mode.symbol == symbol_)
        return;
    chip_ = chip;
    symbol_ = mode.symbol;
    place();
    update();
}

void FieldRow::restyle() {
    field_->restyle(style_);
    place();
    update();
}

QRect FieldRow::chipRectangle() const {
    if (chip_.isEmpty())
        return {};
    // Advances are rounded, and a text that lacks a part of a pixel would be cut.
    const int text = QFontMetrics(style_.subtitle).horizontalAdvance(chip_) + 1;
    const int arrow = model_.clipboardMode() ? chipArrowSide + 4 : 0;
    const int width = std::min(text + 2 * chipPadding + arrow, mostChipWidth);
    const QRect chip(
        this->width() - PanelStyle::edge - width, (height() - chipHeight) / 2, width, chipHeight);
    return QStyle::visualRect(layoutDirection(), rect(), chip);
}

void FieldRow::place() {
    const int left = PanelStyle::textStart - editorMargin;
    const int end = PanelStyle::edge + (chip_.isEmpty() ? 0 : chipRectangle().width() + 12);
    const QRect field(left,
                      (height() - PanelStyle::fieldRowHeight) / 2,
                      width() - left - end,
                      PanelStyle::fieldRowHeight);
    field_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), field));
}

void FieldRow::resizeEvent(QResizeEvent* event) {
    place();
    QWidget::resizeEvent(event);
}

void FieldRow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange)
        place();
    QWidget::changeEvent(event);
}

void FieldRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect slot(PanelStyle::edge,
                     (height() - PanelStyle::iconSide) / 2,
                     PanelStyle::iconSide,
                     PanelStyle::iconSide);
    if (const auto* drawing = images_.symbol(
            symbol_, {symbolSide, Drawing::scale(painter)}, toQt(style_.palette.placeholder)))
        Drawing::centred(painter, QStyle::visualRect(layoutDirection(), rect(), slot), *drawing);
    if (!chip_.isEmpty())
        drawChip(painter);
}

void FieldRow::drawChip(QPainter& painter) const {
    const auto& palette = style_.palette;
    const auto chip = chipRectangle();
    Drawing::roundedRectangle(painter, chip, chipHeight / 2.0, toQt(palette.keyCap));
    auto inside = QRect(chipPadding, 0, chip.width() - 2 * chipPadding, chip.height());
    const auto onPanel = [&](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), QRect(0, 0, chip.width(), chip.height()), part)
            .translated(chip.topLeft());
    };
    if (model_.clipboardMode()) {
        const QRect arrow(
            inside.right() + 1 - chipArrowSide, inside.top(), chipArrowSide, inside.height());
        inside.setRight(arrow.left() - 4);
        if (const auto* drawing = images_.symbol(
                "chevron.down", {chipArrowSide, Drawing::scale(painter)}, toQt(palette.keyCapText)))
            Drawing::centred(painter, onPanel(arrow), *drawing);
    }
    painter.setFont(style_.subtitle);
    painter.setPen(toQt(palette.keyCapText));
    painter.drawText(
        onPanel(inside),
        Qt::AlignCenter | Qt::TextSingleLine,
        QFontMetrics(style_.subtitle).elidedText(chip_, Qt::ElideMiddle, inside.width()));
}

void FieldRow::mouseReleaseEvent(QMouseEvent* event) {
    if (model_.clipboardMode() && chipRectangle().contains(event->position().toPoint()))
        model_.filterMenuTab(SearchModel::TabDirection::forward);
    else
        QWidget::mouseReleaseEvent(event);
}

} // namespace tessarine
