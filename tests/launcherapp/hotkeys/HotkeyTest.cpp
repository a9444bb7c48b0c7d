#include "launcherapp/hotkeys/Hotkey.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr HotkeyBinding commandShiftV{.keyCode = 9, .carbonModifiers = 0x300};

TEST(HotkeyNames, chordsReadAsPeopleKnowThem) {
    const struct {
        HotkeyBinding binding;
        const char* display;
        const char* onKeyboard;
    } cases[] = {
        {commandSpace, "⌘Space", "Super+Space"},
        {{.keyCode = 9, .carbonModifiers = 0x1b00}, "⌃⌥⇧⌘V", "Super+Ctrl+Alt+Shift+V"},
        {{.keyCode = 36, .carbonModifiers = 0x800}, "⌥Return", "Alt+Return"}, // not "enter"
        {{.keyCode = 116, .carbonModifiers = 0x100}, "⌘Pageup", "Super+Page Up"},
        {{.keyCode = 51, .carbonModifiers = 0x100}, "⌘Delete", "Super+Backspace"}, // as printed
        {{.keyCode = 50, .carbonModifiers = 0x1000}, "⌃`", "Ctrl+`"},
        {{.keyCode = 111, .carbonModifiers = 0}, "F12", "F12"},
        {{.keyCode = 200, .carbonModifiers = 0x200}, "⇧key 200", "Shift+key 200"},
    };

    for (const auto& [binding, display, onKeyboard] : cases) {
        EXPECT_EQ(HotkeyNames::display(binding), display);
        EXPECT_EQ(HotkeyNames::onKeyboard(binding), onKeyboard);
    }
}

TEST(VirtualKeys, aNameAndItsKeyFindEachOther) {
    int named = 0;
    for (std::uint32_t code = 0; code < 256; ++code) {
        if (const auto name = VirtualKeys::name(code)) {
            EXPECT_EQ(VirtualKeys::code(*name), code) << *name;
            ++named;
        }
    }
    EXPECT_EQ(named, 80); // of 83 names, three are second ones
    EXPECT_EQ(VirtualKeys::code("esc"), VirtualKeys::code("escape"));
    EXPECT_EQ(VirtualKeys::code("Space"), std::nullopt);
}

class HotkeyTest : public testing::Test {
protected:
    FakeServices services;
    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey{{.registrar = registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    int fired = 0;
};

TEST_F(HotkeyTest, aChordRunsItsAction) {
    EXPECT_EQ(hotkey.lastPressEventTime(), std::nullopt);
    EXPECT_TRUE(hotkey.add(commandSpace, 1, [this] { ++fired; }));
    EXPECT_EQ(hotkey.status(), "registered ⌘Space");
    registrar.press(commandSpace, Seconds{5});
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(hotkey.lastPressEventTime(), Seconds{5});

    EXPECT_TRUE(hotkey.add(commandShiftV, 1, std::nullopt)); // in its place, with its action
    registrar.press(commandSpace, Seconds{6});
    registrar.press(commandShiftV, Seconds{7});
    EXPECT_EQ(fired, 2);
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandShiftV)));
}

TEST_F(HotkeyTest, anActionMayTakeItsOwnChordAway) {
    hotkey.add(commandSpace, 7, [this, token = std::make_shared<int>(3)] {
        hotkey.remove(7);
        fired = *token;
    });
    registrar.press(commandSpace, Seconds{1});
    EXPECT_EQ(fired, 3);
    EXPECT_TRUE(registrar.held.empty());
    EXPECT_EQ(hotkey.status(7), "not registered");
    hotkey.remove(99); // never there
}

