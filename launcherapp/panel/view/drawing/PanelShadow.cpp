#include "launcherapp/panel/view/drawing/PanelShadow.h"

#include "launcherapp/panel/view/drawing/Drawing.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tessarine {

namespace {

constexpr qreal depth = 9;   ///< how far the shadow is shifted down
constexpr qreal spread = 13; ///< of the bell that its edge follows
constexpr int reach = 30;    ///< where nothing of it is left

/// Distance from a rounded rectangle, negative inside.
qreal distance(QPointF place, const QRectF& shape, qreal radius) {
    const qreal dx = std::abs(place.x() - shape.center().x()) - shape.width() / 2 + radius;
    const qreal dy = std::abs(place.y() - shape.center().y()) - shape.height() / 2 + radius;
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) -
           radius;
}

/// One pixel of the shadow, from 0 to 1.
qreal strength(QPointF place, const QRectF& panel, qreal radius) {
    // Sharp along the panel's own edge, where it also stands in for a contact shadow.
    const qreal outside = std::clamp(distance(place, panel, radius) + 0.5, 0.0, 1.0);
    const qreal away =
        std::max(0.0, distance(place, panel.translated(0, depth), radius) + spread / 2);
    return outside * std::exp(-(away * away) / (2 * spread * spread));
}

} // namespace

QMargins PanelShadow::margins() {
    return {reach, reach - static_cast<int>(depth), reach, reach + static_cast<int>(depth)};
}

void PanelShadow::draw(QPainter& painter,
                       const QRect& panel,
                       qreal cornerRadius,
                       const QColor& color) {
    const auto margins = PanelShadow::margins();
    // Beyond this far from a corner the shadow of an edge is the same all along.
    const int corner = reach + 12;
    const QRect small(margins.left(), margins.top(), 2 * corner + 2, 2 * corner + 2);
    const double scale = Drawing::scale(painter);
    if (patch_.isNull() || scale != scale_ || color != color_) {
        scale_ = scale;
        color_ = color;
        const auto whole = small.marginsAdded(margins);
        patch_ = QImage(QSize(static_cast<int>(std::ceil(whole.width() * scale)),
                              static_cast<int>(std::ceil(whole.height() * scale))),
                        QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < patch_.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(patch_.scanLine(y));
            for (int x = 0; x < patch_.width(); ++x) {
                const QPointF place((x + 0.5) / scale, (y + 0.5) / scale);
                const qreal alpha = color.alphaF() * strength(place, small, cornerRadius);
                line[x] = qPremultiply(qRgba(color.red(),
                                             color.green(),
                                             color.blue(),
                                             static_cast<int>(std::lround(alpha * 255))));
            }
        }
    }
    // Nine parts: the corners as they are, the edges stretched between them.
    const auto outer = panel.marginsAdded(margins);
    const std::array<int, 4> toX{
        outer.left(), panel.left() + corner, panel.right() + 1 - corner, outer.right() + 1};
    const std::array<int, 4> toY{
        outer.top(), panel.top() + corner, panel.bottom() + 1 - corner, outer.bottom() + 1};
    const int patchWidth = small.width() + margins.left() + margins.right();
    const int patchHeight = small.height() + margins.top() + margins.bottom();
    const std::array<int, 4> fromX{
        0, margins.left() + corner, patchWidth - margins.right() - corner, patchWidth};
    const std::array<int, 4> fromY{
        0, margins.top() + corner, patchHeight - margins.bottom() - corner, patchHeight};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            if (row == 1 && column == 1)
                continue; // under the panel
            const QRectF to(
                toX[column], toY[row], toX[column + 1] - toX[column], toY[row + 1] - toY[row]);
            const QRectF from(fromX[column] * scale,
                              fromY[row] * scale,
                              (fromX[column + 1] - fromX[column]) * scale,
                              (fromY[row + 1] - fromY[row]) * scale);
            painter.drawImage(to, patch_, from);
        }
    }
}

} // namespace tessarine
