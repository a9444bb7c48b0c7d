#include "launcherapp/hotkeys/HotkeySetup.h"

#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr HotkeyBinding optionSpace{.keyCode = 49, .carbonModifiers = 0x800};
constexpr HotkeyBinding controlCommandSpace{.keyCode = 49, .carbonModifiers = 0x1100};
constexpr HotkeyBinding optionCommandSpace{.keyCode = 49, .carbonModifiers = 0x900};
constexpr HotkeyBinding commandShiftV{.keyCode = 9, .carbonModifiers = 0x300};
constexpr HotkeyBinding controlF5{.keyCode = 96, .carbonModifiers = 0x1000};

class HotkeySetupTest : public testing::Test {
protected:
    FakeServices services;
    Prefs& prefs = services.prefs;
    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey{{.registrar = registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    std::string fired;
    HotkeySetup setup{
        {.hotkey = hotkey, .rivals = rivals, .prefs = prefs, .diagnostics = services.diagnostics},
        {.panel = [this] { fired += "panel "; },
         .clipboard = [this] { fired += "clipboard "; },
         .voice = [this] { fired += "voice "; }}};
};

TEST_F(HotkeySetupTest, eachPartGetsItsChord) {
    setup.registerHotkey();
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandSpace), Pair(2, commandShiftV)));
    prefs.voiceHotkey.set(controlF5);
    for (const auto& chord : {commandSpace, commandShiftV, controlF5})
        registrar.press(chord, Seconds{1});
    EXPECT_EQ(fired, "panel clipboard voice ");
    prefs.clipboardHotkey.set({});
    prefs.voiceHotkey.set({});
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandSpace)));
    prefs.hotkey.set(controlF5);
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, controlF5)));
    const int grabs = registrar.grabs;
    prefs.resultRows.set(5); // no setting of chords
    EXPECT_EQ(registrar.grabs, grabs);
}

TEST_F(HotkeySetupTest, leavesItsChordToAnotherLauncherUntilToldOtherwise) {
    rivals.names = {"KRunner"};
    setup.registerHotkey();
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    EXPECT_THAT(services.log(),
                HasSubstr(" KRunner is running; leaving ⌘Space to it and using ⌥Space until you "
                          "take it over in Settings\n"));
    registrar.press(optionSpace, Seconds{1});
    EXPECT_EQ(fired, "panel ");
    prefs.tookHotkeyDeliberately.set(true);
    EXPECT_EQ(hotkey.binding(1), commandSpace);
}

TEST_F(HotkeySetupTest, asksADesktopThatChoosesForTheUsersChordAlone) {
    registrar.isChoosing = true;
    registrar.problem = "declined";
    rivals.names = {"KRunner"}; // the desktop's user decides between them
    setup.registerHotkey();
    setup.retry();
    EXPECT_EQ(hotkey.status(), "could not register ⌘Space (declined)");
    EXPECT_EQ(setup.chordIsLeftTo(), std::nullopt);
}

TEST_F(HotkeySetupTest, aChordOfTheUsersOwnIsNobodyElses) {
    rivals.names = {"KRunner"};
    prefs.hotkey.set(controlF5);
    setup.registerHotkey();
    EXPECT_EQ(hotkey.binding(1), controlF5);
}

TEST_F(HotkeySetupTest, fallsBackWhenItsChordIsHeld) {
    registrar.heldByOthers = {commandSpace};
    rivals.names = {"KRunner"};
    prefs.tookHotkeyDeliberately.set(true);
    setup.registerHotkey();
    EXPECT_EQ(hotkey.status(), "registered ⌥Space");
    const auto log = services.log();
    EXPECT_THAT(log, HasSubstr(" ⌘Space is held by another app (KRunner or the desktop itself)"));
    EXPECT_THAT(log, HasSubstr(" fell back to ⌥Space until ⌘Space is free\n"));

    setup.retry(); // in vain: nothing new is said, and the panel can still be summoned
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    EXPECT_EQ(services.log(), log);
    registrar.heldByOthers.clear();
    const int changes = registrar.grabs;
    setup.retry();
    EXPECT_EQ(hotkey.binding(1), commandSpace);
    EXPECT_EQ(registrar.grabs, changes + 1) << "the clipboard's was held all along";
    EXPECT_THAT(services.log(), HasSubstr(" ⌘Space is free; ⌥Space is given up for it\n"));
}

