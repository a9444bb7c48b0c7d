#include "launcherapp/panel/view/heads/PersonHead.h"

#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

namespace tessarine {

namespace {

constexpr int photoSide = 52;
constexpr int verticalPadding = 10; ///< above and below the photo
constexpr int textGap = 16;         ///< from the photo to the name
constexpr int lineGap = 3;

} // namespace

PersonHead::PersonHead(QWidget* parent, const PanelStyle& style)
    : SpokenPart(parent), style_(style) {}

void PersonHead::setPerson(const PersonCard& person) {
    person_ = person;
    auto spoken = ShownText::harmless(person.name);
    if (!person.line.empty())
        spoken += ", " + ShownText::harmless(person.line);
    say(Drawing::toQt(spoken));
    update();
}

QSize PersonHead::sizeHint() const {
    return {0, photoSide + 2 * verticalPadding};
}

void PersonHead::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto& palette = style_.palette;
    const auto mirrored = [&](int left, int top, int width, int height) {
        return Drawing::mirrored(
            layoutDirection(), QRect(0, top, this->width(), height), left, width);
    };
    drawPhoto(painter, mirrored(PanelStyle::edge, verticalPadding, photoSide, photoSide));

    const int left = PanelStyle::edge + photoSide + textGap;
    const int room = width() - left - PanelStyle::edge;
    name_.set({.text = person_.name,
               .query = {},
               .font = style_.heading,
               .width = static_cast<qreal>(room)});
    line_.set({.text = person_.line,
               .query = {},
               .font = style_.subtitle,
               .width = static_cast<qreal>(room)});
    const int nameHeight = QFontMetrics(style_.heading).height();
    const int lineHeight = line_.isEmpty() ? 0 : QFontMetrics(style_.subtitle).height() + lineGap;
    const int top = (height() - nameHeight - lineHeight) / 2;
    const auto title = toQt(palette.title);
    const auto subtitle = toQt(palette.subtitle);
    name_.draw(painter, mirrored(left, top, room, nameHeight), layoutDirection(), {title, title});
    if (lineHeight > 0)
        line_.draw(painter,
                   mirrored(left, top + nameHeight + lineGap, room, lineHeight - lineGap),
                   layoutDirection(),
                   {subtitle, subtitle});
    Drawing::separator(painter, *this, toQt(palette.separator));
}

/// Round; without a photo the first letter of the name, as applications without an icon have it.
void PersonHead::drawPhoto(QPainter& painter, const QRect& place) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const bool isDrawn = person_.photo && !person_.photo->isEmpty() && !person_.photo->isMask;
    if (isDrawn) {
        const auto& photo = photo_.image(*person_.photo,
                                         {.size = place.size(),
                                          .scale = Drawing::scale(painter),
                                          .fit = FittedPicture::Fit::filling,
                                          .tint = {}});
        // As a brush, since a clip has no soft edge.
        QBrush brush(photo);
        brush.setTransform(QTransform::fromTranslate(place.x(), place.y()));
        painter.setBrush(brush);
        painter.drawEllipse(place);
    } else {
        painter.setBrush(toQt(Palettes::monogram(ShownText::harmless(person_.name))));
        painter.drawEllipse(place);
        Drawing::initial(painter, place, style_.answer, person_.name);
    }
    painter.restore();
}

} // namespace tessarine
