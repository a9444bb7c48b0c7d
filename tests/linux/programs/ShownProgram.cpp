#include "launcherapp/platform/linux/desktop/QtAlerts.h"

#include <QApplication>
#include <QCheckBox>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QGridLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>
#include <cstdio>
#include <string_view>

/// A thing on the accessibility bus.
struct Place {
    QString owner;
    QDBusObjectPath path;
};
Q_DECLARE_METATYPE(Place)

QDBusArgument& operator<<(QDBusArgument& argument, const Place& place) {
    argument.beginStructure();
    argument << place.owner << place.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Place& place) {
    argument.beginStructure();
    argument >> place.owner >> place.path;
    argument.endStructure();
    return argument;
}

namespace {

void say(const char* what) {
    std::puts(what);
    std::fflush(stdout);
}

QPushButton* addButton(QLayout& layout, const char* text, const char* says) {
    auto* button = new QPushButton(QString::fromLatin1(text));
    QObject::connect(button, &QPushButton::clicked, button, [says] { say(says); });
    layout.addWidget(button);
    return button;
}

void fill(QGridLayout& layout, QWidget& window) {
    layout.addWidget(new QLabel(QStringLiteral("Go"))); // the same text, and no button
    addButton(layout, "Go", "hidden")->hide();
    addButton(layout, "Go", "disabled")->setEnabled(false);
    addButton(layout, "&Go", "go");
    addButton(layout, "my_file", "with mark");
    addButton(layout, "myfile", "without mark");
    addButton(layout, "Off", "off")->setEnabled(false);
    addButton(layout, "?", "described")->setAccessibleDescription(QStringLiteral("What is this"));
    auto* box = new QCheckBox(QStringLiteral("Wrap lines"));
    QObject::connect(box, &QCheckBox::toggled, box, [] { say("wrap"); });
    layout.addWidget(box);
    auto* tabs = new QTabBar;
    tabs->addTab(QStringLiteral("One"));
    tabs->addTab(QStringLiteral("Two"));
    QObject::connect(tabs, &QTabBar::currentChanged, tabs, [](int) { say("tab"); });
    layout.addWidget(tabs);
    auto* bar = new QMenuBar;
    auto* menu = bar->addMenu(QStringLiteral("&File"));
    QObject::connect(menu->addAction(QStringLiteral("Closed")), &QAction::triggered, &window, [] {
        say("an item of a closed menu");
    });
    QObject::connect(menu, &QMenu::aboutToShow, &window, [] { say("menu"); });
    layout.setMenuBar(bar);
}

/// In frames of a hundred, as documents have them.
void fillWithMany(QGridLayout& layout) {
    for (int i = 0; i < 30; ++i) {
        auto* frame = new QWidget;
        for (int j = 0; j < 100; ++j) {
            auto* label = new QLabel(QString::number(i * 100 + j), frame);
            label->setGeometry(j % 10, j / 10, 1, 1);
        }
        frame->setFixedSize(10, 10);
        layout.addWidget(frame, i / 10, i % 10);
    }
    addButton(layout, "Last", "last");
}

int showWindow(int& argc, char** argv, std::string_view mode) {
    QApplication application(argc, argv);
    QWidget window;
    QGridLayout layout(&window);
    mode == "many" ? fillWithMany(layout) : fill(layout, window);
    window.setVisible(mode != "windowless");
    QTimer::singleShot(0, &window, [] { say("ready"); });
    return QApplication::exec();
}

/// Every object has itself and two new ones below it, all of them on screen.
class EndlessTree : public QDBusVirtualObject {
public:
    explicit EndlessTree(QDBusConnection bus) : bus_(std::move(bus)) {
        bus_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        auto embed =
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.atspi.Registry"),
                                           QStringLiteral("/org/a11y/atspi/accessible/root"),
                                           QStringLiteral("org.a11y.atspi.Socket"),
                                           QStringLiteral("Embed"));
        embed << QVariant::fromValue(at(QStringLiteral("/root")));
        say(bus_.call(embed).type() == QDBusMessage::ReplyMessage ? "ready" : "no bus");
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        const auto method = message.member();
        QVariant answer = QVariant::fromValue(QDBusVariant(3)); // how many children
        if (method == QStringLiteral("GetState"))
            answer = QVariant::fromValue(QList<uint>{~0U, ~0U});
        else if (method == QStringLiteral("GetRole"))
            answer = 39U; // a panel
        else if (method == QStringLiteral("GetChildren"))
            answer = QVariant::fromValue(QList<Place>{at(message.path()), next(), next()});
        bus_.send(message.createReply(answer));
        return true;
    }

private:
    Place at(const QString& path) const { return {bus_.baseService(), QDBusObjectPath(path)}; }

    Place next() { return at(QStringLiteral("/n%1").arg(++made_)); }

    QDBusConnection bus_;
    int made_ = 0;
};

int tellEndlessTree(int& argc, char** argv) {
    QCoreApplication application(argc, argv);
    qDBusRegisterMetaType<Place>();
    qDBusRegisterMetaType<QList<Place>>();
    qDBusRegisterMetaType<QList<uint>>();
    const auto address = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
                                       QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.a11y.Bus"),
                                       QStringLiteral("GetAddress")));
    EndlessTree tree(QDBusConnection::connectToBus(address.arguments().value(0).toString(),
                                                   QStringLiteral("accessibility")));
    return QCoreApplication::exec();
}

int alertWithoutDisplay(int& argc, char** argv) {
    QCoreApplication application(argc, argv);
    tessarine::QtAlerts alerts([](std::string_view line) { say(std::string(line).c_str()); });
    alerts.ask({.title = "Restart?"}, [](bool confirmed) {
        say(confirmed ? "yes" : "no");
        QCoreApplication::quit();
    });
    alerts.tell("Lock failed", "why");
    return QCoreApplication::exec();
}

} // namespace

/// Another program, as the tests need one: "buttons" shows a window and says on its standard output
/// what was pressed in it, "many" does among three thousand labels, "windowless" shows none,
/// "endless" tells the accessibility bus a tree that never ends and leads back into itself, and
/// "alerts" has no display.
int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "buttons";
    if (mode == "endless")
        return tellEndlessTree(argc, argv);
    return mode == "alerts" ? alertWithoutDisplay(argc, argv) : showWindow(argc, argv, mode);
}
