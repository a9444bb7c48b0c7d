#include "launcherapp/panel/PanelController.h"

#include "launcherapp/operations/StageMarks.h"
#include "launcherapp/operations/Updater.h"
#include "tests/fakes/FakePanelDesk.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr double rowHeight = 50;

class NotedStages : public StageMarks {
public:
    void entered(std::string_view label) override { told.emplace_back(label); }

    void left() override { told.emplace_back(); }

    std::vector<std::string> told; ///< empty for a stage that was left
};

class NotedUpdater : public Updater {
public:
    void checkIfDue(Seconds interval) override { asked.push_back(interval); }

    std::vector<Seconds> asked;
};

class PanelControllerTest : public testing::Test {
protected:
    PanelControllerTest() {
        for (const auto* name : {"Alpha", "Alpine", "Altitude"})
            services.install(name, name);
        services.startCatalog();
        panel.setHeights({.row = rowHeight});
        desk.chords.hotkey.add(commandSpace, HotkeyIDs::panel, [this] { panel.hotkeyFired(); });
        model.reset();
    }

    std::size_t count(const std::string& call) const {
        return static_cast<std::size_t>(std::ranges::count(window.calls, call));
    }

    /// Lets time pass until a warm pass was due, as late as one may come.
    void passInterval() { time.advance(Seconds{25}); }

    double heightOfRows(std::size_t rows) const {
        return rows == 0 ? 97 : rowHeight * static_cast<double>(rows) + 67 + 12 + 1 + 30;
    }

    FakeServices services;
    VirtualTime& time = services.platform.time;
    Prefs& prefs = services.prefs;
    FakePanelDesk desk{services};
    FakePanelWindow& window = desk.window;
    std::unique_ptr<SearchModel> owned = services.makeModel();
    SearchModel& model = *owned;
    NotedStages stages;
    NotedUpdater updater;
    PanelController panel{desk.controls(model, stages, updater)};
};

TEST_F(PanelControllerTest, comesUpInItsPlaceWithTheKeyboard) {
    services.platform.windows.open = {{.id = 7, .className = "editor"}};
    services.platform.windows.activeID = 7;
    panel.show();
    EXPECT_THAT(window.calls, ElementsAre("setFrame", "show")); // it is never seen elsewhere
    EXPECT_EQ(window.frame(), (Rectangle{280, 160, 720, 97}));
    ASSERT_TRUE(panel.previousApp());
    EXPECT_EQ(panel.previousApp()->id, 7u);
    EXPECT_THAT(services.log(),
                HasSubstr("panel show: visible=true key=true frame=280,160 720x97 "
                          "screen=one 0,0 1280x800\n"));
}

TEST_F(PanelControllerTest, aModelAtRestIsNotRebuiltByAShow) {
    int rebuilds = 0;
    const auto subscription = model.onChange([&] { ++rebuilds; });
    panel.show();
    EXPECT_EQ(rebuilds, 0);
    panel.hide();
    EXPECT_EQ(rebuilds, 1); // here nobody waits for it
    model.setQuery("left over");
    rebuilds = 0;
    panel.show();
    EXPECT_EQ(rebuilds, 1);
    EXPECT_EQ(model.query(), "");
}

TEST_F(PanelControllerTest, typingGrowsItDownwardWithTheFieldInPlace) {
    panel.show();
    for (const auto* query : {"al", "alt", "", "alp"}) {
        model.setQuery(query);
        EXPECT_EQ(window.frame(), (Rectangle{280, 160, 720, heightOfRows(model.rows().size())}))
            << query;
    }
    const auto calls = window.calls.size();
    model.moveDown(); // shows something else in the same height
    EXPECT_EQ(window.calls.size(), calls);
    prefs.resultRows.set(1);
    model.setQuery("al");
    EXPECT_EQ(window.frame().height, heightOfRows(1));
}

TEST_F(PanelControllerTest, theClipboardHasItsOwnNumberOfRows) {
    model.families.clipboard = [](std::string_view, const std::optional<std::string>&) {
        return Rows(12, ResultRow{.id = "clip:1", .title = "text"});
    };
    panel.toggleClipboard();
    EXPECT_TRUE(model.clipboardMode());
    EXPECT_EQ(window.frame().height, heightOfRows(9)); // as many as of any list
    prefs.clipRows.set(4);
    panel.setHeights({.row = rowHeight, .previewBelow = 120});
    EXPECT_EQ(window.frame().height, heightOfRows(4) + 121);
    panel.toggleClipboard();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_FALSE(model.clipboardMode());
}

