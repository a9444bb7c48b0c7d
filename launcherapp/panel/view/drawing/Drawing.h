#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <string_view>

/// Small things that all parts of the panel draw alike.
namespace tessarine::Drawing {

/// Device pixels per logical pixel where the painter draws, pictures included.
double scale(const QPainter& painter);

/// The nearest place that begins on a whole device pixel, so that a picture is not blurred there.
QPointF aligned(const QPainter& painter, QPointF place);

/// A line drawing that is a mask, in a colour; `picture` is drawn at its own size.
QImage tinted(const QImage& mask, const QColor& color);

/// A picture in the middle of the rectangle.
void centred(QPainter& painter, const QRectF& rectangle, const QImage& picture);

void roundedRectangle(QPainter& painter, const QRectF& rectangle, qreal radius, const QColor& fill);

/// A frame of one logical pixel that lies wholly inside the rectangle.
void roundedFrame(QPainter& painter, const QRectF& rectangle, qreal radius, const QColor& color);

/// A line along the lower edge, from text edge to text edge.
void separator(QPainter& painter, const QWidget& widget, const QColor& color);

/// Whether some font of this machine has all of the text, which matters for flags and other emoji.
bool canDraw(const QFont& font, const QString& text);

/// The first letter of a name in the middle of a place, white and half as high: for a name without
/// a picture. What is below it is `Palettes::monogram`'s colour.
void initial(QPainter& painter, const QRect& place, QFont font, std::string_view name);

/// The part of an area that begins at `left`, as high as that; on the other side where the text
/// runs from the right.
QRect mirrored(Qt::LayoutDirection direction, const QRect& area, int left, int width);

/// Flags for a text on one line that begins where reading does, in the middle of the height.
int leading(Qt::LayoutDirection direction);

/// UTF-8 of the services as the widgets take it.
QString toQt(std::string_view text);

/// Foreign text as one line that can't harm what stands around it, as the widgets take it.
QString harmless(std::string_view text);

} // namespace tessarine::Drawing
