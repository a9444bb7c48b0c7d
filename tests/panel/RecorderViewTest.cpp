#include "launcherapp/panel/view/recorder/RecorderView.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/hotkeys/HotkeyRecorder.h"
#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace tessarine {
namespace {

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};

class RecorderViewTest : public testing::Test {
protected:
    RecorderViewTest() {
        recorder.onCapture = [this](const auto& binding) { captured.push_back(binding); };
        recorder.setBinding(commandSpace);
        view.resize(view.sizeHint());
    }

    /// `key` as Qt has it, `number` and `state` as the display has them.
    void press(Qt::Key key, quint32 number = 0, quint32 state = 0) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, number, 0, state);
        QApplication::sendEvent(&view, &event);
    }

    void click(const QPoint& place) {
        QMouseEvent event(QEvent::MouseButtonPress,
                          place,
                          view.mapToGlobal(place),
                          Qt::LeftButton,
                          Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
    }

    FakeServices services;
    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey{{.registrar = registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    HotkeyRecorder recorder{hotkey, HotkeyRecorder::Clearing::allowed};
    std::vector<std::optional<HotkeyBinding>> captured;
    RecorderView view{recorder,
                      [this](auto key, auto state) { return registrar.chord(key, state); }};
};

TEST_F(RecorderViewTest, recordsWhatIsPressedByTheKeyboardAlone) {
    press(Qt::Key_Return);
    ASSERT_TRUE(recorder.isRecording());
    press(Qt::Key_Tab, 48, 0x1000); // moves no focus now
    EXPECT_THAT(captured, testing::ElementsAre(HotkeyBinding{48, 0x1000}));
    EXPECT_EQ(view.accessibleDescription(), QStringLiteral("Ctrl+Tab"));
    press(Qt::Key_Delete);
    EXPECT_EQ(view.accessibleDescription(), QStringLiteral("None"));
}

TEST_F(RecorderViewTest, aClickRecordsAndOneOnTheCrossClears) {
    click(QPoint(5, 5));
    EXPECT_TRUE(recorder.isRecording());
    EXPECT_TRUE(view.clearArea().isEmpty());
    QFocusEvent away(QEvent::FocusOut);
    QApplication::sendEvent(&view, &away);
    EXPECT_FALSE(recorder.isRecording());
    click(view.clearArea().center());
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_THAT(captured, testing::ElementsAre(std::nullopt));
    EXPECT_TRUE(view.clearArea().isEmpty()) << "there is nothing to take away";
}

} // namespace
} // namespace tessarine
