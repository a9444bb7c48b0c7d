#include "launcherapp/hotkeys/HotkeyGuard.h"

#include "launcherapp/hotkeys/HotkeySetup.h"
#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::HasSubstr;

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr HotkeyBinding optionSpace{.keyCode = 49, .carbonModifiers = 0x800};

class HotkeyGuardTest : public testing::Test {
protected:
    void start() {
        setup.registerHotkey();
        guard.start();
    }

    /// How often the log says so.
    std::size_t told(const std::string& text) {
        const auto log = services.log();
        std::size_t count = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++count;
        return count;
    }

    FakeServices services;
    VirtualTime& time = services.platform.time;
    Prefs& prefs = services.prefs;
    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey{{.registrar = registrar, .rivals = rivals, .diagnostics = services.diagnostics}};
    HotkeySetup setup{
        {.hotkey = hotkey, .rivals = rivals, .prefs = prefs, .diagnostics = services.diagnostics},
        {.panel = [] {}, .clipboard = [] {}, .voice = {}}};
    HotkeyGuard guard{{.queue = services.platform.queue,
                       .hotkey = hotkey,
                       .setup = setup,
                       .rivals = rivals,
                       .prefs = prefs,
                       .diagnostics = services.diagnostics}};
};

TEST_F(HotkeyGuardTest, aLauncherThatQuitsGivesTheChordBackAtOnce) {
    rivals.names = {"KRunner"};
    start();
    EXPECT_EQ(told("hotkey guard armed (watching 3 rival launchers; 1 running now)\n"), 1u);
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    rivals.quit("KRunner");
    EXPECT_EQ(hotkey.binding(1), commandSpace);
    EXPECT_EQ(told("hotkey re-assert (KRunner quit): panel=ok, clipboard=ok\n"), 1u);
    const auto log = services.log();
    EXPECT_LT(log.find("⌘Space is free; ⌥Space is given up for it"), log.find("hotkey re-assert"))
        << "the line speaks of the chord that is held by then";
}

TEST_F(HotkeyGuardTest, aBurstOfLaunchesReassertsOnce) {
    prefs.tookHotkeyDeliberately.set(true);
    start();
    rivals.launch("KRunner");
    time.advance(Seconds{1});
    rivals.launch("Albert");
    time.advance(Seconds{1}); // two seconds since the first, which still is the burst
    rivals.launch("Kupfer");
    EXPECT_EQ(told("hotkey re-assert"), 1u);
    time.advance(Seconds{0.1});
    rivals.resumeSession();
    EXPECT_EQ(told("hotkey re-assert (session resumed)"), 1u);
}

TEST_F(HotkeyGuardTest, leavesAnotherLauncherItsChord) {
    start();
    const int grabs = registrar.grabs;
    rivals.launch("KRunner");
    EXPECT_EQ(registrar.grabs, grabs); // not even the clipboard's
    EXPECT_EQ(told("hotkey guard: KRunner launched; leaving ⌘Space to KRunner (take it in "
                   "Settings > General)\n"),
              1u);
    rivals.quit("KRunner"); // within two seconds: what was left alone was no re-assert
    EXPECT_EQ(told("hotkey re-assert (KRunner quit)"), 1u);
}

TEST_F(HotkeyGuardTest, asksAgainForAChordThatComesFreeAfterItsLauncherHasQuit) {
    prefs.tookHotkeyDeliberately.set(true);
    registrar.heldByOthers = {commandSpace};
    rivals.names = {"KRunner", "Albert"};
    start();
    rivals.quit("Albert");
    rivals.quit("KRunner"); // in the burst of the other
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    time.advance(Seconds{1});
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    registrar.heldByOthers.clear();
    time.advance(Seconds{1.5});
    EXPECT_EQ(hotkey.binding(1), commandSpace);
    EXPECT_EQ(told("hotkey re-assert"), 1u);
}

TEST_F(HotkeyGuardTest, aChordThatWasTakenFromUsHasAStandInAtOnce) {
    start();
    registrar.heldByOthers = {commandSpace};
    rivals.resumeSession();
    EXPECT_EQ(told("hotkey re-assert (session resumed): panel=failed"), 1u);
    EXPECT_EQ(hotkey.binding(1), optionSpace);
}

TEST_F(HotkeyGuardTest, aLauncherThatShowsLateIsLeftTheChordAllTheSame) {
    start();
    EXPECT_EQ(hotkey.binding(1), commandSpace);
    rivals.find("KRunner");
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    EXPECT_EQ(told("KRunner is running; leaving ⌘Space to it and using ⌥Space"), 1u);
}

TEST_F(HotkeyGuardTest, retriesEveryTwoMinutesWhileAnotherLauncherRuns) {
    prefs.tookHotkeyDeliberately.set(true);
    registrar.heldByOthers = {commandSpace};
    start();
    time.advance(Seconds{1000});
    EXPECT_EQ(told("hotkey re-assert"), 0u); // none runs
    rivals.names = {"KRunner"};
    time.advance(Seconds{150});
    EXPECT_EQ(told("hotkey re-assert (periodic check while another launcher runs): panel=ok"), 1u);
    EXPECT_EQ(hotkey.binding(1), optionSpace);
    registrar.heldByOthers.clear();
    time.advance(Seconds{150});
    EXPECT_EQ(hotkey.binding(1), commandSpace);
}

} // namespace
} // namespace tessarine
