#include "launcherapp/panel/view/preview/ClippingPreview.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"

#include <fmt/format.h>

#include <QFontDatabase>
#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr int padding = 14;            ///< above and below
constexpr int leastHeightBeside = 180; ///< a list of one row has no room to see anything in
constexpr int heightBelow = 210;       ///< of the whole part, below the list
constexpr int symbolSide = 16;
constexpr int symbolGap = 8;
constexpr std::size_t mostFactLines = 2; ///< a third would take the room of what is previewed

/// The facts on as many lines as they need, none of them broken; the last line takes what is left
/// over.
std::vector<std::string>
factLines(const std::vector<std::string>& facts, const QFont& font, int width) {
    const QFontMetrics metrics(font);
    std::vector<std::string> lines;
    for (const auto& fact : facts) {
        if (!lines.empty()) {
            const auto together = lines.back() + " · " + fact;
            const bool fits = metrics.horizontalAdvance(Drawing::toQt(together)) <= width;
            if (fits || lines.size() == mostFactLines) {
                lines.back() = together;
                continue;
            }
        }
        lines.push_back(fact);
    }
    return lines;
}

QString spoken(const RowPreview& preview, const QString& text) {
    QString said = text;
    if (const auto* files = std::get_if<RowPreview::Files>(&preview.content)) {
        QStringList names;
        for (const auto& path : files->paths)
            names << Drawing::harmless(Paths::lastPart(path));
        said = names.join(QStringLiteral(", "));
    } else if (std::holds_alternative<RowPreview::Picture>(preview.content)) {
        said = QStringLiteral("Picture");
    }
    for (const auto& fact : preview.facts)
        said += QStringLiteral(", ") + Drawing::harmless(fact);
    return QStringLiteral("Preview: ") + said;
}

} // namespace

ClippingPreview::ClippingPreview(QWidget* parent, const PanelStyle& style, RowImages& images)
    : SpokenPart(parent), style_(style), images_(images) {}

void ClippingPreview::setPreview(RowPreview preview) {
    preview_ = std::move(preview);
    files_.clear();
    text_.clear();
    if (const auto* text = std::get_if<RowPreview::Text>(&preview_.content))
        text_ = Drawing::toQt(ShownText::harmlessLines(text->text));
    say(spoken(preview_, text_));
    update();
}

void ClippingPreview::setPlacement(ClipPreviewPlacement placement) {
    if (std::exchange(placement_, placement) != placement)
        update();
}

QSize ClippingPreview::sizeHint() const {
    return {0, heightBelow};
}

QSize ClippingPreview::minimumSizeHint() const {
    return {0, leastHeightBeside};
}

void ClippingPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawEdge(painter);
    const auto inside =
        drawFacts(painter, rect().adjusted(PanelStyle::edge, padding, -PanelStyle::edge, -padding));
    painter.setClipRect(inside);
    if (const auto* text = std::get_if<RowPreview::Text>(&preview_.content))
        drawText(painter, *text, inside);
    else if (const auto* picture = std::get_if<RowPreview::Picture>(&preview_.content))
        drawPicture(painter, *picture, inside);
    else if (const auto* files = std::get_if<RowPreview::Files>(&preview_.content))
        drawFiles(painter, *files, inside);
}

/// At the bottom of the place; gives what is left above them.
QRect ClippingPreview::drawFacts(QPainter& painter, QRect place) {
    const auto lines = factLines(preview_.facts, style_.small, place.width());
    const int lineHeight = QFontMetrics(style_.small).height();
    const int height = lineHeight * static_cast<int>(lines.size());
    if (lines.empty() || place.height() <= 2 * height)
        return place;
    const auto color = toQt(style_.palette.credit);
    QRect line(place.left(), place.bottom() + 1 - height, place.width(), lineHeight);
    place.setBottom(line.top() - padding / 2);
    facts_.resize(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        facts_[i].set({.text = lines[i],
                       .query = {},
                       .font = style_.small,
                       .width = static_cast<qreal>(line.width())});
        facts_[i].draw(painter, line, layoutDirection(), {color, color});
        line.translate(0, lineHeight);
    }
    return place;
}

