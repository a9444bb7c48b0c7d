#include "launcherapp/platform/linux/input/X11KeyInjector.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/input/SessionKeyInjector.h"
#include "launcherapp/platform/linux/input/typing/X11KeyMap.h"
#include "launcherapp/platform/linux/input/typing/X11TestKeys.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"
#include "launcherapp/platform/linux/x11/X11Extension.h"
#include "tests/linux/BareDisplay.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <gmock/gmock.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QProcess>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Chord = KeyInjector::PasteChord;

// Key codes of the X server's usual keyboard, and the protocol's bits of two locks.
constexpr std::uint8_t returnKey = 36;
constexpr std::uint8_t controlKey = 37;
constexpr std::uint8_t shiftKey = 50;
constexpr std::uint8_t superKey = 133;
constexpr std::uint8_t capsAndNumLock = 0x12;

/// What the keyboard of the display is now.
std::vector<xcb_keysym_t> meanings(const X11Connection& display) {
    const auto* setup = xcb_get_setup(display.xcb());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const XcbOwned<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
        display.xcb(),
        xcb_get_keyboard_mapping(display.xcb(), setup->min_keycode, count),
        nullptr));
    const auto* first = xcb_get_keyboard_mapping_keysyms(reply.get());
    return {first, first + xcb_get_keyboard_mapping_keysyms_length(reply.get())};
}

/// A list of layouts, each with its variant after a colon.
void setLayout(const QString& layouts) {
    QStringList names;
    QStringList variants;
    for (const auto& layout : layouts.split(QLatin1Char(','))) {
        names << layout.section(QLatin1Char(':'), 0, 0);
        variants << layout.section(QLatin1Char(':'), 1);
    }
    ASSERT_EQ(QProcess::execute(QStringLiteral("setxkbmap"),
                                {QStringLiteral("-layout"),
                                 names.join(QLatin1Char(',')),
                                 QStringLiteral("-variant"),
                                 variants.join(QLatin1Char(','))}),
              0);
}

/// An editor of another program, as far as the injector can tell.
class Editor : public QPlainTextEdit {
public:
    Editor() {
        // The window manager reads its keys anew at every change, and is slow with windows then.
        setWindowFlag(Qt::BypassWindowManagerHint);
    }

    std::vector<std::string> chords; ///< with Ctrl, as they came

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->modifiers() & Qt::ControlModifier && event->key() != Qt::Key_Control &&
            event->key() != Qt::Key_Shift)
            chords.push_back(QKeySequence(event->keyCombination()).toString().toStdString());
        QPlainTextEdit::keyPressEvent(event);
    }
};

class X11KeyInjectorTest : public testing::Test {
protected:
    X11KeyInjectorTest() {
        EXPECT_TRUE(hands.areThere());
        setLayout(QStringLiteral("us"));
        editor.show();
        editor.activateWindow();
        EXPECT_TRUE(spinUntil([&] { return editor.hasFocus(); }));
    }

    ~X11KeyInjectorTest() override {
        for (const auto key : hands.down())
            hands.release(key);
        hands.setLocks({});
        hands.finish();
        setLayout(QStringLiteral("us"));
    }

    /// Types a text and gives what the editor then holds.
    std::string typed(const std::string& text) {
        editor.clear();
        std::optional<bool> isWhole;
        injector.type(text, [&](bool whole) { isWhole = whole; });
        EXPECT_FALSE(isWhole); // never inside the call
        EXPECT_TRUE(spinUntil([&] { return isWhole.has_value(); }));
        EXPECT_EQ(isWhole, true);
        spinUntil([&] { return editor.toPlainText().toStdString() == text; });
        return editor.toPlainText().toStdString();
    }

    QtMainQueue queue;
    X11Connection display;
    X11TestKeys hands{display.xcb()};
    Editor editor;
    X11KeyInjector injector{queue};
};

