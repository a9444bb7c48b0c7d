#pragma once

#include <QPainter>
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

/// UTF-8 of the services as the widgets take it.
QString toQt(std::string_view text);

} // namespace tessarine::Drawing
