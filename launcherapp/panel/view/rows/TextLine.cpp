#include "launcherapp/panel/view/rows/TextLine.h"

#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/Drawing.h"

#include <QFontMetricsF>
#include <QTextBoundaryFinder>
#include <QTextOption>
#include <algorithm>
#include <cmath>

namespace tessarine {

namespace {

constexpr qreal underlineThickness = 1.5;
constexpr qreal underlineDistance = 2.5; ///< below the baseline
constexpr qreal underlineStrength = 0.6;

const QString ellipsis = QStringLiteral("…");

} // namespace

void TextLine::set(Content content) {
    if (content == content_ && layout_)
        return;
    content_ = std::move(content);
    matched_.clear();
    const auto line = ShownText::matching(content_.text, content_.query);
    const auto units = [&](std::size_t bytes) {
        return static_cast<int>(Drawing::toQt(std::string_view(line.text).substr(0, bytes)).size());
    };
    for (const auto& range : line.matched)
        matched_.push_back({units(range.begin), units(range.end) - units(range.begin)});
    shape(Drawing::toQt(line.text));
}

void TextLine::shape(const QString& text) {
    if (!layout_)
        layout_ = std::make_unique<QTextLayout>();
    QTextOption option;
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setWrapMode(QTextOption::NoWrap);
    option.setUseDesignMetrics(false);
    layout_->setTextOption(option);
    layout_->setFont(content_.font);
    layout_->setCacheEnabled(true);
    layout_->setText(text);
    layout_->beginLayout();
    auto line = layout_->createLine();
    layout_->endLayout();
    width_ = line.isValid() ? line.naturalTextWidth() : 0;
    if (width_ <= content_.width || text.size() <= 1)
        return;
    const auto shorter = cut(text);
    if (shorter == text)
        return;
    const auto kept = static_cast<int>(shorter.size()) - 1;
    // Only a cut at the end leaves positions as they were.
    if (content_.elide != Qt::ElideRight)
        matched_.clear();
    std::erase_if(matched_, [&](const Piece& piece) { return piece.start >= kept; });
    for (auto& piece : matched_)
        piece.length = std::min(piece.length, kept - piece.start);
    shape(shorter);
}

/// As many whole characters as fit beside the ellipsis, by halves.
QString TextLine::cut(const QString& text) const {
    std::vector<qsizetype> ends{0};
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    while (characters.toNextBoundary() != -1)
        ends.push_back(characters.position());
    const QFontMetricsF metrics(content_.font);
    const auto shortened = [&](std::size_t kept) {
        if (content_.elide == Qt::ElideRight)
            return text.left(ends[kept]) + ellipsis;
        const auto tail = kept / 2;
        return text.left(ends[kept - tail]) + ellipsis + text.mid(ends[ends.size() - 1 - tail]);
    };
    std::size_t fits = 0;
    std::size_t tooMany = ends.size() - 1;
    while (tooMany - fits > 1) {
        const auto middle = (fits + tooMany) / 2;
        if (metrics.horizontalAdvance(shortened(middle)) <= content_.width)
            fits = middle;
        else
            tooMany = middle;
    }
    // A name cut after a blank would seem to end in nothing.
    auto result = shortened(fits);
    while (content_.elide == Qt::ElideRight && result.size() > 2 &&
           result.at(result.size() - 2).isSpace())
        result.remove(result.size() - 2, 1);
    return result;
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