TEST_F(HotkeyTest, aRefusalSaysWhy) {
    registrar.heldByOthers = {commandSpace};
    EXPECT_FALSE(hotkey.add(commandSpace, 1, [] {}));
    EXPECT_EQ(hotkey.status(),
              "⌘Space is held by another app (an input method or the desktop itself); "
              "not registered");
    EXPECT_THAT(hotkey.statusInWords(), StartsWith("Super+Space is held by another app (an input"));
    EXPECT_EQ(hotkey.binding(1), std::nullopt);
    rivals.names = {"KRunner", "Albert"};
    hotkey.add(commandSpace, 1, [] {});
    EXPECT_EQ(hotkey.status(),
              "⌘Space is held by another app (KRunner, Albert or the desktop itself); "
              "not registered");
    registrar.problem = "there is no X11 display";
    EXPECT_FALSE(hotkey.add(commandSpace, 1, [] {}));
    EXPECT_EQ(hotkey.status(), "could not register ⌘Space (there is no X11 display)");
}

TEST_F(HotkeyTest, aKeyAloneIsLeftToOtherProgramsUnlessItTypesNothing) {
    EXPECT_FALSE(hotkey.add({.keyCode = 9, .carbonModifiers = 0}, 1, [] {}));
    EXPECT_EQ(hotkey.status(),
              "could not register V (without a modifier no other program would get that key)");
    EXPECT_TRUE(hotkey.add({.keyCode = 96, .carbonModifiers = 0}, 1, [] {})); // F5
}

TEST_F(HotkeyTest, whatIsHeldIsGivenUpOnlyForWhatIsFree) {
    int told = 0;
    const auto changes = hotkey.onChange([&] { ++told; });
    hotkey.remove(1);
    EXPECT_EQ(told, 0) << "there was nothing";
    hotkey.add(commandSpace, 1, [this] { ++fired; });
    told = 0;
    registrar.heldByOthers = {commandShiftV};
    EXPECT_FALSE(hotkey.addIfFree(commandShiftV, 1));
    EXPECT_EQ(hotkey.status(), "registered ⌘Space");
    EXPECT_EQ(told, 0);
    registrar.heldByOthers.clear();
    EXPECT_TRUE(hotkey.addIfFree(commandShiftV, 1));
    EXPECT_THAT(registrar.held, ElementsAre(Pair(1, commandShiftV)));
    registrar.press(commandShiftV, Seconds{1});
    EXPECT_EQ(fired, 1);
}

TEST_F(HotkeyTest, aPressCanBeRecordedInsteadOfActedOn) {
    hotkey.add(commandSpace, 1, [this] { ++fired; });
    std::vector<HotkeyBinding> recorded;
    auto recording =
        hotkey.divert([&](const HotkeyBinding& binding) { recorded.push_back(binding); });
    registrar.press(commandSpace, Seconds{1});
    EXPECT_THAT(recorded, ElementsAre(commandSpace));
    EXPECT_EQ(fired, 0);
    recording.end();
    registrar.press(commandSpace, Seconds{2});
    EXPECT_EQ(fired, 1);
}

TEST_F(HotkeyTest, oneChordServesOneOnly) {
    hotkey.add(commandSpace, 1, [] {});
    EXPECT_FALSE(hotkey.add(commandSpace, 5, [] {}));
    EXPECT_EQ(hotkey.status(5), "could not register ⌘Space (it is the panel hotkey)");
    EXPECT_TRUE(hotkey.add(commandSpace, 1, std::nullopt)); // its own is no other's
    hotkey.remove(1);
    EXPECT_TRUE(hotkey.add(commandSpace, 5, std::nullopt));
}

