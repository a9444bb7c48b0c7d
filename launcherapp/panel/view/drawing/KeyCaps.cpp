#include "launcherapp/panel/view/drawing/KeyCaps.h"

#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"

#include <QFontMetrics>
#include <algorithm>

namespace tessarine {

namespace {

constexpr int padding = 6;
constexpr int gap = 4;
constexpr qreal radius = 5;

int capWidth(const QFontMetrics& metrics, const QString& key) {
    return std::max(KeyCaps::height, metrics.horizontalAdvance(key) + 2 * padding);
}

} // namespace

int KeyCaps::width(const PanelStyle& style, const QStringList& keys) {
    const QFontMetrics metrics(style.small);
    int width = 0;
    for (const auto& key : keys)
        width += capWidth(metrics, key) + gap;
    return std::max(0, width - gap);
}

void KeyCaps::draw(QPainter& painter,
                   const PanelStyle& style,
                   QPoint leftMiddle,
                   const QStringList& keys) {
    const QFontMetrics metrics(style.small);
    int left = leftMiddle.x();
    for (const auto& key : keys) {
        const QRect cap(left, leftMiddle.y() - height / 2, capWidth(metrics, key), height);
        Drawing::roundedRectangle(painter, cap, radius, toQt(style.palette.keyCap));
        painter.setFont(style.small);
        painter.setPen(toQt(style.palette.keyCapText));
        painter.drawText(cap, Qt::AlignCenter, key);
        left += cap.width() + gap;
    }
}

} // namespace tessarine
