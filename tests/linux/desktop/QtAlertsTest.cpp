#include "launcherapp/platform/linux/desktop/QtAlerts.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <algorithm>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QtAlertsTest : public testing::Test {
protected:
    QMessageBox* box() {
        for (auto* window : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QMessageBox*>(window))
                return found;
        }
        return nullptr;
    }

    /// A window that the user has to see, with the keyboard.
    QPointer<QMessageBox> ask() {
        answers.clear();
        alerts.ask({.title = "Empty the <b>Trash</b>?", .text = "3 items.", .confirm = "Empty"},
                   [this](bool confirmed) { answers.push_back(confirmed); });
        QPointer<QMessageBox> shown = box();
        EXPECT_TRUE(shown && spinUntil([&] { return shown->isActiveWindow(); }));
        return shown;
    }

    /// A real key, through the display.
    static void press(const char* key) {
        QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("key"), QLatin1String(key)});
    }

    std::vector<bool> answers;
    std::vector<std::string> logged;
    QtAlerts alerts{[this](std::string_view line) { logged.emplace_back(line); }};
};

TEST_F(QtAlertsTest, onlyTheButtonItselfDoesIt) {
    const struct {
        const char* reason;
        std::function<void(QMessageBox& box)> answer;
        bool confirmed;
    } cases[] = {
        {"the default button leaves it", [](QMessageBox&) { press("Return"); }, false},
        {"Escape leaves it", [](QMessageBox&) { press("Escape"); }, false},
        {"closing the window leaves it", [](QMessageBox& box) { box.close(); }, false},
        {"the user goes to the button by a key",
         [](QMessageBox& box) {
             press("Tab");
             EXPECT_TRUE(spinUntil([&] { return box.buttons().front()->hasFocus(); }));
             press("Return");
         },
         true},
        {"the button does it", [](QMessageBox& box) { box.buttons().front()->click(); }, true},
    };

    for (const auto& [reason, answer, confirmed] : cases) {
        SCOPED_TRACE(reason);
        const auto shown = ask();
        ASSERT_TRUE(shown);
        EXPECT_THAT(answers, IsEmpty());
        EXPECT_FALSE(shown->isModal());
        answer(*shown);
        EXPECT_TRUE(spinUntil([&] { return !shown; })); // it deletes itself
        EXPECT_THAT(answers, ElementsAre(confirmed));
    }
}

TEST_F(QtAlertsTest, theTextsAreShownAsTheyAre) {
    const auto shown = ask();
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown->textFormat(), Qt::PlainText);
    // For whoever wants to see it.
    if (const auto folder = qEnvironmentVariable("TESSARINE_PICTURES"); !folder.isEmpty()) {
        spinFor(300);
        QProcess::execute(QStringLiteral("import"),
                          {QStringLiteral("-window"),
                           QStringLiteral("root"),
                           QDir(folder).filePath(QStringLiteral("alert.png"))});
    }
    shown->close();
    EXPECT_TRUE(spinUntil([&] { return !shown; }));
}

TEST_F(QtAlertsTest, whatIsToldIsClosedByReturn) {
    alerts.tell("Lock failed", "There is no session.");
    const QPointer<QMessageBox> shown = box();
    ASSERT_TRUE(shown && spinUntil([&] { return shown->isActiveWindow(); }));
    press("Return");
    EXPECT_TRUE(spinUntil([&] { return !shown; }));
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(QtAlertsTest, whatIsWaitedForIsShownWithoutTakingTheKeyboard) {
    const auto question = ask();
    ASSERT_TRUE(question);
    int takenBack = 0;
    const auto waiting = [&] {
        for (auto* window : QApplication::topLevelWidgets()) {
            auto* found = qobject_cast<QMessageBox*>(window);
            if (found && found->text() == QStringLiteral("Waiting for Editor to quit"))
                return QPointer<QMessageBox>(found);
        }
        return QPointer<QMessageBox>();
    };
    const auto wait = [&] {
        return alerts.wait("Waiting for Editor to quit", "", [&] { ++takenBack; });
    };
    auto first = wait();
    auto shown = waiting();
    ASSERT_TRUE(shown && spinUntil([&] { return shown->isVisible(); }));
    spinFor(100);
    EXPECT_TRUE(question->isActiveWindow());
    first.end();
    EXPECT_TRUE(spinUntil([&] { return !shown; }));
    EXPECT_EQ(takenBack, 0) << "it is over, and was not taken back";

    const auto second = wait();
    shown = waiting();
    ASSERT_TRUE(shown);
    shown->buttons().front()->click();
    EXPECT_TRUE(spinUntil([&] { return !shown; }));
    EXPECT_EQ(takenBack, 1);
    question->close();
    EXPECT_TRUE(spinUntil([&] { return !question; }));
}

TEST_F(QtAlertsTest, whatIsToldAgainIsToldInTheSameWindow) {
    const auto open = [] {
        return std::ranges::count_if(QApplication::topLevelWidgets(), [](const QWidget* window) {
            return qobject_cast<const QMessageBox*>(window) != nullptr;
        });
    };
    for (int i = 0; i < 3; ++i)
        alerts.tell("Lock failed", "There is no session.");
    EXPECT_EQ(open(), 1);
    alerts.tell("Lock failed", "Another reason.");
    EXPECT_EQ(open(), 2);
    while (auto* each = box())
        delete each;
    alerts.tell("Lock failed", "There is no session.");
    EXPECT_EQ(open(), 1) << "the one before was closed";
    delete box();
}

TEST_F(QtAlertsTest, withoutADisplayTheAnswerIsNoAndTheLogIsTold) {
    QProcess program;
    program.start(QCoreApplication::applicationDirPath() + QStringLiteral("/ShownProgram"),
                  {QStringLiteral("alerts")});
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.readAllStandardOutput().toStdString(),
              "asked without a display, so the answer is no: Restart?\n"
              "Lock failed: why\n" // the answer comes later
              "no\n");
}

} // namespace
} // namespace tessarine
