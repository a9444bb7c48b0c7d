#include "launcherapp/panel/view/ShortcutSheet.h"

#include "launcherapp/panel/view/KeyTranslation.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/KeyCaps.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace tessarine {

namespace {

constexpr int padding = 20;
constexpr int titleHeight = 40;
constexpr int lineHeight = 32;
constexpr int chordGap = 12;
constexpr int textGap = 24;

} // namespace

ShortcutSheet::ShortcutSheet(QWidget* parent, const PanelStyle& style)
    : QWidget(parent), style_(style) {
    setAccessibleName(QStringLiteral("Keyboard shortcuts"));
    hide();
}

void ShortcutSheet::showEvent(QShowEvent* event) {
    QStringList spoken;
    for (const auto& line : lines()) {
        for (const auto& chord : line.chords)
            spoken << chord.join(QLatin1Char('+')) + QStringLiteral(": ") + line.label;
    }
    setAccessibleDescription(spoken.join(QStringLiteral(". ")));
    QWidget::showEvent(event);
    // Nothing in it can be reached with the keys, so a screen reader would never come to it by
    // itself.
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

std::vector<ShortcutSheet::Line> ShortcutSheet::lines() const {
    std::vector<Line> lines;
    for (const auto& chord : PanelKeys::chords()) {
        if (offers && !offers(chord.action))
            continue;
        auto keys = KeyTranslation::keyNames(chord);
        if (chord.action == PanelKeyAction::digit) {
            if (KeyTranslation::digit(chord) > 1)
                continue;
            keys << QStringLiteral("…") << QStringLiteral("9");
        }
        const auto label = Drawing::toQt(chord.label);
        const auto same = std::ranges::find(lines, label, &Line::label);
        if (same == lines.end())
            lines.push_back({label, {keys}});
        else
            same->chords.push_back(keys);
    }
    return lines;
}

int ShortcutSheet::chordsWidth(const Line& line) const {
    int width = 0;
    for (const auto& chord : line.chords)
        width += KeyCaps::width(style_, chord) + chordGap;
    return width - chordGap;
}

QSize ShortcutSheet::wantedSize() const {
    const QFontMetrics metrics(style_.title);
    int width = 0;
    const auto all = lines();
    for (const auto& line : all)
        width = std::max(width,
                         metrics.horizontalAdvance(line.label) + 1 + textGap + chordsWidth(line));
    return {width + 2 * padding, titleHeight + static_cast<int>(all.size()) * lineHeight + padding};
}

void ShortcutSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto& palette = style_.palette;
    Drawing::roundedRectangle(painter, rect(), PanelStyle::menuRadius, toQt(palette.menu));
    Drawing::roundedFrame(painter, rect(), PanelStyle::menuRadius, toQt(palette.border));
    painter.setFont(style_.subtitle);
    painter.setPen(toQt(palette.subtitle));
    const QRect title(padding, 4, width() - 2 * padding, titleHeight);
    painter.drawText(title, Drawing::leading(layoutDirection()), accessibleName());
    int top = titleHeight;
    for (const auto& line : lines()) {
        drawLine(painter, line, QRect(padding, top, width() - 2 * padding, lineHeight));
        top += lineHeight;
    }
}

void ShortcutSheet::drawLine(QPainter& painter, const Line& line, const QRect& place) const {
    const int chords = chordsWidth(line);
    const auto mirrored = [&](int left, int width) {
        return Drawing::mirrored(layoutDirection(), place, left, width);
    };
    const auto label = mirrored(place.left(), place.width() - chords - textGap);
    painter.setFont(style_.title);
    painter.setPen(toQt(style_.palette.menuText));
    painter.drawText(
        label,
        Drawing::leading(layoutDirection()),
        QFontMetrics(style_.title).elidedText(line.label, Qt::ElideRight, label.width()));
    auto at = mirrored(place.right() + 1 - chords, chords).left();
    for (const auto& chord : line.chords) {
        KeyCaps::draw(painter, style_, {at, place.center().y()}, chord);
        at += KeyCaps::width(style_, chord) + chordGap;
    }
}

} // namespace tessarine
