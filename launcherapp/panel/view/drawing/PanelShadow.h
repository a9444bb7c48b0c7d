#pragma once

#include <QColor>
#include <QImage>
#include <QMargins>
#include <QPainter>
#include <QRect>

namespace tessarine {

/// The soft shadow around the panel, made once for a density and a colour. Nothing of it lies under
/// the panel, which lets a little of what is behind it through. Main thread only.
class PanelShadow {
public:
    /// How far it reaches beyond the panel.
    static QMargins margins();

    void draw(QPainter& painter, const QRect& panel, qreal cornerRadius, const QColor& color);

private:
    QImage patch_; ///< of a small panel; its middle is stretched
    double scale_ = 0;
    QColor color_;
};

} // namespace tessarine