/// As many whole lines as there is room for; a line that is cut in half reads like a fault.
void ClippingPreview::drawText(QPainter& painter,
                               const RowPreview::Text& text,
                               const QRect& place) {
    auto font = style_.subtitle;
    if (text.isCode) {
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPixelSize(style_.subtitle.pixelSize());
    }
    painter.setPen(toQt(style_.palette.title));
    qreal y = place.top();
    for (const auto& paragraph : text_.split(QLatin1Char('\n'))) {
        QTextLayout layout(paragraph, font);
        QTextOption option;
        option.setTextDirection(Qt::LayoutDirectionAuto);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        qreal height = 0;
        for (auto line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(place.width());
            if (y + height + line.height() > place.bottom() + 1)
                break;
            line.setPosition({0, height});
            height += line.height();
            line.draw(&painter, QPointF(place.left(), y));
        }
        layout.endLayout();
        y += std::max<qreal>(height, QFontMetricsF(font).height());
        if (y >= place.bottom())
            return;
    }
}

void ClippingPreview::drawPicture(QPainter& painter,
                                  const RowPreview::Picture& picture,
                                  const QRect& place) {
    const auto& shown = picture_.image(picture.image,
                                       {.size = place.size(),
                                        .scale = Drawing::scale(painter),
                                        .fit = FittedPicture::Fit::unscaled,
                                        .tint = toQt(style_.palette.title)});
    if (!shown.isNull())
        Drawing::centred(painter, place, shown);
}

void ClippingPreview::drawFiles(QPainter& painter,
                                const RowPreview::Files& files,
                                const QRect& place) {
    const int lineHeight = QFontMetrics(style_.subtitle).height() + 8;
    const int fit = std::max(1, place.height() / lineHeight);
    const int count = static_cast<int>(files.paths.size());
    // The last line that fits says how many don't.
    const int named = count <= fit ? count : fit - 1;
    files_.resize(static_cast<std::size_t>(std::min(count, fit)));
    for (int i = 0; i < std::min(count, fit); ++i) {
        const bool isNamed = i < named;
        const QRect line(place.left(), place.top() + i * lineHeight, place.width(), lineHeight);
        const auto mirrored = [&](int left, int width) {
            return Drawing::mirrored(layoutDirection(), line, line.left() + left, width);
        };
        const auto color = toQt(isNamed ? style_.palette.title : style_.palette.subtitle);
        if (const auto* symbol = images_.symbol(isNamed ? "doc" : "",
                                                {symbolSide, Drawing::scale(painter)},
                                                toQt(style_.palette.symbol)))
            Drawing::centred(painter, mirrored(0, symbolSide), *symbol);
        const int left = symbolSide + symbolGap;
        auto& text = files_[static_cast<std::size_t>(i)];
        text.set({.text = isNamed ? std::string(
                                        Paths::lastPart(files.paths[static_cast<std::size_t>(i)]))
                                  : fmt::format("and {} more", count - named),
                  .query = {},
                  .font = style_.subtitle,
                  .width = static_cast<qreal>(line.width() - left),
                  .cut = ShownText::Cut::middle});
        text.draw(painter, mirrored(left, line.width() - left), layoutDirection(), {color, color});
    }
}

void ClippingPreview::drawEdge(QPainter& painter) const {
    const auto color = toQt(style_.palette.separator);
    switch (placement_) {
    case ClipPreviewPlacement::right:
        painter.fillRect(QRect(0, padding, 1, height() - 2 * padding), color);
        break;
    case ClipPreviewPlacement::left:
        painter.fillRect(QRect(width() - 1, padding, 1, height() - 2 * padding), color);
        break;
    case ClipPreviewPlacement::below:
        painter.fillRect(QRect(PanelStyle::edge, 0, width() - 2 * PanelStyle::edge, 1), color);
        break;
    }
}

} // namespace tessarine