/// The user's own keyboard, which is another device than the one that programs press.
class RealKeyboard {
public:
    explicit RealKeyboard(xcb_connection_t* connection) : connection_(connection) {
        const XcbOwned<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
            connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
        const XcbOwned<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
            connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
        for (auto each = xcb_input_xi_query_device_infos_iterator(devices.get()); each.rem > 0;
             xcb_input_xi_device_info_next(&each)) {
            const std::string name(xcb_input_xi_device_info_name(each.data), each.data->name_len);
            if (each.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD &&
                name.find("XTEST") == std::string::npos)
                device_ = static_cast<std::uint8_t>(each.data->deviceid);
        }
        const auto* extension = x11Extension(connection, xcb_input_id);
        firstEvent_ = extension ? extension->first_event : 0;
        const XcbOwned<xcb_input_open_device_reply_t> opened(xcb_input_open_device_reply(
            connection, xcb_input_open_device(connection, device_), nullptr));
    }

    bool isThere() const { return device_ != 0; }

    void press(std::uint8_t key) const { send(XCB_INPUT_DEVICE_KEY_PRESS, key); }

    void release(std::uint8_t key) const { send(XCB_INPUT_DEVICE_KEY_RELEASE, key); }

private:
    void send(std::uint8_t event, std::uint8_t key) const {
        xcb_test_fake_input(connection_,
                            static_cast<std::uint8_t>(firstEvent_ + event),
                            key,
                            XCB_CURRENT_TIME,
                            XCB_WINDOW_NONE,
                            0,
                            0,
                            device_);
        xcb_flush(connection_);
    }

    xcb_connection_t* connection_;
    std::uint8_t device_ = 0;
    std::uint8_t firstEvent_ = 0;
};

TEST_F(X11KeyInjectorTest, pastesAgainAfterTheUserHasLetGoOfWhatWasHeld) {
    QGuiApplication::clipboard()->setText(QStringLiteral("pasted "));
    const RealKeyboard keyboard(display.xcb());
    ASSERT_TRUE(keyboard.isThere());
    keyboard.press(controlKey);
    hands.finish();
    ASSERT_THAT(hands.down(), ElementsAre(controlKey));
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    EXPECT_TRUE(spinUntil([&] { return editor.toPlainText() == QStringLiteral("pasted "); }));
    keyboard.release(controlKey);
    hands.finish();
    spinFor(20);
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    EXPECT_TRUE(spinUntil([&] { return editor.toPlainText() == QStringLiteral("pasted pasted "); }))
        << editor.toPlainText().toStdString();
}

TEST_F(X11KeyInjectorTest, typesWhateverTheLayout) {
    const struct {
        const char* layout;
        const char* text;
        const char* reason;
    } cases[] = {
        {"us", "Straight, \"quoted\" {text} ~42 | \\n\n\tnext", "keys with and without Shift"},
        {"us", "Größe €5 😀\n", "nothing of it on a key"},
        {"de", "Größe €5 😀 @{}\\\n", "with AltGr, and a dead key's neighbours"},
        {"de", "^ ´ `", "dead keys type nothing by themselves"},
        {"fr", "1234567890 qwerty AZERTY ;:!", "digits with Shift"},
        {"ru", "Привет, world. ёЁ №5", "letters that no key has beside those of the layout"},
        {"us,ru", "Привет, world.", "of two layouts"},
        {"gr", "Αθήνα v", "Greek"},
        {"us", "👩‍👩‍👧 ❤️ שלום", "joined characters, and from the right"},
    };

    for (const auto& [layout, text, reason] : cases) {
        SCOPED_TRACE(std::string(layout) + ": " + reason);
        setLayout(QString::fromLatin1(layout));
        const auto before = meanings(display);
        EXPECT_EQ(typed(text), text);
        EXPECT_EQ(meanings(display), before);
    }
}

TEST_F(X11KeyInjectorTest, typesInTheSecondLayoutWithLocksOnAndLeavesThemSo) {
    setLayout(QStringLiteral("us,ru"));
    const X11TestKeys::Locks locks{.modifiers = capsAndNumLock, .layout = 1};
    hands.setLocks(locks);
    hands.finish();
    EXPECT_EQ(typed("Привет, World ß 9"), "Привет, World ß 9");
    EXPECT_EQ(hands.locks(), locks);
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    EXPECT_EQ(hands.locks(), locks);
}

