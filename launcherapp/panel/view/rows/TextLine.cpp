#include "launcherapp/panel/view/rows/TextLine.h"

#include "LauncherCore/text/Graphemes.h"
#include "launcherapp/panel/view/drawing/Drawing.h"

#include <QFontMetricsF>
#include <QTextOption>
#include <algorithm>
#include <cmath>

namespace tessarine {

namespace {

constexpr qreal underlineThickness = 1.25;
constexpr qreal underlineDistance = 2.5; ///< below the baseline
constexpr qreal underlineStrength = 0.5;

} // namespace

void TextLine::set(Content content) {
    if (content == content_ && layout_)
        return;
    content_ = std::move(content);
    matched_.clear();
    const auto line = ShownText::matching(content_.text, content_.query);
    auto shown = line.text;
    shape(shown);
    if (width_ > content_.width) {
        shown = cut(shown);
        shape(shown);
    }
    const bool isCut = shown != line.text;
    // Only a cut at the end leaves positions as they were; the ellipsis stands for what was there.
    if (isCut && content_.cut != ShownText::Cut::end)
        return;
    const auto kept = isCut ? shown.size() - std::string_view("…").size() : shown.size();
    const auto units = [&](std::size_t bytes) {
        return static_cast<int>(
            Drawing::toQt(std::string_view(shown).substr(0, std::min(bytes, kept))).size());
    };
    for (const auto& range : line.matched) {
        if (range.begin < kept)
            matched_.push_back({units(range.begin), units(range.end) - units(range.begin)});
    }
}

void TextLine::shape(const std::string& text) {
    if (!layout_)
        layout_ = std::make_unique<QTextLayout>();
    QTextOption option;
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setWrapMode(QTextOption::NoWrap);
    layout_->setTextOption(option);
    layout_->setFont(content_.font);
    layout_->setCacheEnabled(true);
    layout_->setText(Drawing::toQt(text));
    layout_->beginLayout();
    const auto line = layout_->createLine();
    layout_->endLayout();
    width_ = line.isValid() ? line.naturalTextWidth() : 0;
}

/// As many whole characters as fit beside the ellipsis, by halves.
std::string TextLine::cut(const std::string& text) const {
    const QFontMetricsF metrics(content_.font);
    std::size_t fits = 0;
    auto tooMany = Graphemes::count(text);
    while (tooMany - fits > 1) {
        const auto middle = (fits + tooMany) / 2;
        const auto shorter = ShownText::shortened(text, middle, content_.cut);
        if (metrics.horizontalAdvance(Drawing::toQt(shorter)) <= content_.width)
            fits = middle;
        else
            tooMany = middle;
    }
    return ShownText::shortened(text, fits, content_.cut);
}

void TextLine::draw(QPainter& painter,
                    const QRectF& rectangle,
                    Qt::LayoutDirection direction,
                    const Colors& colors) const {
    if (!layout_ || layout_->lineCount() == 0)
        return;
    const auto line = layout_->lineAt(0);
    const qreal x = direction == Qt::RightToLeft ? rectangle.right() - width_ : rectangle.left();
    // On a whole pixel, so that the letters of all rows have the same edges.
    const qreal y = std::round(rectangle.top() + (rectangle.height() - line.height()) / 2);
    // A line that runs from the right is laid against the far end of its own, endless width.
    const qreal offset = line.naturalTextRect().left();
    const QPointF origin(x - offset, y);

    QList<QTextLayout::FormatRange> marked;
    for (const auto& piece : matched_) {
        QTextLayout::FormatRange range;
        range.start = piece.start;
        range.length = piece.length;
        range.format.setForeground(colors.matched);
        marked.append(range);
    }
    painter.setPen(colors.text);
    layout_->draw(&painter, origin, marked);

    auto underline = colors.matched;
    underline.setAlphaF(static_cast<float>(underline.alphaF() * underlineStrength));
    for (const auto& piece : matched_) {
        const qreal from = line.cursorToX(piece.start);
        const qreal to = line.cursorToX(piece.start + piece.length);
        const qreal below = origin.y() + line.ascent() + underlineDistance;
        painter.fillRect(
            QRectF(origin.x() + std::min(from, to), below, std::abs(to - from), underlineThickness),
            underline);
    }
}

} // namespace tessarine
