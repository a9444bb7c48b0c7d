#include "launcherapp/panel/view/drawing/Drawing.h"

#include "LauncherCore/text/Graphemes.h"
#include "launcherapp/panel/appearance/ShownText.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"

#include <QFontMetrics>
#include <QImage>
#include <QStyle>
#include <algorithm>
#include <cmath>

namespace tessarine {

double Drawing::scale(const QPainter& painter) {
    // Of the device that is drawn to in the end: a widget drawn into a picture has its own.
    return painter.deviceTransform().m11();
}

QPointF Drawing::aligned(const QPainter& painter, QPointF place) {
    const auto transform = painter.deviceTransform();
    const auto device = transform.map(place);
    return transform.inverted().map(QPointF(std::round(device.x()), std::round(device.y())));
}

QImage Drawing::tinted(const QImage& mask, const QColor& color) {
    if (mask.isNull())
        return mask;
    auto picture = mask;
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRectF(QPointF(), picture.deviceIndependentSize()), color);
    return picture;
}

void Drawing::centred(QPainter& painter, const QRectF& rectangle, const QImage& picture) {
    const auto size = picture.deviceIndependentSize();
    const QPointF corner(rectangle.center().x() - size.width() / 2,
                         rectangle.center().y() - size.height() / 2);
    painter.drawImage(aligned(painter, corner), picture);
}

void Drawing::roundedRectangle(QPainter& painter,
                               const QRectF& rectangle,
                               qreal radius,
                               const QColor& fill) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rectangle, radius, radius);
    painter.restore();
}

void Drawing::roundedFrame(QPainter& painter,
                           const QRectF& rectangle,
                           qreal radius,
                           const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rectangle.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
    painter.restore();
}

void Drawing::separator(QPainter& painter, const QWidget& widget, const QColor& color) {
    painter.fillRect(QRect(PanelStyle::edge,
                           widget.height() - PanelStyle::separatorHeight,
                           widget.width() - 2 * PanelStyle::edge,
                           PanelStyle::separatorHeight),
                     color);
}

bool Drawing::canDraw(const QFont& font, const QString& text) {
    const QFontMetrics metrics(font);
    const auto scalars = text.toUcs4();
    return std::ranges::all_of(scalars, [&](char32_t scalar) {
        // Joiners and the like only shape what is beside them.
        return QChar::category(scalar) == QChar::Other_Format ||
               QChar::category(scalar) == QChar::Mark_NonSpacing || metrics.inFontUcs4(scalar);
    });
}

void Drawing::initial(QPainter& painter, const QRect& place, QFont font, std::string_view name) {
    const auto shown = ShownText::harmless(name);
    font.setPixelSize(place.height() / 2);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(place, Qt::AlignCenter, toQt(Graphemes::prefix(shown, 1)).toUpper());
}

QRect Drawing::mirrored(Qt::LayoutDirection direction, const QRect& area, int left, int width) {
    return QStyle::visualRect(direction, area, QRect(left, area.top(), width, area.height()));
}

int Drawing::leading(Qt::LayoutDirection direction) {
    return static_cast<int>(QStyle::visualAlignment(direction, Qt::AlignLeft) | Qt::AlignVCenter);
}

QString Drawing::toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString Drawing::harmless(std::string_view text) {
    return toQt(ShownText::harmless(text));
}

} // namespace tessarine
