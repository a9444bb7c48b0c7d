#include "launcherapp/platform/linux/input/portal/PortalHotkeyRegistrar.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/input/portal/FakePortal.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>

namespace tessarine {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using Kind = HotkeyOutcome::Kind;

constexpr HotkeyBinding superSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr HotkeyBinding superShiftV{.keyCode = 9, .carbonModifiers = 0x300};
constexpr std::uint32_t panel = 1;
constexpr std::uint32_t clipboard = 2;
constexpr auto bindPanel = "BindShortcuts panel=LOGO+space";

/// A main thread that a test makes hurry where it would wait for minutes.
class HurriedQueue : public QtMainQueue {
public:
    void postAfter(Seconds delay, Task task) override {
        const bool isLong = delay >= Seconds(1);
        if (isLong)
            waits.push_back(delay.count());
        QtMainQueue::postAfter(isLong && hurries ? Seconds(0.01) : delay, std::move(task));
    }

    bool hurries = false;
    std::vector<double> waits; ///< those for seconds
};

class PortalHotkeyRegistrarTest : public testing::Test {
protected:
    void SetUp() override {
        registrar.setEvents(
            {.pressed = [this](const HotkeyRegistrar::Press& press) { presses.push_back(press); },
             .keysChanged = {},
             .settled = [this](std::uint32_t id,
                               const HotkeyOutcome& outcome) { outcomes[id] = outcome; },
             .problem = [this](const std::string& problem) { problems.push_back(problem); }});
        describe(panel, "panel");
        describe(clipboard, "clipboard");
    }

    void describe(std::uint32_t id, const char* name) {
        registrar.describe(id, {.name = name, .description = name});
    }

    bool settles(std::uint32_t id, Kind kind) {
        return spinUntil([&] { return outcomes.contains(id) && outcomes[id].kind == kind; });
    }

    /// Asks for the panel's chord, and waits for what becomes of it.
    HotkeyOutcome outcomeFor(Kind kind) {
        EXPECT_EQ(registrar.grab(panel, superSpace).kind, Kind::asked);
        EXPECT_TRUE(settles(panel, kind));
        return outcomes[panel];
    }

