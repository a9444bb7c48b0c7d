#include "launcherapp/platform/linux/desktop/QtAlerts.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

bool canShowWindows() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

/// A window that nothing waits for. It deletes itself when it is closed.
QMessageBox* makeBox(QMessageBox::Icon icon, const std::string& title, const std::string& text) {
    auto* box = new QMessageBox(icon, QApplication::applicationDisplayName(), QString());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::NonModal);
    // Names of applications and files stand in these, and are no mark-up.
    box->setTextFormat(Qt::PlainText);
    box->setText(QString::fromStdString(title));
    box->setInformativeText(QString::fromStdString(text));
    // Nobody owns the box, and one that outlived the application object would crash.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, box, &QObject::deleteLater);
    return box;
}

/// The program has no other window, so the window manager is asked for the keyboard too.
void bringUp(QMessageBox& box) {
    box.show();
    box.raise();
    box.activateWindow();
}

} // namespace

QtAlerts::QtAlerts(Log log) : log_(std::move(log)) {}

void QtAlerts::ask(const AlertQuestion& question, std::function<void(bool confirmed)> answered) {
    if (!canShowWindows()) {
        log_("asked without a display, so the answer is no: " + question.title);
        QTimer::singleShot(
            0, QCoreApplication::instance(), [answered = std::move(answered)] { answered(false); });
        return;
    }
    auto* box = makeBox(QMessageBox::Question, question.title, question.text);
    auto* confirm =
        box->addButton(QString::fromStdString(question.confirm), QMessageBox::AcceptRole);
    auto* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    // Return is Cancel's, until the user goes to the button by a key: the Return that chose the
    // action may be repeating still.
    confirm->setAutoDefault(false);
    QObject::connect(qApp, &QApplication::focusChanged, confirm, [confirm](QWidget*, QWidget* now) {
        if (now == confirm) {
            confirm->setAutoDefault(true);
            confirm->setDefault(true);
        }
    });
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    QObject::connect(
        box, &QDialog::finished, box, [box, confirm, answered = std::move(answered)](int) {
            answered(box->clickedButton() == confirm);
        });
    bringUp(*box);
}

void QtAlerts::tell(const std::string& title, const std::string& text) {
    if (!canShowWindows()) {
        log_(text.empty() ? title : title + ": " + text);
        return;
    }
    const auto isTold = [&](const QPointer<QMessageBox>& box) {
        return box->text().toStdString() == title && box->informativeText().toStdString() == text;
    };
    std::erase(told_, nullptr);
    if (const auto open = std::ranges::find_if(told_, isTold); open != told_.end()) {
        bringUp(**open);
        return;
    }
    auto* box = makeBox(QMessageBox::Warning, title, text);
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    told_.emplace_back(box);
    bringUp(*box);
}

Subscription
QtAlerts::wait(const std::string& title, const std::string& text, std::function<void()> takenBack) {
    if (!canShowWindows())
        return {};
    auto* box = makeBox(QMessageBox::Information, title, text);
    box->setAttribute(Qt::WA_ShowWithoutActivating);
    box->setEscapeButton(box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole));
    QObject::connect(
        box, &QDialog::finished, box, [takenBack = std::move(takenBack)](int) { takenBack(); });
    box->show();
    box->raise();
    return Subscription([shown = QPointer<QMessageBox>(box)] {
        if (!shown)
            return;
        shown->disconnect(SIGNAL(finished(int)));
        shown->close();
    });
}

} // namespace tessarine
