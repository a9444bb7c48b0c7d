#include "launcherapp/platform/linux/panel/QtPanelWindow.h"

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtGeometry.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QScreen>
#include <QWidget>
#include <utility>

namespace tessarine {

namespace {

template <typename... Arguments>
void tell(const std::function<void(Arguments...)>& event, const Arguments&... arguments) {
    if (event)
        event(arguments...);
}

} // namespace

/// What happens to the widget, and the window's state that follows from it.
class QtPanelWindow::Watch : public QObject {
public:
    Watch(QWidget& widgetToWatch,
          QWidget& fieldToFocus,
          std::unique_ptr<PanelSurface> surfaceBelow,
          QtPanelWindow& window)
        : widget(widgetToWatch), field(fieldToFocus), surface(std::move(surfaceBelow)) {
        frame = QtGeometry::rectangle(widget.geometry());
        widget.setAttribute(Qt::WA_QuitOnClose, false);
        surface->prepare(
            widget,
            {.lostKeyboard = [this] { loseKeyboard(); },
             .keyboardRefused = [this] { tell(events.keyboardRefused); },
             .keyboardCame = [this] { tell(events.keyboardCame); },
             .keyArrives = [&window](std::uint32_t scanCode) { tell(window.keyArrives, scanCode); },
             .mixesChanged = [&window] { tell(window.mixesChanged); }});
        widget.installEventFilter(this);
        watchScreens();
    }

    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
        case QEvent::Paint:
            awaitFlush();
            return false;
        case QEvent::MouseButtonPress:
            beginDrag(static_cast<const QMouseEvent&>(*event));
            return false;
        case QEvent::MouseMove:
            drag(static_cast<const QMouseEvent&>(*event));
            return false;
        case QEvent::MouseButtonRelease:
            endDrag();
            return false;
        case QEvent::Close:
            // The window lives as long as the program: somebody else's wish that it close is a
            // wish that it go away.
            event->ignore();
            loseKeyboard();
            return true;
        default:
            return false;
        }
    }

    void place(const Rectangle& wanted) {
        const bool moves = frame.x != wanted.x || frame.y != wanted.y;
        frame = wanted;
        surface->setFrame(withShadow());
        if (moves)
            tell(events.moved, frame);
    }

    void show() {
        losesOnce_ = true;
        paintsOnce_ = true;
        field.setFocus(Qt::OtherFocusReason);
        if (widget.isVisible())
            widget.update(); // nothing else would draw, and `painted` is due after each show
        surface->show();
    }

    void hide() {
        losesOnce_ = false;
        paintsOnce_ = false;
        if (stopDrag())
            tell(events.moved, frame);
        surface->hide();
    }

    QWidget& widget;
    QWidget& field;
    std::unique_ptr<PanelSurface> surface;
    Events events;
    /// What was asked for or dragged to. The widget's own geometry goes back for a moment when the
    /// display confirms an earlier change after a later one was made.
    Rectangle frame;