TEST_F(X11KeyInjectorTest, typesMoreStrangersThanThereAreKeysToSpare) {
    const auto before = meanings(display);
    std::string text;
    for (char32_t character = 0x4e00; character < 0x4e00 + 150; ++character)
        text += QString::fromUcs4(&character, 1).toStdString();
    EXPECT_EQ(typed(text), text);
    EXPECT_EQ(meanings(display), before);
}

TEST_F(X11KeyInjectorTest, typesOneTextAfterTheOtherAndLeavesOutWhatSteers) {
    std::vector<bool> done;
    injector.type("a\r\nb\rc\a\x1b[0m\x7f", [&](bool whole) { done.push_back(whole); });
    injector.type(std::string(X11KeyInjector::longestText + 1, 'x'),
                  [&](bool whole) { done.push_back(whole); });
    injector.type("!", [&](bool whole) { done.push_back(whole); });
    EXPECT_TRUE(spinUntil([&] { return done.size() == 3; }));
    EXPECT_THAT(done, ElementsAre(true, false, true));
    EXPECT_TRUE(spinUntil([&] { return editor.toPlainText() == QStringLiteral("a\nb\nc[0m!"); }));
}

TEST_F(X11KeyInjectorTest, leavesTheKeyboardAsItWasWhenItEndsInTheMiddle) {
    const auto before = meanings(display);
    {
        X11KeyInjector brief(queue);
        brief.type("😀", [](bool) { ADD_FAILURE() << "it has ended"; });
        ASSERT_TRUE(spinUntil([&] { return meanings(display) != before; }));
    }
    EXPECT_EQ(meanings(display), before);
    EXPECT_EQ(typed("then"), "then");
}

TEST_F(X11KeyInjectorTest, pastesWhateverIsHeld) {
    const struct {
        std::vector<std::uint8_t> held;
        std::vector<std::uint8_t> heldAfter;
        const char* reason;
    } cases[] = {
        {{}, {}, "nothing"},
        {{superKey, shiftKey}, {superKey, shiftKey}, "they would make another chord of it"},
        {{controlKey}, {controlKey}, "the chord's own"},
        {{controlKey, returnKey}, {controlKey}, "Return would type if it were pressed again"},
    };

    QGuiApplication::clipboard()->setText(QStringLiteral("pasted"));
    for (const auto& [held, heldAfter, reason] : cases) {
        SCOPED_TRACE(reason);
        for (const auto key : held)
            hands.press(key);
        hands.finish();
        spinFor(20); // what the keys themselves do in the editor
        editor.clear();
        EXPECT_TRUE(injector.paste(Chord::ordinary));
        EXPECT_TRUE(spinUntil([&] { return editor.toPlainText() == QStringLiteral("pasted"); }));
        EXPECT_THAT(hands.down(), testing::UnorderedElementsAreArray(heldAfter));
        for (const auto key : hands.down())
            hands.release(key);
        hands.finish();
    }
}

TEST_F(X11KeyInjectorTest, pastesByTheKeyThatIsV) {
    const struct {
        const char* layout;
        std::uint8_t group;
        Chord chord;
        const char* expected;
        const char* reason;
    } cases[] = {
        {"us", 0, Chord::ordinary, "Ctrl+V", ""},
        {"us", 0, Chord::terminal, "Ctrl+Shift+V", ""},
        {"us:dvorak", 0, Chord::ordinary, "Ctrl+V", "on another key"},
        {"us,us:dvorak", 1, Chord::ordinary, "Ctrl+V", "the layout in use counts"},
        {"ru", 0, Chord::ordinary, "Ctrl+М", "no layout has it: by its place"},
        {"us,ru", 1, Chord::ordinary, "Ctrl+V", "by the other layout's key"},
        {"gr", 0, Chord::terminal, "Ctrl+Shift+Ω", "no layout has it"},
    };

    for (const auto& [layout, group, chord, expected, reason] : cases) {
        SCOPED_TRACE(std::string(layout) + ": " + reason);
        setLayout(QString::fromLatin1(layout));
        hands.setLocks({.modifiers = 0, .layout = group});
        hands.finish();
        spinFor(20);
        editor.chords.clear();
        EXPECT_TRUE(injector.paste(chord));
        EXPECT_TRUE(spinUntil([&] { return !editor.chords.empty(); }));
        EXPECT_THAT(editor.chords, ElementsAre(expected));
    }
}

