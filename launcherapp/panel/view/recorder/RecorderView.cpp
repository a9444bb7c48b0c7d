#include "launcherapp/panel/view/recorder/RecorderView.h"

#include "launcherapp/hotkeys/HotkeyRecorder.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <utility>

namespace tessarine {

namespace {

constexpr int margin = 8;     ///< points, around the text
constexpr qreal corner = 5;   ///< points, the radius
constexpr qreal dimmed = 0.6; ///< opacity of what is no chord

} // namespace

RecorderView::RecorderView(HotkeyRecorder& recorder, ChordOf chordOf, QWidget* parent)
    : QWidget(parent), recorder_(recorder), chordOf_(std::move(chordOf)) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    recorder_.onChange = [this] { takeChange(); };
    takeChange();
}

RecorderView::~RecorderView() {
    recorder_.onChange = nullptr;
    recorder_.stop();
}

QSize RecorderView::sizeHint() const {
    constexpr int longestText = 30; // letters: what to do while it records
    const auto metrics = fontMetrics();
    return {metrics.averageCharWidth() * longestText + 2 * margin,
            metrics.height() + 2 * (margin - 2)};
}

QRect RecorderView::clearArea() const {
    if (!recorder_.allowsClear() || recorder_.isRecording() || !recorder_.hasBinding())
        return {};
    const QRect atTheEnd(width() - height(), 0, height(), height());
    return isRightToLeft() ? QRect(0, 0, height(), height()) : atTheEnd;
}

/// Nothing of what is pressed into it may act elsewhere in the window first.
bool RecorderView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && recorder_.isRecording()) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool RecorderView::focusNextPrevChild(bool next) {
    return !recorder_.isRecording() && QWidget::focusNextPrevChild(next);
}

void RecorderView::keyPressEvent(QKeyEvent* event) {
    if (recorder_.isRecording()) {
        if (!event->isAutoRepeat())
            recorder_.keyDown(chordOf_(event->nativeScanCode(), event->nativeModifiers()));
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return recorder_.start();
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return recorder_.clear();
    default:
        QWidget::keyPressEvent(event);
    }
}

void RecorderView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    if (clearArea().contains(event->position().toPoint()))
        return recorder_.clear();
    setFocus(Qt::MouseFocusReason);
    recorder_.start();
}

void RecorderView::focusOutEvent(QFocusEvent* event) {
    recorder_.stop();
    QWidget::focusOutEvent(event);
}

void RecorderView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& colors = palette();
    const bool isMarked = recorder_.isRecording() || hasFocus();
    const qreal line = isMarked ? 2 : 1;
    const QColor edge = colors.color(isMarked ? QPalette::Highlight : QPalette::Mid);
    painter.setPen(QPen(edge, line));
    painter.setBrush(colors.base());
    const qreal half = line / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), corner, corner);

    painter.setPen(colors.color(QPalette::Text));
    const auto clear = clearArea();
    if (!clear.isEmpty())
        painter.drawText(clear, Qt::AlignCenter, QStringLiteral("✕"));
    const bool isChord = recorder_.hasBinding() && !recorder_.isRecording();
    painter.setOpacity(isChord ? 1 : dimmed);
    const auto side = static_cast<int>(
        (Qt::AlignVCenter | (isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft)).toInt());
    const auto text = fontMetrics().elidedText(
        QString::fromStdString(recorder_.text()), Qt::ElideRight, width() - 2 * margin);
    painter.drawText(rect().adjusted(margin, 0, -margin, 0), side, text);
}

void RecorderView::takeChange() {
    setAccessibleDescription(QString::fromStdString(recorder_.text()));
    update();
}

} // namespace tessarine
