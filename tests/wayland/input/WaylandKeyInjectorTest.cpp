#include "launcherapp/platform/linux/input/WaylandKeyInjector.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/input/SessionKeyInjector.h"
#include "launcherapp/platform/linux/input/typing/TextKeymap.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/wayland/CompositorOfItsOwn.h"
#include "tests/wayland/TestKeyboard.h"
#include "tests/wayland/input/ForeignField.h"
#include "tests/wayland/standin/StandInKeyboards.h"

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

#include <csignal>

namespace tessarine {
namespace {

using Chord = KeyInjector::PasteChord;
using Kind = ForeignField::Kind;
using testing::ElementsAre;
using testing::HasSubstr;

class WaylandKeyInjectorTest : public testing::Test {
protected:
    static void copy(const QString& text) {
        QProcess program;
        program.setStandardOutputFile(QProcess::nullDevice());
        program.setStandardErrorFile(QProcess::nullDevice());
        program.start(QStringLiteral("wl-copy"), {QStringLiteral("--"), text});
        ASSERT_TRUE(program.waitForFinished());
    }

    /// Types a text, and waits until all keys are sent.
    void typeWhole(const std::string& text) {
        std::optional<bool> isWhole;
        injector.type(text, [&](bool whole) { isWhole = whole; });
        EXPECT_FALSE(isWhole); // never inside the call
        EXPECT_TRUE(spinUntil([&] { return isWhole.has_value(); }));
        EXPECT_EQ(isWhole, true);
    }

