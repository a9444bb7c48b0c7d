#include "launcherapp/platform/linux/input/X11HotkeyRegistrar.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/input/NoHotkeyRegistrar.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/surroundings/DesktopLook.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QProcess>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <thread>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Key codes of the X server's usual keyboard.
constexpr std::uint8_t superKey = 133;
constexpr std::uint8_t shiftKey = 50;
constexpr std::uint8_t spaceKey = 65;
constexpr std::uint8_t capsLock = 66;
constexpr std::uint8_t numLock = 77;
constexpr std::uint8_t qKey = 24;
constexpr std::uint8_t aKey = 38;
constexpr std::uint8_t vKey = 55;
constexpr std::uint8_t xKey = 53;

constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = HotkeyModifiers::command};
constexpr HotkeyBinding commandA{.keyCode = 0, .carbonModifiers = HotkeyModifiers::command};
constexpr HotkeyBinding commandV{.keyCode = 9, .carbonModifiers = HotkeyModifiers::command};
constexpr auto held = HotkeyOutcome::Kind::heldByAnother;
constexpr auto registered = HotkeyOutcome::Kind::registered;

/// Another program on the display, with the user's fingers.
class OtherClient {
public:
    OtherClient() : connection_(xcb_connect(nullptr, nullptr)) {}

    ~OtherClient() { xcb_disconnect(connection_); }

    OtherClient(const OtherClient&) = delete;
    OtherClient& operator=(const OtherClient&) = delete;

    void down(std::uint8_t key) { fake(XCB_KEY_PRESS, key); }

    void up(std::uint8_t key) { fake(XCB_KEY_RELEASE, key); }

    void tap(std::uint8_t key) {
        down(key);
        up(key);
    }

    void chord(std::uint8_t modifier, std::uint8_t key) {
        down(modifier);
        tap(key);
        up(modifier);
    }

    /// Until the display has taken all of it.
    void finish() {
        free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }

    bool grabs(std::uint16_t modifiers, std::uint8_t key) {
        const auto cookie = xcb_grab_key_checked(
            connection_, 0, root(), modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        auto* error = xcb_request_check(connection_, cookie);
        free(error);
        return !error;
    }

    /// As window managers do, with every keyboard's keys or with those of a single one.
    bool grabsByInputExtension(std::uint32_t modifiers, std::uint8_t key, std::uint16_t device) {
        const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        auto* version = xcb_input_xi_query_version_reply(
            connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr);
        free(version);
        auto* reply = xcb_input_xi_passive_grab_device_reply(
            connection_,
            xcb_input_xi_passive_grab_device(connection_,
                                             XCB_CURRENT_TIME,
                                             root(),
                                             XCB_NONE,
                                             key,
                                             device,
                                             1,
                                             1,
                                             XCB_INPUT_GRAB_TYPE_KEYCODE,
                                             XCB_INPUT_GRAB_MODE_22_ASYNC,
                                             XCB_INPUT_GRAB_MODE_22_ASYNC,
                                             XCB_INPUT_GRAB_OWNER_NO_OWNER,
                                             &events,
                                             &modifiers),
            nullptr);
        const bool granted = reply && reply->num_modifiers == 0;
        free(reply);
        return granted;
    }

    /// Has the keyboard as the program in front has it.
    void takeFocus() {
        const auto window = xcb_generate_id(connection_);
        const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS};
        xcb_create_window(connection_,
                          XCB_COPY_FROM_PARENT,
                          window,
                          root(),
                          0,
                          0,
                          10,
                          10,
                          0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                          values);
        xcb_map_window(connection_, window);
        xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
        finish();
    }

    /// The keys that came to it so far.
    std::vector<int> keys() {
        finish();
        std::vector<int> result;
        while (auto* event = xcb_poll_for_event(connection_)) {
            if ((event->response_type & 0x7f) == XCB_KEY_PRESS)
                result.push_back(reinterpret_cast<xcb_key_press_event_t*>(event)->detail);
            free(event);
        }
        return result;
    }

private:
    xcb_window_t root() const {
        return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }

    void fake(std::uint8_t type, std::uint8_t key) {
        xcb_test_fake_input(connection_, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(connection_);
    }

    xcb_connection_t* connection_;
};

/// A window that can hold the keyboard without the focus, as the panel's does.
class Field : public QWindow {
public:
    Field() {
        setFlags(Qt::X11BypassWindowManagerHint);
        setGeometry(0, 0, 50, 50);
    }

