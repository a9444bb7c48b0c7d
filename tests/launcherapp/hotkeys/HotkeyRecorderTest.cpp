#include "launcherapp/hotkeys/HotkeyRecorder.h"

#include "launcherapp/hotkeys/Hotkey.h"
#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using Clearing = HotkeyRecorder::Clearing;
using Outcome = HotkeyRecorder::Outcome;

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr HotkeyBinding controlF5{.keyCode = 96, .carbonModifiers = 0x1000};

class HotkeyRecorderTest : public testing::Test {
protected:
    HotkeyRecorderTest() {
        for (auto* each : {&required, &optional})
            each->onCapture = [this](const auto& binding) { captured.push_back(binding); };
    }

    FakeServices services;
    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey{{.registrar = registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    std::vector<std::optional<HotkeyBinding>> captured;
    HotkeyRecorder required{hotkey, Clearing::forbidden};
    HotkeyRecorder optional{hotkey, Clearing::allowed};
};

TEST_F(HotkeyRecorderTest, aKeyMeansWhatTheFieldIsFor) {
    const struct {
        const char* reason;
        HotkeyRecorder& field;
        std::optional<HotkeyBinding> pressed;
        Outcome outcome;
        bool goesOn;
        const char* text;
    } cases[] = {
        {"a chord", required, controlF5, Outcome::captured, false, "Ctrl+F5"},
        {"a modifier", required, std::nullopt, Outcome::ignored, true, "Press the new keys"},
        {"a key alone",
         required,
         HotkeyBinding{0, 0},
         Outcome::refused,
         true,
         "Hold Super, Ctrl, Alt or Shift with it"},
        {"Escape", required, HotkeyBinding{53, 0}, Outcome::cancelled, false, "Super+Space"},
        {"Escape in a chord",
         required,
         HotkeyBinding{53, 0x100},
         Outcome::captured,
         false,
         "Super+Escape"},
        {"Backspace, where a chord must be",
         required,
         HotkeyBinding{51, 0},
         Outcome::refused,
         true,
         "Hold Super, Ctrl, Alt or Shift with it"},
        {"Backspace, where none need be",
         optional,
         HotkeyBinding{51, 0},
         Outcome::cleared,
         false,
         "None"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        each.field.setBinding(commandSpace);
        EXPECT_EQ(each.field.keyDown(each.pressed), Outcome::ignored) << "not yet recording";
        captured.clear();
        each.field.start();
        EXPECT_EQ(each.field.keyDown(each.pressed), each.outcome);
        EXPECT_EQ(each.field.isRecording(), each.goesOn);
        EXPECT_EQ(each.field.text(), each.text);
        EXPECT_EQ(captured.size(),
                  each.outcome == Outcome::captured || each.outcome == Outcome::cleared ? 1u : 0u);
        each.field.stop();
    }
}

TEST_F(HotkeyRecorderTest, recordsAChordThatTheProgramHolds) {
    int fired = 0;
    hotkey.add(commandSpace, 1, [&] { ++fired; });
    required.start();
    registrar.press(commandSpace, Seconds{1});
    EXPECT_THAT(captured, ElementsAre(commandSpace));
    EXPECT_EQ(fired, 0);
    registrar.press(commandSpace, Seconds{2});
    EXPECT_EQ(fired, 1);
}

TEST_F(HotkeyRecorderTest, onlyAnOptionalChordCanBeCleared) {
    required.setBinding(commandSpace);
    required.clear();
    EXPECT_EQ(required.text(), "Super+Space");
    optional.setBinding(commandSpace);
    optional.clear();
    EXPECT_EQ(optional.text(), "None");
    EXPECT_THAT(captured, ElementsAre(std::nullopt));
    optional.setBinding({}); // as the settings store none
    EXPECT_EQ(optional.text(), "None");
}

} // namespace
} // namespace tessarine
