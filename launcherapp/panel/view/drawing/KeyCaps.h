#pragma once

#include <QPainter>
#include <QPoint>
#include <QStringList>

namespace tessarine {

struct PanelStyle;

/// Names of keys, each drawn as the cap it is printed on.
namespace KeyCaps {

inline constexpr int height = 19;

int width(const PanelStyle& style, const QStringList& keys);

/// From `leftMiddle` on to the right, in the order of the keys: chords read alike in every script.
void draw(QPainter& painter, const PanelStyle& style, QPoint leftMiddle, const QStringList& keys);

} // namespace KeyCaps
} // namespace tessarine