    QtMainQueue queue;
    TestKeyboard hands; ///< without it nothing has the focus
    WaylandKeyInjector injector{queue};
};

TEST_F(WaylandKeyInjectorTest, pastesTwiceInARowAndLeavesTheUsersKeysAsTheyWere) {
    const struct {
        Kind kind;
        Chord chord;
        std::vector<std::uint32_t> held;
        const char* reason;
    } cases[] = {
        {Kind::gtk, Chord::ordinary, {}, "a field"},
        {Kind::terminal, Chord::terminal, {}, "a terminal"},
        {Kind::gtk, Chord::ordinary, {KEY_LEFTCTRL}, "the chord's own modifier is held"},
        {Kind::gtk, Chord::ordinary, {KEY_LEFTSHIFT, KEY_LEFTALT}, "another chord's are held"},
        {Kind::terminal, Chord::terminal, {KEY_LEFTCTRL}, "and in a terminal"},
    };

    for (const auto& [kind, chord, held, reason] : cases) {
        SCOPED_TRACE(reason);
        const ForeignField field(kind);
        copy(QStringLiteral("Grüße\n"));
        for (const auto key : held)
            hands.down(key);
        EXPECT_TRUE(injector.paste(chord));
        EXPECT_EQ(field.becomes("Grüße\n"), "Grüße\n");
        for (const auto key : held)
            hands.up(key);
        EXPECT_TRUE(injector.paste(chord));
        EXPECT_EQ(field.becomes("Grüße\nGrüße\n"), "Grüße\nGrüße\n");
        hands.type("vw 12\n");
        EXPECT_EQ(field.becomes("Grüße\nGrüße\nvw 12\n"), "Grüße\nGrüße\nvw 12\n");
    }
}

TEST_F(WaylandKeyInjectorTest, aSecondPasteLeavesTheFirstAlone) {
    for (const auto kind : {Kind::gtk, Kind::terminal}) {
        const ForeignField field(kind);
        const auto chord = kind == Kind::terminal ? Chord::terminal : Chord::ordinary;
        copy(QStringLiteral("once\n"));
        EXPECT_TRUE(injector.paste(chord));
        EXPECT_TRUE(injector.paste(chord));
        // A window that is still at the first may drop the second, but not both.
        EXPECT_TRUE(spinUntil([&] { return field.text().starts_with("once\n"); }));
    }
}

TEST_F(WaylandKeyInjectorTest, pastesWhereTheUsersLayoutHasNoV) {
    TestKeyboard russian("ru");
    const ForeignField field(Kind::gtk);
    russian.press({KEY_V});
    EXPECT_EQ(field.becomes("м"), "м");
    copy(QStringLiteral("pasted"));
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    EXPECT_EQ(field.becomes("мpasted"), "мpasted");
    russian.press({KEY_V});
    EXPECT_EQ(field.becomes("мpastedм"), "мpastedм");
}

TEST_F(WaylandKeyInjectorTest, typesAnyCharacter) {
    std::string strangers;
    for (char32_t character = 0x4e00; character < 0x4e00 + 300; ++character)
        strangers += QString::fromUcs4(&character, 1).toStdString();

    const struct {
        std::string text;
        const char* reason;
    } cases[] = {
        {"Straight, \"quoted\" {text} ~42 | \\n\n\tnext\n", "keys with and without Shift"},
        {"Größe €5 😀 ^ ´ `\n", "beyond the plane of most, and what are dead keys elsewhere"},
        {"Привет, Αθήνα, שלום, 👩‍👩‍👧 ❤️\n",
         "many scripts, and joined characters"},
        {strangers + "\n", "more than a keyboard has keys"},
        {std::string(1000, 'x') + "\n", "long"},
    };

    for (const auto kind : {Kind::gtk, Kind::terminal}) {
        for (const auto& [text, reason] : cases) {
            SCOPED_TRACE(reason);
            const ForeignField field(kind);
            typeWhole(text);
            EXPECT_EQ(field.becomes(text), text);
            hands.type("ok 1\n");
            EXPECT_EQ(field.becomes(text + "ok 1\n"), text + "ok 1\n");
        }
    }
}

TEST_F(WaylandKeyInjectorTest, typesOneTextAfterTheOtherAndLeavesOutWhatSteers) {
    const ForeignField field(Kind::gtk);
    std::vector<bool> done;
    hands.down(KEY_LEFTCTRL); // would make chords of it
    injector.type("a\r\nb\rc\a\x1b[0m\x7f", [&](bool whole) { done.push_back(whole); });
    injector.type(std::string(WaylandKeyInjector::longestText + 1, 'x'),
                  [&](bool whole) { done.push_back(whole); });
    injector.type("!", [&](bool whole) { done.push_back(whole); });
    injector.type("", [&](bool whole) { done.push_back(whole); });
    EXPECT_TRUE(spinUntil([&] { return done.size() == 4; }));
    EXPECT_THAT(done, ElementsAre(true, false, true, true));
    EXPECT_EQ(field.becomes("a\nb\nc[0m!"), "a\nb\nc[0m!");
    hands.up(KEY_LEFTCTRL);
}

TEST_F(WaylandKeyInjectorTest, endsInTheMiddleOfAText) {
    const ForeignField field(Kind::gtk);
    auto brief = std::make_unique<WaylandKeyInjector>(queue);
    brief->type(std::string(5000, 'x'), [](bool) { ADD_FAILURE() << "it has ended"; });
    ASSERT_TRUE(spinUntil([&] { return !field.text().empty(); }));
    brief.reset();
    hands.type("z");
    EXPECT_TRUE(spinUntil([&] { return field.text().ends_with('z'); }));
}

TEST_F(WaylandKeyInjectorTest, whatWasNotSentIsNotSentLater) {
    const ForeignField field(Kind::gtk);
    copy(QStringLiteral("lost"));
    EXPECT_TRUE(injector.paste(Chord::ordinary)); // plugged in, so that nothing is in the way
    ASSERT_EQ(field.becomes("lost"), "lost");
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    EXPECT_FALSE(injector.paste(Chord::ordinary));
    std::optional<bool> isWhole;
    injector.type("late", [&](bool whole) { isWhole = whole; });
    EXPECT_TRUE(spinUntil([&] { return isWhole.has_value(); }));
    EXPECT_EQ(isWhole, false);
    ::kill(process, SIGCONT);
    ASSERT_TRUE(spinUntil([&] { return injector.ability().available; }));
    hands.type("z");
    EXPECT_EQ(field.becomes("lostz"), "lostz");
    copy(QStringLiteral("end")); // a paste that came late has arrived by now
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    EXPECT_EQ(field.becomes("lostzend"), "lostzend");
}

TEST(WaylandKeyInjectorCompositor, oneThatStandsStillOrDiesEndsEverything) {
    QtMainQueue queue;
    CompositorOfItsOwn compositor;
    const auto injector = keyInjector(queue, {.hasX11 = true, .hasWayland = true});
    ASSERT_EQ(injector->ability(), Ability{});
    compositor.stop();
    const auto begun = queue.uptime();
    EXPECT_FALSE(injector->paste(Chord::ordinary));
    EXPECT_LT((queue.uptime() - begun).count(), 2);
    compositor.goOn();
    ASSERT_TRUE(spinUntil([&] { return injector->ability().available; }));
    std::optional<bool> isWhole;
    injector->type("a", [&](bool whole) { isWhole = whole; });
    compositor.kill();
    ASSERT_TRUE(spinUntil([&] { return isWhole && !injector->ability().available; }));
    EXPECT_EQ(isWhole, false);
    EXPECT_EQ(injector->ability(), Ability::missing("the Wayland display is gone"));
    EXPECT_FALSE(injector->paste(Chord::ordinary));
}

TEST(WaylandKeyInjectorCompositor, aSeatThatGoesTakesTheKeyboardAlongAndOneThatComesHasOne) {
    QtMainQueue queue;
    StandInCompositor compositor;
    const StandInKeyboards keyboards(compositor);
    WaylandKeyInjector injector(queue);
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    const auto v = "press " + std::to_string(KEY_V);
    const std::vector<std::string> pasted{"plug in", "press " + std::to_string(KEY_LEFTCTRL), v};
    EXPECT_EQ(compositor.heard(), pasted);

    compositor.removeSeat();
    EXPECT_TRUE(spinUntil([&] { return compositor.heard().back() == "unplug"; })) << "at once";
    EXPECT_THAT(injector.ability().reason, HasSubstr("no seat"));
    EXPECT_FALSE(injector.paste(Chord::ordinary));
    std::optional<bool> isWhole;
    injector.type("a", [&](bool whole) { isWhole = whole; });
    EXPECT_TRUE(spinUntil([&] { return isWhole.has_value(); }));
    EXPECT_EQ(isWhole, false);
    EXPECT_EQ(compositor.heard().back(), "unplug");

    compositor.addSeat();
    EXPECT_TRUE(spinUntil([&] { return injector.ability().available; }));
    EXPECT_TRUE(injector.paste(Chord::ordinary));
    EXPECT_EQ(compositor.heard().back(), v);
}

TEST(TextKeymap, givesEachCharacterAKeyAsFarAsTheyGo) {
    std::u32string text = U"a \n\ta";
    for (char32_t character = 0x4e00; text.size() < 100; ++character)
        text += character;
    const auto keymap = TextKeymap::forBeginning(text);
    ASSERT_TRUE(keymap);
    EXPECT_EQ(keymap->length(), 5 + TextKeymap::mostCharacters - 1);
    std::set<std::uint32_t> keys;
    for (const auto character : text.substr(0, keymap->length()))
        keys.insert(keymap->key(character));
    EXPECT_EQ(keys.size(), TextKeymap::mostCharacters + 3);
    EXPECT_EQ(keymap->key(U'\n'), KEY_ENTER);
}

} // namespace
} // namespace tessarine