private:
    /// The widget's frame: its contents margins hold the shadow around the panel.
    Rectangle withShadow() const {
        const auto margins = widget.contentsMargins();
        return {.x = frame.x - margins.left(),
                .y = frame.y - margins.top(),
                .width = frame.width + margins.left() + margins.right(),
                .height = frame.height + margins.top() + margins.bottom()};
    }

    void loseKeyboard() {
        if (std::exchange(losesOnce_, false))
            tell(events.lostKeyboard);
    }

    /// The flush follows in the same call of Qt's that sends the paint event, so what is posted
    /// here finds it done.
    void awaitFlush() {
        if (!std::exchange(paintsOnce_, false))
            return;
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!widget.isVisible())
                    return;
                surface->finishDrawing();
                tell(events.painted);
            },
            Qt::QueuedConnection);
    }

    // The window is dragged by whatever part of it doesn't want the press: Qt hands such a press
    // up to the top-level widget. No window manager knows the window, so it moves itself.
    void beginDrag(const QMouseEvent& press) {
        if (press.button() != Qt::LeftButton)
            return;
        const auto at = press.globalPosition();
        heldAt_ = at;
        grip_ = at - QPointF(frame.x, frame.y);
    }

    void drag(const QMouseEvent& move) {
        if (!heldAt_)
            return;
        const auto at = move.globalPosition();
        if (!dragged_) {
            if ((at - *heldAt_).manhattanLength() < QApplication::startDragDistance())
                return;
            if (surface->startDrag())
                return heldAt_.reset();
            dragged_ = true;
        }
        const auto topLeft = at - grip_;
        frame.x = topLeft.x();
        frame.y = topLeft.y();
        surface->setFrame(withShadow());
    }

    void endDrag() {
        if (!stopDrag())
            return;
        surface->setFrame(withShadow()); // it may have come to another screen
        // Told once, since whoever listens keeps the place in a file.
        tell(events.moved, frame);
    }

    /// Whether there was one that moved the window.
    bool stopDrag() {
        heldAt_.reset();
        if (!std::exchange(dragged_, false))
            return false;
        surface->endDrag();
        return true;
    }

    void watchScreens() {
        connect(qApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
            watchScreen(screen);
            tellScreens();
        });
        connect(qApp, &QGuiApplication::screenRemoved, this, [this] { tellScreens(); });
        connect(qApp, &QGuiApplication::primaryScreenChanged, this, [this] { tellScreens(); });
        for (const auto* screen : QGuiApplication::screens())
            watchScreen(screen);
    }

    void watchScreen(const QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, [this] { tellScreens(); });
        connect(screen, &QScreen::availableGeometryChanged, this, [this] { tellScreens(); });
    }

    /// One change of the layout comes as several signals, the first of them while the list of
    /// screens is still the old one.
    void tellScreens() {
        if (std::exchange(screensDue_, true))
            return;
        QMetaObject::invokeMethod(
            this,
            [this] {
                screensDue_ = false;
                tell(events.screensChanged);
            },
            Qt::QueuedConnection);
    }

    bool losesOnce_ = false;  ///< shown, and the loss of the keyboard not told yet
    bool paintsOnce_ = false; ///< shown, and not drawn yet
    bool screensDue_ = false;
    std::optional<QPointF> heldAt_; ///< where the button went down
    QPointF grip_;                  ///< the same from the window's top left
    bool dragged_ = false;
};

QtPanelWindow::QtPanelWindow(QWidget& widget, QWidget& field, std::unique_ptr<PanelSurface> surface)
    : watch_(std::make_unique<Watch>(widget, field, std::move(surface), *this)) {}

QtPanelWindow::~QtPanelWindow() {
    watch_->surface->hide();
}

void QtPanelWindow::setEvents(Events events) {
    watch_->events = std::move(events);
}

std::vector<Screen> QtPanelWindow::screens() const {
    return watch_->surface->screens();
}

std::optional<Point> QtPanelWindow::pointer() const {
    return watch_->surface->pointer();
}

Rectangle QtPanelWindow::frame() const {
    return watch_->frame;
}

void QtPanelWindow::setFrame(const Rectangle& frame) {
    watch_->place(frame);
}

void QtPanelWindow::show() {
    watch_->show();
}

void QtPanelWindow::hide() {
    if (isVisible())
        tell(goesAway);
    watch_->hide();
}

bool QtPanelWindow::isVisible() const {
    return watch_->widget.isVisible();
}

bool QtPanelWindow::hasKeyboard() const {
    return watch_->surface->hasKeyboard();
}

std::optional<double> QtPanelWindow::displayedHeight() const {
    const auto height = watch_->surface->displayedHeight();
    if (!height)
        return std::nullopt;
    const auto margins = watch_->widget.contentsMargins();
    return *height - margins.top() - margins.bottom();
}

/// Draws into an image: it lays out, shapes text and fills the caches of glyphs and icons as the
/// window itself would, and can neither flash on a display that doesn't mix nor take a key.
void QtPanelWindow::drawHidden() {
    auto& widget = watch_->widget;
    if (widget.isVisible())
        return;
    tell(drawsHidden);
    const double scale = widget.devicePixelRatioF();
    QImage image((QSizeF(widget.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return; // a widget without a size has nothing to draw
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    widget.render(&image);
}

bool QtPanelWindow::mixes() const {
    return watch_->surface->mixes();
}

} // namespace tessarine
