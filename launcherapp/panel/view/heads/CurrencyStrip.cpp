#include "launcherapp/panel/view/heads/CurrencyStrip.h"

#include "LauncherCore/answers/Places.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"

#include <QFontMetrics>
#include <QLocale>
#include <QPainter>
#include <algorithm>

namespace tessarine {

namespace {

constexpr int verticalPadding = 11; ///< above and below the amount
constexpr int textGap = 12;
constexpr int symbolSide = 18;

} // namespace

CurrencyStrip::CurrencyStrip(QWidget* parent, const PanelStyle& style, RowImages& images)
    : SpokenPart(parent), style_(style), images_(images) {}

void CurrencyStrip::setReading(const CurrencyReading& reading) {
    if (reading == reading_)
        return;
    reading_ = reading;
    flag_ =
        Drawing::toQt(reading.flag.empty() ? Places::flagOfCurrency(reading.code) : reading.flag);
    amount_ = QLocale().toString(reading.amount, 'g', QLocale::FloatingPointShortest) +
              QChar(QChar::Nbsp) + Drawing::toQt(reading.code);
    detail_ = Drawing::harmless(reading.detail());
    say(amount_ + QStringLiteral(", ") + detail_);
    update();
}

QSize CurrencyStrip::sizeHint() const {
    return {0, QFontMetrics(style_.answer).height() + 2 * verticalPadding};
}

void CurrencyStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto& palette = style_.palette;
    const auto mirrored = [&](int left, int width) {
        return Drawing::mirrored(layoutDirection(), rect(), left, width);
    };
    const auto slot = mirrored(PanelStyle::edge, PanelStyle::iconSide);
    if (!flag_.isEmpty() && Drawing::canDraw(style_.field, flag_)) {
        painter.setFont(style_.field);
        painter.setPen(toQt(palette.title));
        painter.drawText(slot, Qt::AlignCenter, flag_);
    } else if (const auto* sign = images_.symbol("dollarsign.circle",
                                                 {symbolSide, Drawing::scale(painter)},
                                                 toQt(palette.symbol))) {
        Drawing::centred(painter, slot, *sign);
    }
    const int alignment = Drawing::leading(layoutDirection());
    const int room = width() - PanelStyle::textStart - PanelStyle::edge;
    const int amount = std::min(room, QFontMetrics(style_.answer).horizontalAdvance(amount_) + 1);
    painter.setFont(style_.answer);
    painter.setPen(toQt(palette.title));
    painter.drawText(mirrored(PanelStyle::textStart, amount), alignment, amount_);
    const auto rest =
        mirrored(PanelStyle::textStart + amount + textGap, std::max(0, room - amount - textGap));
    painter.setFont(style_.subtitle);
    painter.setPen(toQt(palette.subtitle));
    painter.drawText(
        rest,
        alignment,
        QFontMetrics(style_.subtitle).elidedText(detail_, Qt::ElideRight, rest.width()));
    Drawing::separator(painter, *this, toQt(palette.separator));
}

} // namespace tessarine