TEST_F(PanelControllerTest, goingAwayLeavesNoTrace) {
    panel.show("al");
    EXPECT_EQ(model.query(), "al");
    model.openActions();
    window.calls.clear();
    window.loseKeyboard(); // with the menu open
    EXPECT_THAT(window.calls, ElementsAre("hide"));
    EXPECT_THAT(model.actions(), IsEmpty());
    EXPECT_TRUE(model.isAtRest());
    EXPECT_THAT(services.log(), HasSubstr("panel hide\n"));
    window.calls.clear();
    panel.hide(); // already away
    window.loseKeyboard();
    EXPECT_THAT(window.calls, IsEmpty());
}

TEST_F(PanelControllerTest, escapeHidesIt) {
    panel.show();
    model.escape();
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(PanelControllerTest, aDragChoosesThePlaceAndAProgramDoesNot) {
    panel.show("al");
    panel.hide();
    panel.show();
    window.tellPlace(); // late, from the display
    time.advance(Seconds{1});
    EXPECT_EQ(prefs.position(), PanelPosition::upper);
    window.changeScreens(
        {{.name = "two", .frame = {0, 0, 800, 600}, .workArea = {0, 0, 800, 600}}});
    time.advance(Seconds{1});
    EXPECT_EQ(window.frame(), (Rectangle{40, 120, 720, 97}));
    EXPECT_EQ(prefs.position(), PanelPosition::upper);

    window.drag({30, 40});
    window.drag({50, 60});
    time.advance(Seconds{1});
    EXPECT_EQ(prefs.position(), PanelPosition::remembered);
    EXPECT_THAT(prefs.rememberedOrigin(), ElementsAre(50, 60));
    model.setQuery("al"); // grows from where it is now
    EXPECT_EQ(window.frame().y, 60);

    window.drag({55, 65});
    panel.hide(); // before the drag's pause is over
    panel.show();
    EXPECT_EQ(window.frame(), (Rectangle{55, 65, 720, 97}));
}

TEST_F(PanelControllerTest, aMoveWhileHiddenIsNoDrag) {
    window.drag({30, 40});
    time.advance(Seconds{1});
    EXPECT_EQ(prefs.position(), PanelPosition::upper);
}

TEST_F(PanelControllerTest, staysWithinTheScreensThatAreLeft) {
    prefs.position.set(PanelPosition::remembered);
    prefs.rememberedOrigin.set({3000, 700});
    panel.show();
    // With room for three rows below the field, where there is none for more.
    const Rectangle pulledIn{552, 532, 720, 97};
    EXPECT_EQ(window.frame(), pulledIn);
    window.changeScreens({}); // the last monitor is unplugged: it stays as it is
    EXPECT_EQ(window.frame(), pulledIn);
}

TEST_F(PanelControllerTest, aBarThatHidesItselfDoesNotMoveAPanelThatIsSeen) {
    const Screen two{
        .name = "two", .frame = {1280, 0, 1280, 800}, .workArea = {1280, 0, 1280, 800}};
    auto one = window.monitors.front();
    window.mouse = Point{.x = 10, .y = 10};
    panel.show("al");
    window.mouse = Point{.x = 1300, .y = 10}; // has gone to the other screen since
    const auto before = window.frame();
    one.workArea.height = 440;
    window.changeScreens({one, two});
    EXPECT_EQ(window.frame().x, before.x);
    EXPECT_EQ(window.frame().y, before.y);
    EXPECT_EQ(window.frame().height, heightOfRows(3)); // there is room still: 160 to 420
    one.workArea.height = 400;
    window.changeScreens({one, two});
    EXPECT_EQ(window.frame().height, heightOfRows(2));
    one.workArea = {0, 300, 1280, 500}; // over the field: now it goes where it would come up
    window.changeScreens({one, two});
    EXPECT_EQ(window.frame().x, 1560);
}

TEST_F(PanelControllerTest, staysOnItsScreenWhenAMonitorThatComesOnTheLeftMovesThat) {
    auto own = window.monitors.front();
    const Screen left{.name = "left", .frame = own.frame, .workArea = own.workArea};
    panel.show("al");
    const auto before = window.frame();
    own.frame.x += left.frame.width;
    own.workArea.x += left.frame.width;
    window.changeScreens({left, own});
    EXPECT_EQ(window.frame().x, before.x + left.frame.width);
    EXPECT_EQ(window.frame().y, before.y);
    EXPECT_NE(prefs.position(), PanelPosition::remembered) << "it was no drag";
}

TEST_F(PanelControllerTest, isWarmedWhileNobodyLooks) {
    panel.start();
    time.settle();
    EXPECT_THAT(window.calls, ElementsAre("setFrame", "drawHidden")); // when the start is over
    EXPECT_EQ(window.frame().width, 720);                             // as the next show has it
    passInterval();
    EXPECT_EQ(count("drawHidden"), 2u);

    panel.show();
    passInterval();
    EXPECT_EQ(count("drawHidden"), 2u); // it is up
    time.advance(Seconds{13});
    panel.hide();
    time.advance(Seconds{12}); // the pass is due 12 s after the hide
    EXPECT_EQ(count("drawHidden"), 2u);
    passInterval();
    EXPECT_EQ(count("drawHidden"), 3u);
    EXPECT_THAT(services.log(), Not(HasSubstr("panel warm")));
}

TEST_F(PanelControllerTest, aWarmPassAsksForNoPointer) {
    panel.start();
    time.settle();
    passInterval();
    EXPECT_EQ(count("drawHidden"), 2u);
    EXPECT_EQ(window.timesAskedForPointer, 0); // some desktops tell it by a surface alone
    panel.show();
    EXPECT_EQ(window.timesAskedForPointer, 1);
}

TEST_F(PanelControllerTest, aWarmPassPutsTheModelToRest) {
    panel.start();
    time.settle();
    model.setQuery("al"); // as a self-test leaves it
    passInterval();
    EXPECT_TRUE(model.isAtRest());
}

TEST_F(PanelControllerTest, aSlowWarmPassIsLogged) {
    window.hiddenDrawing = Seconds{0.25};
    panel.start();
    time.advance(Seconds{1});
    EXPECT_THAT(services.log(),
                HasSubstr("panel warm: a hidden pass took 250 ms (rows 0 ms, draw 250 ms), "
                          "absorbed before the next press\n"));
}

TEST_F(PanelControllerTest, everyShowAndPressIsMeasuredWhenDrawn) {
    const auto& shows = services.diagnostics.showTimes();
    const auto& presses = services.diagnostics.pressTimes();
    const auto press = [&](double ago, double drawing) {
        window.drawing = Seconds{drawing};
        desk.chords.registrar.press(commandSpace, time.uptime() - Seconds{ago});
        time.advance(Seconds{0.5});
        desk.chords.registrar.press(commandSpace, time.uptime()); // away again
        EXPECT_FALSE(panel.isVisible());
    };
    time.advance(Seconds{10});
    press(0.002, 0.004);
    press(0.090, 0.020);
    press(3, 0.004); // long before: the program was not the one to blame
    window.drawing = Seconds{0.007};
    panel.show(); // by the bus, right after a press that hid the panel
    time.advance(Seconds{1});

    using testing::DoubleNear;
    constexpr double exact = 0.001;
    EXPECT_THAT(shows,
                ElementsAre(DoubleNear(4, exact),
                            DoubleNear(20, exact),
                            DoubleNear(4, exact),
                            DoubleNear(7, exact)));
    EXPECT_THAT(presses, ElementsAre(DoubleNear(6, exact), DoubleNear(110, exact)));
    const auto log = services.log();
    EXPECT_THAT(log, HasSubstr("hotkey fired (panel visible before: false)\n"));
    EXPECT_THAT(log, HasSubstr("hotkey fired (panel visible before: true)\n"));
    EXPECT_THAT(log,
                HasSubstr("hotkey press: 6 ms from keypress to panel (4 ms of it inside show)\n"));
    EXPECT_THAT(
        log, HasSubstr("hotkey slow: 110 ms from keypress to panel (20 ms of it inside show)\n"));
}

TEST_F(PanelControllerTest, aShowThatWasNeverSeenIsNotMeasured) {
    window.drawing = Seconds{0.1};
    panel.show();
    panel.hide();
    time.advance(Seconds{1});
    EXPECT_THAT(services.diagnostics.showTimes(), IsEmpty());
}

TEST_F(PanelControllerTest, aCommandsChordRunsTheTopRowUnseen) {
    services.platform.processes.programs = {"Altitude"};
    model.setQuery("alt");
    panel.runTopRow();
    time.settle();
    EXPECT_EQ(count("show"), 0u);
    ASSERT_EQ(services.platform.processes.started.size(), 1u);
    EXPECT_TRUE(model.isAtRest());
    panel.show("alt");
    panel.runTopRow();
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(PanelControllerTest, theSelfTestTellsOfTheWindowItself) {
    EXPECT_EQ(panel.selfTestShow(), "visible=true key=true height=160 rows=1");
    panel.hide();
    window.keyboardIsTaken = true;
    EXPECT_THAT(panel.selfTestShow(), HasSubstr("key=false"));
    window.isWithheld = true;
    EXPECT_THAT(panel.selfTestShow(), HasSubstr("visible=false key=false height=0 "));
}

TEST_F(PanelControllerTest, theLogSaysWhatBecameOfAKeyboardThatAnotherHeld) {
    window.keyboardIsTaken = true;
    panel.show();
    time.advance(Seconds{0.03});
    window.getKeyboard();
    EXPECT_THAT(services.log(), HasSubstr("panel: key=true 30 ms after the show, "));
    window.refuseKeyboard();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_THAT(services.log(),
                HasSubstr("panel: another program holds the keyboard, so the panel goes away\n"));
}

TEST_F(PanelControllerTest, theModelKnowsWhatWasInFront) {
    services.platform.windows.open = {{.id = 7, .className = "editor"}};
    services.platform.windows.activeID = 7;
    panel.show();
    panel.hide();
    ASSERT_TRUE(model.previousApp);
    EXPECT_EQ(model.previousApp->id, 7u);
    services.platform.windows.open.push_back({.id = 8, .own = true}); // the panel, or the like
    services.platform.windows.activeID = 8;
    panel.show();
    EXPECT_EQ(model.previousApp->id, 7u);
    services.platform.windows.activeID = 0;
    panel.show();
    EXPECT_FALSE(model.previousApp);
}

TEST_F(PanelControllerTest, aMenuDoesNotOutliveTheListThatItWasOpenedOver) {
    model.verbs.openSettings = [] {};
    panel.show();
    panel.showActions();
    ASSERT_FALSE(model.actions().empty());
    panel.showActions();
    EXPECT_THAT(model.actions(), IsEmpty());
    panel.showActions({.x = 30, .y = 40}, std::nullopt);
    EXPECT_EQ(model.actionAnchor(), (Point{.x = 30, .y = 40}));
    panel.showClipboard(); // the chord, while the panel is up and at rest
    EXPECT_THAT(model.actions(), IsEmpty());
    EXPECT_TRUE(model.clipboardMode());
}

TEST_F(PanelControllerTest, copyingThatHidesThePanelIsLoggedWithWhatWasCopied) {
    std::string copied;
    model.verbs.copyText = [&](const std::string& text) {
        model.dismiss(); // as the program has it: first of all the panel goes away
        copied = text;
    };
    panel.show("alti");
    EXPECT_TRUE(model.copySelected());
    EXPECT_EQ(copied, "Altitude");
    EXPECT_FALSE(panel.isVisible());
    EXPECT_THAT(services.log(), HasSubstr("8 characters from a app row\n"));
}

TEST_F(PanelControllerTest, theWatchKnowsOfShowsAndTheUpdaterOfComingAndGoing) {
    stages.told.clear();
    panel.show();
    EXPECT_THAT(stages.told, ElementsAre("panel.show", ""));
    EXPECT_THAT(updater.asked, ElementsAre(Seconds{600}));
    model.setQuery("al"); // a relayout
    EXPECT_THAT(stages.told, ElementsAre("panel.show", "", "panel.show", ""));
    panel.hide();
    EXPECT_EQ(updater.asked.size(), 2u);
}

} // namespace
} // namespace tessarine