    bool takeKeyboard() {
        show();
        auto* reply = xcb_grab_keyboard_reply(connection(),
                                              xcb_grab_keyboard(connection(),
                                                                0,
                                                                static_cast<xcb_window_t>(winId()),
                                                                XCB_CURRENT_TIME,
                                                                XCB_GRAB_MODE_ASYNC,
                                                                XCB_GRAB_MODE_ASYNC),
                                              nullptr);
        const bool taken = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        free(reply);
        return taken;
    }

    void giveKeyboardBack() {
        hide();
        xcb_ungrab_keyboard(connection(), XCB_CURRENT_TIME);
        xcb_flush(connection());
    }

    std::string text;

protected:
    void keyPressEvent(QKeyEvent* event) override { text += event->text().toStdString(); }

private:
    static xcb_connection_t* connection() {
        return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    }
};

class X11HotkeyRegistrarTest : public testing::Test {
protected:
    X11HotkeyRegistrarTest() {
        registrar.setEvents({.pressed =
                                 [this](const HotkeyRegistrar::Press& press) {
                                     presses.push_back(press);
                                     if (whenPressed)
                                         whenPressed();
                                 },
                             .keysChanged = [this] { ++keyChanges; }});
    }

    void TearDown() override {
        if (layoutChanged)
            layout({QStringLiteral("us")});
    }

    void layout(const QStringList& arguments) {
        layoutChanged = true;
        ASSERT_EQ(QProcess::execute(QStringLiteral("setxkbmap"), arguments), 0);
    }

    /// As the panel does it: the chord gives the field the keyboard, and takes it away again.
    void toggleAtPress(Field& field, bool& up) {
        registrar.grab(1, commandSpace);
        whenPressed = [&field, &up] {
            if (up)
                field.giveKeyboardBack();
            else
                field.takeKeyboard();
            up = !up;
        };
    }

    /// How often the chord is told when the keys are pressed so.
    std::size_t pressesOf(const std::function<void()>& keys) {
        presses.clear();
        keys();
        user.finish();
        spinFor(100); // also until a key that is up is known to be
        return presses.size();
    }

    QtMainQueue queue;
    std::vector<HotkeyRegistrar::Press> presses;
    std::function<void()> whenPressed;
    int keyChanges = 0;
    bool layoutChanged = false;
    X11HotkeyRegistrar registrar{queue};
    OtherClient user;
};

TEST_F(X11HotkeyRegistrarTest, aChordIsToldWhicheverLocksAreOn) {
    ASSERT_EQ(registrar.grab(1, commandSpace), HotkeyOutcome{});
    ASSERT_EQ(registrar.grab(7, commandV), HotkeyOutcome{});
    for (const auto& locks :
         std::vector<std::vector<std::uint8_t>>{{}, {capsLock}, {numLock}, {capsLock, numLock}}) {
        for (const auto lock : locks)
            user.tap(lock);
        EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 1u);
        for (const auto lock : locks)
            user.tap(lock);
    }
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, vKey); }), 1u);
    EXPECT_EQ(presses.at(0).id, 7u);

    EXPECT_EQ(pressesOf([&] { user.tap(spaceKey); }), 0u);
    EXPECT_EQ(pressesOf([&] { user.chord(shiftKey, spaceKey); }), 0u);
    EXPECT_EQ(pressesOf([&] {
                  user.down(shiftKey);
                  user.chord(superKey, spaceKey);
                  user.up(shiftKey);
              }),
              0u);
    registrar.release(1);
    registrar.release(99); // never taken
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 0u);
}

TEST_F(X11HotkeyRegistrarTest, tellsWhenTheKeyWentDown) {
    registrar.grab(1, commandSpace);
    const auto before = queue.uptime();
    user.chord(superKey, spaceKey);
    user.finish();
    const auto after = queue.uptime();
    // The program is busy meanwhile.
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    ASSERT_TRUE(spinUntil([&] { return !presses.empty(); }));
    constexpr Seconds tick{0.011}; // of the display's clock
    EXPECT_GT(presses[0].at, before - tick);
    EXPECT_LT(presses[0].at, after + tick);
}

