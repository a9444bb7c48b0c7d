// The least that a panel can be: a field, eight lines of text and a chord that brings them up. The
// limit program of PanelProbe: what it needs is Qt's, the display's and the surface's share.

#include "launcherapp/platform/linux/panel/PanelSurface.h"
#include "launcherapp/platform/linux/panel/QtPanelWindow.h"

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QVBoxLayout>
#include <cstdlib>
#include <vector>

namespace tessarine {
namespace {

constexpr int shownLines = 8;
constexpr xcb_keycode_t spaceKey = 65; ///< on every PC keyboard under X11

/// Super and the space bar, taken from everybody. The keyboard stands still from the press until
/// the panel has taken it, so no key typed meanwhile goes to the window in front.
class Chord : public QAbstractNativeEventFilter {
public:
    explicit Chord(std::function<void()> pressed)
        : pressed_(std::move(pressed)),
          connection_(qApp->nativeInterface<QNativeInterface::QX11Application>()->connection()) {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        qApp->installNativeEventFilter(this);
        xcb_grab_key(connection_,
                     0,
                     root,
                     XCB_MOD_MASK_4,
                     spaceKey,
                     XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_SYNC);
        xcb_flush(connection_);
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto& event = *static_cast<const xcb_key_press_event_t*>(message);
        const bool isOurs = (event.response_type & 0x7f) == XCB_KEY_PRESS &&
                            event.detail == spaceKey && (event.state & XCB_MOD_MASK_4);
        if (!isOurs)
            return false;
        pressed_();
        xcb_allow_events(connection_, XCB_ALLOW_ASYNC_KEYBOARD, XCB_CURRENT_TIME);
        xcb_flush(connection_);
        return true;
    }

private:
    std::function<void()> pressed_;
    xcb_connection_t* connection_;
};

int run(int argc, char** argv) {
    QApplication application(argc, argv);
    QWidget widget;
    QLineEdit field;
    std::vector<QLabel*> lines;
    auto* layout = new QVBoxLayout(&widget);
    field.setFixedHeight(46);
    layout->addWidget(&field);
    for (int i = 0; i < shownLines; ++i) {
        lines.push_back(new QLabel(&widget));
        layout->addWidget(lines.back());
    }
    QObject::connect(&field, &QLineEdit::textChanged, &field, [&](const QString& text) {
        for (int i = 0; i < shownLines; ++i)
            lines[static_cast<std::size_t>(i)]->setText(text + QString::number(i));
    });

    QtPanelWindow window(widget, field, makePanelSurface());
    window.setFrame({.x = 280, .y = 150, .width = 720, .height = 460});
    const auto hide = [&] {
        window.hide();
        field.clear();
    };
    window.setEvents({.lostKeyboard = hide});
    QObject::connect(new QShortcut(Qt::Key_Escape, &widget), &QShortcut::activated, &widget, hide);
    Chord chord([&] {
        if (window.isVisible())
            hide();
        else
            window.show();
    });
    window.drawHidden();
    return QApplication::exec();
}

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    return tessarine::run(argc, argv);
}