TEST_F(HotkeySetupTest, aFallbackIsOneThatIsFreeAndThatNoOtherPartWants) {
    registrar.heldByOthers = {commandSpace, controlCommandSpace};
    prefs.clipboardHotkey.set(optionSpace);
    setup.registerHotkey();
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, optionCommandSpace), Pair(2, optionSpace)));
    EXPECT_THAT(services.log(), HasSubstr(" fell back to ⌥⌘Space until ⌘Space is free\n"));
}

TEST_F(HotkeySetupTest, chordsCanBeSwapped) {
    setup.registerHotkey();
    prefs.hotkey.set(commandShiftV); // still the clipboard's
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    prefs.clipboardHotkey.set(commandSpace);
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandShiftV), Pair(2, commandSpace)));
    registrar.press(commandSpace, Seconds{1});
    EXPECT_EQ(fired, "clipboard ");
}

TEST_F(HotkeySetupTest, chordsCanBeSwappedWhileTheDesktopAsksItsUser) {
    registrar.isChoosing = true;
    setup.registerHotkey();
    prefs.hotkey.set(commandShiftV);
    prefs.clipboardHotkey.set(commandSpace);
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandShiftV), Pair(2, commandSpace)));
}

TEST_F(HotkeySetupTest, aNewLayoutThatTakesTheChordLeavesTheFallback) {
    registrar.problem = "a modifier of it is on no key of this keyboard";
    setup.registerHotkey();
    EXPECT_TRUE(registrar.held.empty());
    registrar.problem.clear();
    registrar.changeKeys();
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandSpace), Pair(2, commandShiftV)));
    registrar.heldByOthers = {commandSpace};
    registrar.changeKeys();
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    EXPECT_THAT(services.log(), HasSubstr(" fell back to ⌥Space until ⌘Space is free\n"));
}

TEST_F(HotkeySetupTest, aLauncherThatUsesTheFallbackItselfLeavesTheChordToUs) {
    rivals.names = {"KRunner"};
    registrar.heldByOthers = {optionSpace, controlCommandSpace, optionCommandSpace};
    setup.registerHotkey();
    EXPECT_EQ(hotkey.binding(1), commandSpace);
    EXPECT_THAT(services.log(), HasSubstr(" using ⌘Space after all\n"));
    EXPECT_EQ(setup.chordIsLeftTo(), std::nullopt);
    rivals.names.clear();
    setup.retry();
    rivals.names = {"KRunner"}; // a later one
    EXPECT_EQ(setup.chordIsLeftTo(), "KRunner");
}

TEST_F(HotkeySetupTest, withoutAnyChordTheStatusTellsOfTheOneThatWasWanted) {
    registrar.heldByOthers = {commandSpace,
                              optionSpace,
                              controlCommandSpace,
                              optionCommandSpace,
                              commandShiftV,
                              controlF5};
    prefs.voiceHotkey.set(controlF5);
    setup.registerHotkey();
    EXPECT_THAT(hotkey.status(), HasSubstr("⌘Space is held by another app"));
    EXPECT_THAT(hotkey.status(2), HasSubstr("⇧⌘V is held by another app"));
    const auto log = services.log();
    EXPECT_THAT(log, HasSubstr(" ⌘Space is held by another app"));
    EXPECT_THAT(log, HasSubstr(" ⇧⌘V is held by another app"));
    EXPECT_THAT(log, HasSubstr(" voice hotkey ⌃F5 is taken by another app\n"));
    EXPECT_THAT(log, Not(HasSubstr("fell back")));
    registrar.heldByOthers.clear();
    setup.retry();
    EXPECT_THAT(registrar.held,
                ElementsAre(Pair(1, commandSpace), Pair(2, commandShiftV), Pair(3, controlF5)));
}

} // namespace
} // namespace tessarine