TEST_F(X11HotkeyRegistrarTest, aChordOfAnotherProgramIsHeldByIt) {
    OtherClient other;
    constexpr std::uint16_t superCaps = XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK;
    ASSERT_TRUE(other.grabs(superCaps, vKey)); // one of its lock states alone
    EXPECT_EQ(registrar.grab(1, commandV).kind, held);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, vKey); }), 0u);
    EXPECT_TRUE(other.grabs(XCB_MOD_MASK_4, vKey)) << "the other states were given back";
    EXPECT_EQ(registrar.grab(1, commandSpace).kind, registered);
    EXPECT_FALSE(other.grabs(XCB_MOD_MASK_4 | XCB_MOD_MASK_2, spaceKey)) << "Num Lock's too";
    EXPECT_EQ(registrar.grab(2, {.keyCode = 200, .carbonModifiers = 0x100}),
              (HotkeyOutcome{.kind = HotkeyOutcome::Kind::refused,
                             .reason = "no keyboard has that key"}));
}

TEST_F(X11HotkeyRegistrarTest, aChordOfAWindowManagersIsHeldByItToo) {
    constexpr std::uint16_t virtualCoreKeyboard = 3;
    for (const auto device :
         {virtualCoreKeyboard, static_cast<std::uint16_t>(XCB_INPUT_DEVICE_ALL_MASTER)}) {
        OtherClient manager;
        ASSERT_TRUE(manager.grabsByInputExtension(XCB_MOD_MASK_4, spaceKey, device)) << device;
        EXPECT_EQ(registrar.grab(1, commandSpace).kind, held) << device;
        EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 0u);
    }
    ASSERT_EQ(registrar.grab(1, commandSpace).kind, registered);
    EXPECT_EQ(registrar.grab(1, commandSpace).kind, registered) << "again, over its own";
    OtherClient later;
    EXPECT_TRUE(later.grabsByInputExtension(XCB_MOD_MASK_1, spaceKey, virtualCoreKeyboard))
        << "the question left nothing behind";
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 1u);
}

TEST_F(X11HotkeyRegistrarTest, aNewChordTakesTheOldOnesPlaceOnceItIsGranted) {
    OtherClient other;
    ASSERT_TRUE(other.grabs(XCB_MOD_MASK_4, vKey));
    ASSERT_EQ(registrar.grab(1, commandSpace).kind, registered);
    EXPECT_EQ(registrar.grab(1, commandV).kind, held);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 1u);
    EXPECT_EQ(registrar.grab(1, commandA).kind, registered);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 1u);
    EXPECT_TRUE(other.grabs(XCB_MOD_MASK_4, spaceKey)) << "the old one was given back";
}

TEST_F(X11HotkeyRegistrarTest, aChordThatIsTakenAgainMissesNoPressMeanwhile) {
    constexpr std::size_t count = 300;
    ASSERT_EQ(registrar.grab(1, commandSpace).kind, registered);
    OtherClient front;
    front.takeFocus();
    std::jthread fingers([] {
        OtherClient fast;
        for (std::size_t i = 0; i < count; ++i) {
            fast.chord(superKey, spaceKey);
            fast.finish();
        }
    });
    EXPECT_TRUE(spinUntil([&] {
        registrar.grab(1, commandSpace);
        return presses.size() == count;
    })) << presses.size();
    fingers.join();
    const auto keys = front.keys();
    EXPECT_EQ(std::ranges::count(keys, spaceKey), 0) << "went to the program in front";
}

TEST_F(X11HotkeyRegistrarTest, chordsThatChangePlacesOnANewLayoutAreBothTakenAgain) {
    constexpr HotkeyBinding commandQ{.keyCode = 12, .carbonModifiers = HotkeyModifiers::command};
    registrar.grab(1, commandA);
    registrar.grab(2, commandQ);
    layout({QStringLiteral("fr")});
    ASSERT_TRUE(spinUntil([&] { return keyChanges > 0; }));
    EXPECT_EQ(registrar.grab(1, commandA), HotkeyOutcome{});
    EXPECT_EQ(registrar.grab(2, commandQ), HotkeyOutcome{});
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, qKey); }), 1u);
    EXPECT_EQ(presses.at(0).id, 1u);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 1u);
    EXPECT_EQ(presses.at(0).id, 2u);
}