TEST_F(X11KeyInjectorTest, letsGoOfWhatIsHeldBeforeItTypes) {
    hands.press(controlKey);
    hands.finish();
    EXPECT_EQ(typed("abc"), "abc");
    EXPECT_THAT(hands.down(), Contains(controlKey)); // within one turn it is held still
    EXPECT_EQ(typed("a😀"), "a😀");
    EXPECT_THAT(hands.down(), Not(Contains(controlKey))); // perhaps nobody holds it any more
    EXPECT_THAT(editor.chords, IsEmpty());
}

TEST(KeyInjector, typesIntoATerminal) {
    const BareDisplay bare; // without a window manager the pointer says who has the keyboard
    QtMainQueue queue;
    X11KeyInjector injector(queue);
    const ScratchFolder folder;
    QProcess terminal;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    terminal.setProcessEnvironment(environment);
    terminal.start(QStringLiteral("xterm"),
                   {QStringLiteral("-geometry"),
                    QStringLiteral("80x24+0+0"),
                    QStringLiteral("-e"),
                    QStringLiteral("sh"),
                    QStringLiteral("-c"),
                    QString::fromStdString("echo > " + folder.path("/ready") + "; cat > " +
                                           folder.path("/typed"))});
    X11Neighbour neighbour;
    neighbour.movePointer(50, 50);
    ASSERT_TRUE(spinUntil([&] { return folder.text("/ready") == "\n"; }));
    bool isDone = false;
    injector.type("Größe €5 😀\n", [&](bool) { isDone = true; });
    EXPECT_TRUE(spinUntil([&] { return isDone; }));
    EXPECT_TRUE(spinUntil([&] { return folder.text("/typed") == "Größe €5 😀\n"; }))
        << folder.text("/typed");
    terminal.kill();
    terminal.waitForFinished();
}

TEST(KeyInjector, saysWhyItPressesNoKeys) {
    QtMainQueue queue;
    EXPECT_TRUE(keyInjector(queue, {.hasX11 = true})->ability().available);
    const auto none = keyInjector(queue, {});
    EXPECT_EQ(none->ability(), Ability::missing("there is no display"));
    EXPECT_FALSE(none->paste(Chord::ordinary));
    std::optional<bool> isWhole;
    none->type("a", [&](bool whole) { isWhole = whole; });
    EXPECT_TRUE(spinUntil([&] { return isWhole.has_value(); }));
    EXPECT_EQ(isWhole, false);

    const BareDisplay bare({QStringLiteral("-extension"), QStringLiteral("XTEST")});
    X11KeyInjector injector(queue);
    EXPECT_EQ(injector.ability(),
              Ability::missing("this display lets no program press keys (it has no XTEST)"));
    EXPECT_FALSE(injector.paste(Chord::ordinary));
}

TEST(KeyInjector, outlivesItsDisplay) {
    QtMainQueue queue;
    BareDisplay bare;
    X11KeyInjector injector(queue);
    EXPECT_TRUE(injector.ability().available);
    std::optional<bool> isWhole;
    injector.type("a", [&](bool whole) { isWhole = whole; });
    bare.stop();
    EXPECT_TRUE(spinUntil([&] { return isWhole.has_value(); }));
    EXPECT_EQ(isWhole, false);
    EXPECT_FALSE(injector.ability().available);
    EXPECT_FALSE(injector.paste(Chord::ordinary));
}

} // namespace
} // namespace tessarine
