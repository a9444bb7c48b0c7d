#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

struct xcb_connection_t;
struct xkb_keymap;

namespace tessarine {

/// What each key of an X11 display types at one moment, with the modifiers and in the layouts that
/// there are. A value; any thread, but for `read`.
class X11KeyMap {
public:
    using KeyCode = std::uint8_t;

    /// One key with what has to be held and in force for it to type something.
    struct Stroke {
        KeyCode key = 0;
        std::uint8_t layout = 0;   ///< its number among the display's
        std::vector<KeyCode> held; ///< modifier keys
    };

    /// Asks the display and waits for several answers. Nothing without the keyboard extension, or
    /// when the display is lost.
    static std::optional<X11KeyMap> read(xcb_connection_t* connection);

    /// How a character is typed, in the given layout if that has it, else in the first that has.
    /// Line feed is Return and a tab is Tab. Nothing for one that no layout has.
    std::optional<Stroke> stroke(char32_t character, std::uint8_t layout) const;

    /// The key for a chord with a Latin letter: of the given layout, else of any other, else where
    /// a US keyboard has it, given by its key code there: so programs find shortcuts on a layout of
    /// another script.
    KeyCode chordKey(char32_t letter, std::uint8_t layout, KeyCode usual) const;

    std::optional<KeyCode> shiftKey() const { return keyFor(shiftBit); }

    std::optional<KeyCode> controlKey() const { return keyFor(controlBit); }

    /// Keys that change what others mean while they are down.
    const std::set<KeyCode>& modifierKeys() const { return modifierKeys_; }

    /// Keys that turn something on or off, as Caps Lock; each press counts.
    const std::set<KeyCode>& lockKeys() const { return lockKeys_; }

    /// Key codes that mean nothing at all; first those of the longest runs of neighbours.
    const std::vector<KeyCode>& spareKeys() const { return spareKeys_; }

private:
    static constexpr unsigned shiftBit = 0; // of the protocol
    static constexpr unsigned controlBit = 2;

    std::optional<KeyCode> keyFor(unsigned modifierBit) const;
    void readModifiers(xcb_connection_t* connection, xkb_keymap* keymap);
    void readKey(xkb_keymap* keymap, KeyCode key);
    void readLayout(xkb_keymap* keymap, KeyCode key, std::uint8_t layout);
    std::optional<std::vector<KeyCode>> keysHolding(std::uint32_t modifiers) const;

    std::uint8_t layouts_ = 1;
    std::map<unsigned, KeyCode> holders_; ///< a key for each modifier bit that one holds down
    std::map<std::pair<char32_t, std::uint8_t>, Stroke> strokes_; ///< by character and layout
    std::set<KeyCode> modifierKeys_;
    std::set<KeyCode> lockKeys_;
    std::vector<KeyCode> spareKeys_;
};

} // namespace tessarine
