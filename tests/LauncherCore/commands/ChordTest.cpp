#include "LauncherCore/commands/Chord.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(Chord, everySpellingOfAChordHasOneTextAndOneDisplay) {
    const struct {
        const char* written;
        const char* text;
        const char* display;
    } cases[] = {
        {"cmd+shift+c", "shift+cmd+c", "⇧⌘C"},
        {"⌘⇧c", "shift+cmd+c", "⇧⌘C"},
        {"Cmd - Shift - C", "shift+cmd+c", "⇧⌘C"},
        {"META+SHIFT+C", "shift+cmd+c", "⇧⌘C"},
        {"⌃⌥⇧⌘space", "ctrl+alt+shift+cmd+space", "⌃⌥⇧⌘Space"},
        {"control+option+shift+command+space", "ctrl+alt+shift+cmd+space", "⌃⌥⇧⌘Space"},
        {"cmd+cmd+c", "cmd+c", "⌘C"},
        {"alt+enter", "alt+return", "⌥Return"},
        {"alt+esc", "alt+escape", "⌥Escape"},
        {"ctrl+f13", "ctrl+f13", "⌃F13"},
        {"cmd++", "cmd+=", "⌘="},
        {"⌘++", "cmd+=", "⌘="},
        {"ctrl+alt+-", "ctrl+alt+-", "⌃⌥-"},
        {"cmd+-", "cmd+-", "⌘-"},
        {"c", "c", "C"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.written);
        const auto chord = Chord::parse(each.written);
        ASSERT_TRUE(chord);
        EXPECT_EQ(chord->text(), each.text);
        EXPECT_EQ(chord->display(), each.display);
        EXPECT_EQ(Chord::parse(chord->text()), chord);
        EXPECT_EQ(Chord::of(chord->binding()), chord);
    }
}

TEST(Chord, whatIsNoChordIsRefused) {
    const struct {
        const char* written;
        const char* reason;
    } cases[] = {
        {"", "nothing at all"},
        {"+", "a separator alone"},
        {"cmd+shift+", "no key"},
        {"⌘", "a modifier alone"},
        {"⌘-", "the separator is no key without one before it"},
        {"cmd--", "the minus key is written after a plus"},
        {"cmd+", "no key"},
        {"cmd", "no key of that name"},
        {"cmd+ö", "not on the table's keyboard"},
        {"hyper+c", "no such modifier"},
        {"c+cmd", "the key comes last"},
        {"cmd\t+c", "only blanks go between the words"},
    };

    for (const auto& each : cases)
        EXPECT_EQ(Chord::parse(each.written), std::nullopt) << each.written << ": " << each.reason;
}

TEST(Chord, eachModifierAndKeyHasItsOwnNumber) {
    const struct {
        const char* written;
        HotkeyBinding binding;
    } cases[] = {
        {"cmd+a", {.keyCode = 0, .carbonModifiers = 0x100}},
        {"shift+5", {.keyCode = 23, .carbonModifiers = 0x200}},
        {"alt+6", {.keyCode = 22, .carbonModifiers = 0x800}},
        {"ctrl+f5", {.keyCode = 96, .carbonModifiers = 0x1000}},
        {"ctrl+alt+up", {.keyCode = 126, .carbonModifiers = 0x1800}},
        {"cmd+f20", {.keyCode = 90, .carbonModifiers = 0x100}},
    };

    for (const auto& [written, binding] : cases)
        EXPECT_EQ(Chord::parse(written)->binding(), binding) << written;
}

TEST(Chord, aKeyWithoutANameStillHasAText) {
    const Chord chord{.keyCode = 200, .command = true};
    EXPECT_EQ(chord.text(), "cmd+key200");
    EXPECT_EQ(chord.display(), "⌘Key200");
    EXPECT_FALSE(Chord::parse(chord.text()));
    EXPECT_TRUE(chord.hasModifier());
    EXPECT_FALSE(Chord{.keyCode = 8}.hasModifier());
}

} // namespace
} // namespace tessarine