TEST_F(HotkeyTest, aReassertTakesAllOfThemAgain) {
    EXPECT_TRUE(hotkey.reassertAll("nothing yet").empty());
    hotkey.add({.keyCode = 1, .carbonModifiers = 0x100}, 17, [] {});
    hotkey.add(commandShiftV, 2, [] {});
    hotkey.add(commandSpace, 1, [this] { ++fired; });
    registrar.heldByOthers = {commandShiftV}; // came in between
    const int before = registrar.grabs;
    EXPECT_THAT(hotkey.reassertAll("KRunner quit"),
                ElementsAre(Pair(1, true), Pair(2, false), Pair(17, true)));
    EXPECT_EQ(registrar.grabs, before + 3);
    EXPECT_EQ(registrar.releases, 1) << "what is held goes on being held, or a press may be lost";
    registrar.press(commandSpace, Seconds{1});
    EXPECT_EQ(fired, 1);

    registrar.heldByOthers.clear(); // what was lost is asked for again
    registrar.changeKeys();
    EXPECT_EQ(hotkey.binding(2), commandShiftV);
    const auto log = services.log();
    EXPECT_THAT(log,
                HasSubstr("hotkey re-assert (nothing yet): nothing registered to re-assert\n"));
    EXPECT_THAT(log,
                HasSubstr("hotkey re-assert (KRunner quit): panel=ok, clipboard=failed, "
                          "command 17=ok\n"));
    EXPECT_THAT(log,
                HasSubstr("hotkey re-assert (keyboard changed): panel=ok, clipboard=ok, "
                          "command 17=ok\n"));
}

TEST_F(HotkeyTest, aDesktopThatAsksItsUserIsWaitedFor) {
    registrar.isChoosing = true;
    EXPECT_TRUE(hotkey.add(commandSpace, 1, [this] { ++fired; }));
    EXPECT_EQ(registrar.purposes[1].name, "panel");
    EXPECT_TRUE(hotkey.isAsked());
    EXPECT_EQ(hotkey.binding(1), std::nullopt); // no key that anybody could be told of
    EXPECT_EQ(hotkey.status(), "waiting for the desktop's leave to use ⌘Space");
    hotkey.reassertAll("periodic check");
    EXPECT_THAT(services.log(), HasSubstr("hotkey re-assert (periodic check): panel=waiting\n"));

    int changes = 0;
    const auto watch = hotkey.onChange([&] { ++changes; });
    registrar.settle(1, {.kind = HotkeyOutcome::Kind::registered, .trigger = "Meta+Space"});
    EXPECT_EQ(hotkey.status(), "registered ⌘Space; the desktop has it as Meta+Space");
    EXPECT_EQ(hotkey.keysInWords(), "Meta+Space");
    registrar.settle(1, {.kind = HotkeyOutcome::Kind::registered, .isTriggerUnknown = true});
    EXPECT_EQ(hotkey.status(),
              "registered ⌘Space; which keys it has become, the desktop's settings tell");
    EXPECT_EQ(hotkey.keysInWords(), "A key of the desktop's settings");
    registrar.settle(1, {.kind = HotkeyOutcome::Kind::refused, .reason = "the portal has gone"});
    EXPECT_EQ(hotkey.status(), "could not register ⌘Space (the portal has gone)");
    EXPECT_EQ(hotkey.keysInWords(), std::nullopt);
    registrar.settle(1, {.kind = HotkeyOutcome::Kind::registered}); // it is back
    EXPECT_EQ(hotkey.keysInWords(), "Super+Space");
    EXPECT_EQ(changes, 4);
    EXPECT_THAT(services.log(),
                HasSubstr("hotkey of the panel: could not register ⌘Space (the portal has gone)"));

    hotkey.remove(1);
    EXPECT_EQ(registrar.releases, 1);
    registrar.settle(1, {.kind = HotkeyOutcome::Kind::registered}); // was on its way
    EXPECT_EQ(hotkey.status(), "not registered");
}

TEST_F(HotkeyTest, whatADesktopRefusesItMayGiveLater) {
    registrar.isChoosing = true;
    registrar.problem = "no portal";
    EXPECT_FALSE(hotkey.add(commandSpace, 1, [this] { ++fired; }));
    registrar.settle(1, {.kind = HotkeyOutcome::Kind::registered});
    EXPECT_EQ(hotkey.binding(1), commandSpace);
}

TEST_F(HotkeyTest, whatWasRefusedAtOnceIsNotAskedForAgain) {
    registrar.heldByOthers = {commandSpace};
    hotkey.add(commandSpace, 4, [] {}); // its owner forgets it, and may give the id to another
    registrar.heldByOthers.clear();
    EXPECT_TRUE(hotkey.reassertAll("x").empty());
}

} // namespace
} // namespace tessarine
