#pragma once

#include <cstdint>
#include <span>
#include <vector>

struct xcb_connection_t;

namespace tessarine {

/// The keys of an X11 display as its test extension presses them, for whatever window has the
/// keyboard. What is asked for is done in order; nothing waits but where it is said. Main thread
/// only.
class X11TestKeys {
public:
    using KeyCode = std::uint8_t;

    explicit X11TestKeys(xcb_connection_t* connection) : connection_(connection) {}

    /// Whether the display has this extension and the keyboard's. Waits for the answer.
    bool areThere() const;

    void press(KeyCode key) const;
    void release(KeyCode key) const;
    void tap(KeyCode key) const;

    /// The keys that are down. Waits for the answer.
    std::vector<KeyCode> down() const;

    /// What stays on without a key being held.
    struct Locks {
        std::uint8_t modifiers = 0; ///< bits of the protocol; Caps Lock and Num Lock among them
        std::uint8_t layout = 0;

        bool operator==(const Locks&) const = default;
    };

    /// Waits for the answer.
    Locks locks() const;

    /// Sticky keys that wait for the next key are let go of, too.
    void setLocks(Locks locks) const;

    /// What a key that means nothing is to type, whatever is held.
    struct Meaning {
        KeyCode key = 0;
        std::uint32_t symbol = 0;
    };

    /// Every program of the display reads the whole keyboard anew after it.
    void setMeanings(std::span<const Meaning> meanings) const; ///< in the order of the keys

    /// Takes away those that are still as they were set. Waits for the answers.
    void clearMeanings(std::span<const Meaning> meanings) const;

    /// Waits until the display has done it all; false when it is lost.
    bool finish() const;

private:
    xcb_connection_t* connection_;
};

} // namespace tessarine