TEST_F(X11HotkeyRegistrarTest, twoBindingsOnOneKeyDoNotTakeItFromEachOther) {
    constexpr HotkeyBinding commandSlash{.keyCode = 44, .carbonModifiers = 0x100};
    constexpr HotkeyBinding commandMinus{.keyCode = 27, .carbonModifiers = 0x100};
    constexpr std::uint8_t slashKey = 61; // where a German keyboard has the minus
    const int before = keyChanges;
    ASSERT_EQ(registrar.grab(1, commandSlash).kind, registered);
    layout({QStringLiteral("de")});
    spinFor(300);
    EXPECT_EQ(keyChanges, before) << "no slash without Shift: the place counts, and is the same";
    EXPECT_EQ(registrar.grab(2, commandMinus),
              (HotkeyOutcome{.kind = HotkeyOutcome::Kind::refused,
                             .reason = "it is the same key as another hotkey on this keyboard"}));
    registrar.release(2);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, slashKey); }), 1u);
}

TEST_F(X11HotkeyRegistrarTest, tellsOfANewLayoutAlsoForAChordThatItRefused) {
    constexpr std::uint8_t freeKey = 61; // the slash of a US keyboard
    OtherClient other;
    ASSERT_TRUE(other.grabs(XCB_MOD_MASK_4, qKey));
    EXPECT_EQ(registrar.grab(1, {.keyCode = 12, .carbonModifiers = 0x100}).kind, held);
    layout({QStringLiteral("fr")}); // the letter is on another key now
    EXPECT_TRUE(spinUntil([&] { return keyChanges > 0; }));
    registrar.release(1);
    const int before = keyChanges;
    ASSERT_EQ(QProcess::execute(
                  QStringLiteral("xmodmap"),
                  {QStringLiteral("-e"), QStringLiteral("keycode %1 = F35").arg(int{freeKey})}),
              0);
    spinFor(300);
    EXPECT_EQ(keyChanges, before) << "nobody wants that key";
}

TEST_F(X11HotkeyRegistrarTest, aPressOfAKeyReadsAsTheChordThatGrabsIt) {
    constexpr std::uint32_t secondLayout = 0x2000;

    const struct {
        const char* reason;
        std::uint8_t key;
        std::uint32_t state;
        std::optional<HotkeyBinding> chord;
    } cases[] = {
        {"plain", spaceKey, 0, HotkeyBinding{49, 0}},
        {"all modifiers",
         vKey,
         XCB_MOD_MASK_4 | XCB_MOD_MASK_1 | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL,
         HotkeyBinding{9, 0x1b00}},
        {"locks and the layout count for nothing",
         aKey,
         XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 | secondLayout,
         commandA},
        {"a modifier is no key", superKey, XCB_MOD_MASK_4, std::nullopt},
        {"a key without a number", 255, XCB_MOD_MASK_4, std::nullopt},
    };

    for (const auto& each : cases)
        EXPECT_EQ(registrar.chord(each.key, each.state), each.chord) << each.reason;

    layout({QStringLiteral("fr")}); // where it types another letter
    ASSERT_TRUE(spinUntil([&] {
        return registrar.chord(aKey, XCB_MOD_MASK_4) == HotkeyBinding{12, 0x100};
    }));
}

TEST_F(X11HotkeyRegistrarTest, aQuickSecondPressIsNoRepetition) {
    Field field;
    bool up = false;
    toggleAtPress(field, up);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 1u);
    EXPECT_EQ(pressesOf([&] {
                  user.down(superKey);
                  user.down(spaceKey);
                  user.finish();
                  EXPECT_TRUE(spinUntil([&] { return !up; }));
                  user.up(spaceKey); // goes to another program
                  user.down(spaceKey);
                  user.finish();
                  EXPECT_TRUE(spinUntil([&] { return up; }));
                  user.up(spaceKey);
                  user.up(superKey);
              }),
              2u);
    field.giveKeyboardBack();
}

TEST_F(X11HotkeyRegistrarTest, whatIsTypedSinceThePressLandsInThePanel) {
    Field field;
    registrar.grab(1, commandSpace);
    OtherClient front;
    front.takeFocus();
    bool taken = false;
    whenPressed = [&] { taken = field.takeKeyboard(); };
    // All of it before the program gets to see the first key.
    user.chord(superKey, spaceKey);
    for (int i = 0; i < 50; ++i) {
        user.tap(qKey);
        user.tap(xKey);
    }
    user.finish();
    EXPECT_TRUE(spinUntil([&] { return field.text.size() >= 100; })) << field.text.size();
    EXPECT_TRUE(taken);
    std::string typed;
    for (int i = 0; i < 50; ++i)
        typed += "qx";
    EXPECT_EQ(field.text, typed);
    EXPECT_THAT(front.keys(), ElementsAre(superKey)); // which went down before the chord was one
    field.giveKeyboardBack();
}

