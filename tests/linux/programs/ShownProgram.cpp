#include "launcherapp/platform/linux/desktop/QtAlerts.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>
#include <cstdio>
#include <string_view>

/// Another program, as the tests need one: "buttons" shows a window and says on its standard output
/// what was pressed in it, "many" does among ten thousand labels, and "alerts" has no display.
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
    for (int i = 0; i < 100; ++i) {
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
    window.show();
    QTimer::singleShot(0, &window, [] { say("ready"); });
    return QApplication::exec();
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

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "buttons";
    return mode == "alerts" ? alertWithoutDisplay(argc, argv) : showWindow(argc, argv, mode);
}
