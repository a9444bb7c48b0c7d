#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

namespace tessarine {

/// A keyboard of GNOME's compositor, which it gives to whoever shares its screen with somebody far
/// away: it has none of its own here, and takes none that a Wayland client brings. Lasts as long as
/// this object. Keys are those of the kernel ("linux/input-event-codes.h"), laid out as in the
/// United States. Main thread only.
class MutterKeyboard {
public:
    /// Waits until the compositor has it. Throws std::runtime_error where it gives none.
    MutterKeyboard();
    ~MutterKeyboard();
    MutterKeyboard(const MutterKeyboard&) = delete;
    MutterKeyboard& operator=(const MutterKeyboard&) = delete;

    /// Down in this order, and up in the other; returns when the compositor has them.
    void press(std::initializer_list<std::uint32_t> keys);
    /// Lower-case letters, digits, spaces and line ends.
    void type(const std::string& text);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