TEST_F(X11HotkeyRegistrarTest, reachesTheProgramWhileItsOwnWindowHoldsTheKeyboard) {
    Field field;
    bool up = false;
    toggleAtPress(field, up);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(pressesOf([&] { user.chord(superKey, spaceKey); }), 1u) << round;
        EXPECT_TRUE(up);
        EXPECT_EQ(pressesOf([&] { user.tap(qKey); }), 0u);
        EXPECT_EQ(pressesOf([&] {
                      user.down(superKey);
                      user.down(spaceKey);
                      user.finish();
                      EXPECT_TRUE(spinUntil([&] { return !up; }));
                      user.up(spaceKey); // goes to another program: the window is hidden
                      user.up(superKey);
                  }),
                  1u)
            << round;
    }
    EXPECT_EQ(field.text, "qqq");
}

TEST_F(X11HotkeyRegistrarTest, aKeyHeldDownIsOnePress) {
    Field field;
    registrar.grab(1, commandSpace);
    for (const bool takes : {false, true}) {
        whenPressed = takes ? std::function<void()>([&] { field.takeKeyboard(); }) : nullptr;
        presses.clear();
        user.down(superKey);
        user.down(spaceKey);
        user.finish();
        spinFor(1200); // the display repeats keys from 660 ms on
        user.up(superKey);
        user.finish();
        spinFor(100); // still repeated, now without its modifier
        user.up(spaceKey);
        user.finish();
        spinFor(100);
        EXPECT_THAT(presses, SizeIs(1));
        EXPECT_EQ(field.text, "");
    }
    field.giveKeyboardBack();
}

TEST_F(X11HotkeyRegistrarTest, followsTheKeyboardsLayout) {
    registrar.grab(1, commandA);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 1u);

    layout({QStringLiteral("fr")}); // there the two have changed places
    ASSERT_TRUE(spinUntil([&] { return keyChanges > 0; }));
    registrar.release(1);
    registrar.grab(1, commandA);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, qKey); }), 1u);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 0u);

    layout({QStringLiteral("ru")}); // no such letter: the place counts
    ASSERT_TRUE(spinUntil([&] { return keyChanges > 1; }));
    registrar.release(1);
    registrar.grab(1, commandA);
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 1u);

    const int before = keyChanges;
    layout({QStringLiteral("ru,us"), QStringLiteral("-option"), QStringLiteral("grp:caps_toggle")});
    spinFor(300);
    EXPECT_EQ(keyChanges, before) << "the same key as before, found by its letter now";
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 1u);
    user.tap(capsLock); // to the other layout
    EXPECT_EQ(pressesOf([&] { user.chord(superKey, aKey); }), 1u);
    user.tap(capsLock);
    layout({QStringLiteral("-option"), QStringLiteral("")});
}

TEST_F(X11HotkeyRegistrarTest, aProgramThatHangsDoesNotKeepTheKeyboard) {
    registrar.grab(1, commandSpace);
    OtherClient front;
    front.takeFocus();
    user.chord(superKey, spaceKey);
    user.tap(xKey);
    user.finish();
    EXPECT_THAT(front.keys(), ElementsAre(superKey)) << "held back for the panel";
    // The event loop does not run meanwhile.
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_THAT(front.keys(), ElementsAre(xKey));
    EXPECT_TRUE(spinUntil([&] { return !presses.empty(); }));
}

TEST(HotkeyRegistrar, asksTheDesktopInAWaylandSessionThatThereIs) {
    QtMainQueue queue;
    const auto outcomeOn = [&](const DesktopSurroundings& desktop) {
        return hotkeyRegistrar(queue, desktop, "com.example.Keys")->grab(1, commandSpace).kind;
    };
    qputenv("WAYLAND_DISPLAY", "left-by-another-session");
    EXPECT_EQ(outcomeOn(DesktopLook::display({.hasX11 = true, .hasWayland = true})),
              HotkeyOutcome::Kind::registered);
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_EQ(outcomeOn({.hasX11 = true, .hasWayland = true}), HotkeyOutcome::Kind::asked);
}

TEST(NoHotkeyRegistrar, saysWhy) {
    NoHotkeyRegistrar registrar("there is no keyboard");
    EXPECT_EQ(
        registrar.grab(1, commandSpace),
        (HotkeyOutcome{.kind = HotkeyOutcome::Kind::refused, .reason = "there is no keyboard"}));
}

} // namespace
} // namespace tessarine