    HurriedQueue queue;
    PortalHotkeyRegistrar registrar{queue, "com.corvane.tessarine"};
    std::vector<HotkeyRegistrar::Press> presses;
    std::map<std::uint32_t, HotkeyOutcome> outcomes;
    std::vector<std::string> problems;
};

TEST_F(PortalHotkeyRegistrarTest, asksOnceForAllThatIsWishedAndHearsThePresses) {
    FakePortal portal;
    ASSERT_TRUE(portal.owns);
    EXPECT_EQ(registrar.grab(panel, superSpace).kind, Kind::asked);
    EXPECT_EQ(registrar.grab(clipboard, superShiftV).kind, Kind::asked);
    ASSERT_TRUE(settles(panel, Kind::registered));
    EXPECT_EQ(outcomes[panel].trigger, "Meta+Space");
    EXPECT_EQ(outcomes[clipboard].trigger, "Meta+V"); // not what was wished for
    EXPECT_THAT(portal.calls,
                ElementsAre("Register com.corvane.tessarine",
                            "CreateSession",
                            "BindShortcuts clipboard=SHIFT+LOGO+v panel=LOGO+space"));

    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(queue.uptime());
    portal.activate("clipboard", static_cast<quint64>(now.count()) - 40);
    ASSERT_TRUE(spinUntil([&] { return !presses.empty(); }));
    EXPECT_EQ(presses[0].id, clipboard);
    EXPECT_NEAR(presses[0].at.count(), Seconds(now).count() - 0.04, 0.001);

    EXPECT_EQ(registrar.grab(panel, superSpace).kind, Kind::registered);
    spinFor(20);
    EXPECT_EQ(portal.calls.size(), 3U); // the same again asks nobody
}

TEST_F(PortalHotkeyRegistrarTest, aHeldKeyIsOnePress) {
    FakePortal portal;
    outcomeFor(Kind::registered);
    portal.activate("panel");
    portal.activate("panel");
    portal.deactivate("panel");
    portal.activate("panel");
    ASSERT_TRUE(spinUntil([&] { return presses.size() == 2; }));
    spinFor(20);
    EXPECT_EQ(presses.size(), 2U);
}

TEST_F(PortalHotkeyRegistrarTest, whatIsWishedLaterOrGivenBackMakesAnotherSession) {
    FakePortal portal;
    outcomeFor(Kind::registered);
    const auto first = portal.session;
    registrar.grab(clipboard, superShiftV);
    ASSERT_TRUE(settles(clipboard, Kind::registered));
    EXPECT_NE(portal.session, first);
    EXPECT_THAT(portal.calls, Contains("Register com.corvane.tessarine").Times(1));

    registrar.release(clipboard);
    ASSERT_TRUE(spinUntil([&] { return portal.calls.back() == bindPanel; }));
    ASSERT_TRUE(settles(panel, Kind::registered));

    // Another number for the same wish, as commands get when their file is read again.
    describe(7, "panel");
    registrar.release(panel);
    EXPECT_EQ(registrar.grab(7, superSpace).kind, Kind::registered);
    const auto asked = portal.calls.size();
    portal.activate("panel");
    ASSERT_TRUE(spinUntil([&] { return !presses.empty(); }));
    EXPECT_EQ(presses[0].id, 7U);
    EXPECT_EQ(portal.calls.size(), asked);
}

TEST_F(PortalHotkeyRegistrarTest, aDeclinedAdditionLeavesTheKeysThatWereThere) {
    FakePortal portal;
    outcomeFor(Kind::registered);
    portal.unwanted = "clipboard";
    portal.calls.clear();
    registrar.grab(clipboard, superShiftV);
    ASSERT_TRUE(settles(clipboard, Kind::refused));
    ASSERT_TRUE(settles(panel, Kind::registered));
    EXPECT_THAT(outcomes[clipboard].reason, HasSubstr("declined"));
    EXPECT_THAT(portal.calls,
                ElementsAre("Close session", // no shortcut is bound twice
                            "CreateSession",
                            "BindShortcuts clipboard=SHIFT+LOGO+v panel=LOGO+space",
                            "Close session",
                            "CreateSession",
                            bindPanel));
    portal.activate("panel");
    EXPECT_TRUE(spinUntil([&] { return presses.size() == 1; }));

    // Nobody is asked the same again, but about another set.
    EXPECT_EQ(registrar.grab(clipboard, superShiftV).kind, Kind::refused);
    registrar.release(clipboard);
    describe(clipboard, "clipboard");
    registrar.grab(clipboard, superShiftV);
    spinFor(20);
    EXPECT_EQ(portal.calls.size(), 6U);
    EXPECT_EQ(outcomes[clipboard].kind, Kind::refused);
    portal.unwanted.clear();
    registrar.grab(clipboard, superSpace);
    EXPECT_TRUE(settles(clipboard, Kind::registered));
}

TEST_F(PortalHotkeyRegistrarTest, tellsWhatTheUserChoosesInTheDesktopsSettings) {
    FakePortal portal;
    outcomeFor(Kind::registered);
    portal.rebind({{QStringLiteral("panel"), QStringLiteral("Ctrl+F1")}});
    ASSERT_TRUE(spinUntil([&] { return outcomes[panel].trigger == "Ctrl+F1"; }));
    portal.rebind({{QStringLiteral("panel"), QString()}});
    ASSERT_TRUE(spinUntil([&] { return outcomes[panel].isTriggerUnknown; }));
    EXPECT_EQ(outcomes[panel].kind, Kind::registered) << "a portal need not tell the keys";
    portal.rebind({});
    ASSERT_TRUE(
        spinUntil([&] { return outcomes[panel].reason.find("declined") != std::string::npos; }));
}

TEST_F(PortalHotkeyRegistrarTest, saysInWordsWhyThereAreNone) {
    struct Case {
        FakePortal::Answers answers;
        FakePortal::User user;
        const char* words;
    };
    using enum FakePortal::Answers;
    using enum FakePortal::User;
    const Case cases[] = {
        {noShortcuts, allows, "gives programs no keys"}, // as wlroots' portal
        {list, declines, "declined"},
        {nonsense, allows, "can't be read"},
    };
    for (const auto& [answers, user, words] : cases) {
        SCOPED_TRACE(words);
        FakePortal portal;
        ASSERT_TRUE(portal.owns);
        portal.answers = answers;
        portal.user = user;
        EXPECT_THAT(outcomeFor(Kind::refused).reason, HasSubstr(words));

        portal.calls.clear();
        EXPECT_EQ(registrar.grab(panel, superSpace), outcomes[panel]);
        spinFor(20);
        // Nobody is asked over and over; the old session may be on its way out yet.
        EXPECT_THAT(portal.calls, Each("Close session"));
        registrar.release(panel);
        outcomes.clear();
        spinFor(20);
    }
    EXPECT_EQ(registrar.grab(panel, {.keyCode = 200, .carbonModifiers = 0x100}).kind,
              Kind::refused); // portals know keys by names
}

TEST_F(PortalHotkeyRegistrarTest, asksAgainLaterForWhatFailedAndNotForWhatWasDeclined) {
    FakePortal portal;
    queue.hurries = true;
    portal.answers = FakePortal::Answers::nonsense;
    registrar.grab(panel, superSpace);
    ASSERT_TRUE(spinUntil([&] { return queue.waits.size() >= 3; }));
    EXPECT_THAT(std::vector(queue.waits.begin(), queue.waits.begin() + 3),
                ElementsAre(60, 120, 240));
    portal.answers = FakePortal::Answers::list;
    ASSERT_TRUE(settles(panel, Kind::registered)); // by itself
    portal.closeSession();
    ASSERT_TRUE(settles(panel, Kind::refused));
    EXPECT_EQ(queue.waits.back(), 60); // not as long as the failures before
    ASSERT_TRUE(settles(panel, Kind::registered));

    const auto waits = queue.waits.size();
    portal.user = FakePortal::User::declines;
    registrar.grab(clipboard, superShiftV);
    ASSERT_TRUE(settles(clipboard, Kind::refused));
    portal.user = FakePortal::User::allows;
    spinFor(50);
    EXPECT_EQ(queue.waits.size(), waits);
    EXPECT_EQ(outcomes[clipboard].kind, Kind::refused);
}

TEST_F(PortalHotkeyRegistrarTest, aNoTakesNothingAwayThatWasGrantedBefore) {
    FakePortal portal;
    portal.isAskedForNew = true;
    outcomeFor(Kind::registered);
    portal.user = FakePortal::User::declines;
    registrar.grab(clipboard, superShiftV);
    ASSERT_TRUE(settles(clipboard, Kind::refused));
    ASSERT_TRUE(spinUntil([&] { return portal.calls.back() == bindPanel; }));
    ASSERT_TRUE(settles(panel, Kind::registered));
    portal.activate("panel");
    ASSERT_TRUE(spinUntil([&] { return presses.size() == 1; }));
    const auto asked = portal.calls.size();
    registrar.release(clipboard); // as when a file of commands is read again
    describe(clipboard, "clipboard");
    registrar.grab(clipboard, superShiftV);
    spinFor(50);
    EXPECT_EQ(portal.calls.size(), asked) << testing::PrintToString(portal.calls);

    registrar.grab(panel, superShiftV); // another chord for the same
    ASSERT_TRUE(spinUntil([&] { return portal.calls.size() > asked + 3; }));
    EXPECT_TRUE(spinUntil([&] { return portal.calls.back() == bindPanel; }));
    EXPECT_TRUE(settles(panel, Kind::registered));
}

TEST_F(PortalHotkeyRegistrarTest, aPortalThatWasAskedTooEarlyIsAskedOnceMoreBeforeItFails) {
    FakePortal portal;
    portal.answers = FakePortal::Answers::notReady;
    EXPECT_EQ(registrar.grab(panel, superSpace).kind, Kind::asked);
    ASSERT_TRUE(spinUntil([&] { return !outcomes.empty(); }));
    EXPECT_EQ(outcomes[panel].kind, Kind::registered) << "and nothing else was told before";
}

TEST_F(PortalHotkeyRegistrarTest, aChangeInTheSettingsIsNoAnswerToTheQuestion) {
    FakePortal portal;
    portal.user = FakePortal::User::isAway;
    registrar.grab(panel, superSpace);
    ASSERT_TRUE(
        spinUntil([&] { return !portal.calls.empty() && portal.calls.back() == bindPanel; }));
    portal.rebind(portal.keys);
    spinFor(50);
    EXPECT_TRUE(outcomes.empty());
}

TEST_F(PortalHotkeyRegistrarTest, saysThatAPortalDoesNotTakeItsNameDown) {
    FakePortal portal;
    portal.takesNames = false;
    outcomeFor(Kind::registered); // it may know the program all the same
    EXPECT_THAT(problems, ElementsAre(HasSubstr("who is that?")));
}

TEST_F(PortalHotkeyRegistrarTest, theFirstWishesAreOneQuestionThoughTheyComeOneAfterTheOther) {
    FakePortal portal;
    registrar.grab(panel, superSpace);
    spinFor(20); // as long as it takes to read a file of commands
    registrar.grab(clipboard, superShiftV);
    ASSERT_TRUE(settles(clipboard, Kind::registered));
    EXPECT_THAT(portal.calls, Contains(HasSubstr("BindShortcuts")).Times(1));
}

TEST_F(PortalHotkeyRegistrarTest, readsBackWhatAPortalBindsWithoutSaying) {
    FakePortal portal;
    portal.answers = FakePortal::Answers::listWhenAsked;
    EXPECT_EQ(outcomeFor(Kind::registered).trigger, "Meta+Space");
    EXPECT_EQ(portal.calls.back(), "ListShortcuts");
}

TEST_F(PortalHotkeyRegistrarTest, aPortalThatComesBackIsAskedAgain) {
    EXPECT_THAT(outcomeFor(Kind::refused).reason, HasSubstr("no desktop portal"));
    std::optional<FakePortal> portal(std::in_place);
    ASSERT_TRUE(settles(panel, Kind::registered)); // by itself: it came up late
    portal.reset();
    ASSERT_TRUE(settles(panel, Kind::refused));
    EXPECT_THAT(outcomes[panel].reason, HasSubstr("has gone"));
    portal.emplace();
    ASSERT_TRUE(settles(panel, Kind::registered));
    EXPECT_EQ(portal->calls.front(), "Register com.corvane.tessarine"); // it knows nobody yet
    portal->activate("panel");
    ASSERT_TRUE(spinUntil([&] { return presses.size() == 1; }));

    portal->closeSession();
    ASSERT_TRUE(settles(panel, Kind::refused));
    EXPECT_THAT(outcomes[panel].reason, HasSubstr("ended"));
}

TEST_F(PortalHotkeyRegistrarTest, takesTheQuestionBackWhileTheUserThinks) {
    FakePortal portal;
    portal.user = FakePortal::User::isAway;
    registrar.grab(panel, superSpace);
    ASSERT_TRUE(
        spinUntil([&] { return !portal.calls.empty() && portal.calls.back() == bindPanel; }));
    registrar.release(panel);
    ASSERT_TRUE(spinUntil([&] { return portal.calls.size() == 5; }))
        << testing::PrintToString(portal.calls);
    EXPECT_THAT(portal.calls, Contains("Close"));         // the window that asks
    EXPECT_THAT(portal.calls, Contains("Close session")); // and what it was for
    EXPECT_FALSE(outcomes.contains(panel));
}

TEST_F(PortalHotkeyRegistrarTest, listensToThePortalAlone) {
    FakePortal portal;
    outcomeFor(Kind::registered);
    auto other =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("stranger"));
    const QVariantList press{QVariant::fromValue(QDBusObjectPath(portal.session)),
                             QStringLiteral("panel"),
                             quint64(0),
                             QVariantMap()};
    other.send(busSignal(
        QLatin1String(FakePortal::desktop), FakePortal::shortcutsInterface, "Activated", press));
    // And to its own session alone.
    portal.tell(QLatin1String(FakePortal::desktop),
                FakePortal::shortcutsInterface,
                "Activated",
                {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/another/session"))),
                 QStringLiteral("panel"),
                 quint64(0),
                 QVariantMap()});
    portal.tell(QLatin1String(FakePortal::desktop),
                FakePortal::shortcutsInterface,
                "Activated",
                {QStringLiteral("of another shape")});
    spinFor(50);
    EXPECT_TRUE(presses.empty());
    QDBusConnection::disconnectFromBus(QStringLiteral("stranger"));
}

} // namespace
} // namespace tessarine
