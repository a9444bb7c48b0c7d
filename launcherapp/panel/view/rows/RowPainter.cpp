#include "launcherapp/panel/view/rows/RowPainter.h"

#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"
#include "launcherapp/query/CreditResolver.h"

#include <QStyle>
#include <algorithm>

namespace tessarine {

namespace {

constexpr int selectionInset = 8; ///< from the panel's side to the selected row's background
constexpr int digitWidth = 22;
constexpr int digitHeight = 20;
constexpr int digitEdge = 16; ///< from the panel's side to the digit
constexpr int gap = 10;       ///< between a row's texts and what stands right of them
constexpr int creditIconSide = 16;
constexpr int mostCreditWidth = 190;
constexpr int symbolSide = 18; ///< in its tile
constexpr int runningSide = 6;
constexpr qreal tileRadius = 8;
constexpr int markSide = 15;  ///< of the mark at a tile's corner
constexpr int markBeyond = 4; ///< how far it stands out of the tile

/// An answer is text to read; what opens something is marked by what was typed of its name.
bool showsMatch(const ResultRow& row) {
    return row.kind == RowKind::app || row.kind == RowKind::command || row.kind == RowKind::file;
}

QRect middle(const QRect& rectangle, int side) {
    return {rectangle.x() + (rectangle.width() - side) / 2,
            rectangle.y() + (rectangle.height() - side) / 2,
            side,
            side};
}

/// The part of a row from `left` to `right` of it, turned round in a mirrored one.
QRect part(const RowLook& look, int left, int right) {
    const auto& row = look.rectangle;
    return Drawing::mirrored(look.direction, row, row.left() + left, right - left);
}

/// The application that the row hands over to, or where its figure is from.
std::string creditText(const ResultRow& row, const ResolvedCredit* credit) {
    if (!row.credit)
        return row.source->host;
    return credit ? credit->name : row.credit->fallbackName();
}

} // namespace

void RowPainter::draw(QPainter& painter,
                      const ResultRow& row,
                      const ResolvedCredit* credit,
                      const std::string& query,
                      const RowLook& look,
                      RowLines& lines) const {
    drawBackground(painter, look);
    const auto slot = part(look, PanelStyle::edge, PanelStyle::edge + PanelStyle::iconSide);
    drawIcon(painter, row, look, middle(slot, PanelStyle::iconSide), lines.picture);
    drawDigit(painter, look);
    const int credited = drawCredit(painter, row, credit, look, lines.credit);
    const int room = look.rectangle.width() - PanelStyle::textStart - digitEdge - digitWidth - gap -
                     (credited > 0 ? credited + gap : 0);
    drawTexts(painter, row, query, look, room, lines);
}

void RowPainter::drawBackground(QPainter& painter, const RowLook& look) const {
    const QRectF shape = QRectF(look.rectangle).adjusted(selectionInset, 1, -selectionInset, -1);
    if (look.isSelected)
        Drawing::roundedRectangle(
            painter, shape, PanelStyle::rowRadius, toQt(style_.palette.selection));
    else if (look.isHovered)
        Drawing::roundedRectangle(
            painter, shape, PanelStyle::rowRadius, toQt(style_.palette.hover));
}

void RowPainter::drawIcon(QPainter& painter,
                          const ResultRow& row,
                          const RowLook& look,
                          const QRect& slot,
                          FittedPicture& picture) const {
    // An answer's glyph is what it is about, and stands for the picture; a clipping's is a mark
    // beside what stands for the clipping.
    const bool hasMark = row.glyph && row.kind != RowKind::calc;
    const double scale = Drawing::scale(painter);
    if (row.image && !row.image->isEmpty()) {
        const bool isMask = row.image->isMask;
        if (isMask)
            drawTile(painter, look, slot);
        const int side = isMask ? symbolSide : slot.width();
        Drawing::centred(
            painter,
            slot,
            picture.image(
                *row.image,
                {.size = {side, side}, .scale = scale, .tint = toQt(style_.palette.symbol)}));
        if (hasMark)
            drawMark(painter, *row.glyph, look, slot);
        return;
    }
    const auto* icon = images_.icon(row, {slot.width(), scale});
    if (!icon)
        return; // its place is kept, and it arrives with a later paint
    if (!icon->image.isNull() && !icon->isMask)
        Drawing::centred(painter, slot, icon->image);
    else if (row.kind == RowKind::app)
        drawMonogram(painter, row, slot);
    else
        drawSymbolTile(painter, row, look, slot);
    if (hasMark)
        drawMark(painter, *row.glyph, look, slot);
}

/// At the far lower corner, ringed by the row's ground so that it stays apart from any picture.
void RowPainter::drawMark(QPainter& painter,
                          const std::string& glyph,
                          const RowLook& look,
                          const QRect& slot) const {
    const auto& palette = style_.palette;
    const auto mark = Drawing::harmless(glyph);
    auto font = style_.small;
    font.setPixelSize(markSide * 2 / 3);
    font.setWeight(QFont::DemiBold);
    if (!Drawing::canDraw(font, mark))
        return;
    QRect place(0, 0, markSide, markSide);
    place.moveBottomRight({slot.right() + markBeyond, slot.bottom() + markBeyond - 1});
    place = QStyle::visualRect(look.direction, slot, place);
    const auto ground = look.isSelected  ? palette.selection
                        : look.isHovered ? palette.hover
                                         : palette.panel.withAlpha(255);
    Drawing::roundedRectangle(
        painter, QRectF(place).adjusted(-1.5, -1.5, 1.5, 1.5), markSide / 2.0 + 1.5, toQt(ground));
    Drawing::roundedRectangle(painter, place, markSide / 2.0, toQt(palette.keyCap));
    painter.setFont(font);
    painter.setPen(toQt(palette.keyCapText));
    painter.drawText(place, Qt::AlignCenter, mark);
}

void RowPainter::drawTile(QPainter& painter, const RowLook& look, const QRect& slot) const {
    const auto& palette = style_.palette;
    Drawing::roundedRectangle(painter,
                              QRectF(slot).adjusted(1, 1, -1, -1),
                              tileRadius,
                              toQt(look.isSelected ? palette.selectedTile : palette.symbolTile));
}

/// For an application without an icon: its first letter, on a colour that is always the same.
void RowPainter::drawMonogram(QPainter& painter, const ResultRow& row, const QRect& slot) const {
    const auto name = ShownText::harmless(row.title);
    const auto tile = QRectF(slot).adjusted(1, 1, -1, -1);
    Drawing::roundedRectangle(painter, tile, tileRadius, toQt(Palettes::monogram(name)));
    Drawing::initial(painter, slot, style_.answer, name);
}

void RowPainter::drawSymbolTile(QPainter& painter,
                                const ResultRow& row,
                                const RowLook& look,
                                const QRect& slot) const {
    const auto& palette = style_.palette;
    drawTile(painter, look, slot);
    auto font = style_.title;
    font.setPixelSize(slot.height() * 3 / 5);
    const auto glyph = Drawing::harmless(row.glyph.value_or(""));
    if (row.kind == RowKind::calc && !glyph.isEmpty() && Drawing::canDraw(font, glyph)) {
        painter.setFont(font);
        painter.setPen(toQt(palette.title));
        painter.drawText(slot, Qt::AlignCenter, glyph);
        return;
    }
    const auto& color = row.kind == RowKind::hint ? palette.accent : palette.symbol;
    if (const auto* symbol =
            images_.symbol(row.symbol, {symbolSide, Drawing::scale(painter)}, toQt(color)))
        Drawing::centred(painter, slot, *symbol);
}

void RowPainter::drawDigit(QPainter& painter, const RowLook& look) const {
    if (look.digit == 0)
        return;
    const auto& palette = style_.palette;
    const int right = look.rectangle.width() - digitEdge;
    auto place = part(look, right - digitWidth, right);
    place.setTop(place.top() + (place.height() - digitHeight) / 2);
    place.setHeight(digitHeight);
    if (look.isDigitAsked)
        Drawing::roundedRectangle(painter, place, 5, toQt(palette.keyCap));
    painter.setFont(style_.small);
    painter.setPen(toQt(look.isDigitAsked ? palette.keyCapText
                        : look.isSelected ? palette.selectedSubtitle
                                          : palette.digit));
    painter.drawText(place, Qt::AlignCenter, QString::number(look.digit));
}

int RowPainter::drawCredit(QPainter& painter,
                           const ResultRow& row,
                           const ResolvedCredit* credit,
                           const RowLook& look,
                           TextLine& line) const {
    if (!row.credit && !row.source)
        return 0;
    const auto& palette = style_.palette;
    line.set({.text = creditText(row, credit), .font = style_.small, .width = mostCreditWidth});
    const int textWidth = static_cast<int>(line.width()) + 1;
    const int right = look.rectangle.width() - digitEdge - digitWidth - gap;
    const auto color = toQt(look.isSelected ? palette.selectedSubtitle : palette.credit);
    line.draw(painter, part(look, right - textWidth, right), look.direction, {color, color});
    if (!row.credit)
        return textWidth;
    const int iconRight = right - textWidth - 6;
    const auto slot = middle(part(look, iconRight - creditIconSide, iconRight), creditIconSide);
    if (credit)
        drawCreditIcon(painter, *credit, color, slot);
    return textWidth + 6 + creditIconSide;
}

void RowPainter::drawCreditIcon(QPainter& painter,
                                const ResolvedCredit& credit,
                                const QColor& color,
                                const QRect& slot) const {
    const RowImages::Square square{creditIconSide, Drawing::scale(painter)};
    const auto* icon = images_.named(credit.icon, square);
    if (!icon)
        return;
    if (!icon->image.isNull())
        Drawing::centred(
            painter, slot, icon->isMask ? Drawing::tinted(icon->image, color) : icon->image);
    else if (const auto* symbol = images_.symbol(credit.symbol, square, color))
        Drawing::centred(painter, slot, *symbol);
}

void RowPainter::drawTexts(QPainter& painter,
                           const ResultRow& row,
                           const std::string& query,
                           const RowLook& look,
                           int room,
                           RowLines& lines) const {
    const auto& palette = style_.palette;
    const auto& titleFont = row.kind == RowKind::calc ? style_.answer : style_.title;
    const int runningRoom = look.isRunning ? runningSide + gap : 0;
    lines.title.set({.text = row.title,
                     .query = showsMatch(row) ? query : std::string(),
                     .font = titleFont,
                     .width = static_cast<qreal>(room - runningRoom)});
    lines.subtitle.set(
        {.text = row.subtitle,
         .font = style_.subtitle,
         .width = static_cast<qreal>(room),
         .cut = row.kind == RowKind::file ? ShownText::Cut::middle : ShownText::Cut::end});
    const bool hasSubtitle = !lines.subtitle.isEmpty();
    auto upper = part(look, PanelStyle::textStart, PanelStyle::textStart + room);
    auto lower = upper;
    if (hasSubtitle) {
        // The two lines lie close to the row's middle, the title a little larger than half of it.
        const int split = upper.top() + upper.height() * 56 / 100;
        upper.setTop(upper.top() + 5);
        upper.setBottom(split);
        lower.setTop(split);
        lower.setBottom(lower.bottom() - 5);
    }
    lines.title.draw(painter,
                     upper,
                     look.direction,
                     {toQt(look.isSelected ? palette.selectedTitle : palette.title),
                      toQt(look.isSelected ? palette.selectedMatched : palette.matched)});
    if (hasSubtitle) {
        const auto color = toQt(look.isSelected ? palette.selectedSubtitle : palette.subtitle);
        lines.subtitle.draw(painter, lower, look.direction, {color, color});
    }
    if (!look.isRunning)
        return;
    const int after = PanelStyle::textStart + static_cast<int>(lines.title.width()) + gap - 2;
    auto dot = part(look, after, after + runningSide);
    dot.moveCenter({dot.center().x(), upper.center().y() + 1});
    Drawing::roundedRectangle(
        painter,
        QRectF(dot.x(), dot.center().y() - runningSide / 2.0, runningSide, runningSide),
        runningSide / 2.0,
        toQt(palette.running));
}

} // namespace tessarine
