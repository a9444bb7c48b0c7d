#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

namespace tessarine {

/// A keyboard of the seat, as if one were plugged in: a compositor without devices has none, and
/// gives no window the keys' focus until there is one. Lasts as long as this object. Keys are those
/// of the kernel ("linux/input-event-codes.h"), laid out as in the United States. Main thread only.
class TestKeyboard {
public:
    /// Waits until the compositor has it. Throws std::runtime_error where it takes none.
    explicit TestKeyboard(const std::string& layout = "us");
    ~TestKeyboard();
    TestKeyboard(const TestKeyboard&) = delete;
    TestKeyboard& operator=(const TestKeyboard&) = delete;

    /// Each returns when the compositor has it.
    void down(std::uint32_t key);
    void up(std::uint32_t key);
    /// Down in this order, and up in the other.
    void press(std::initializer_list<std::uint32_t> keys);
    /// Lower-case letters, digits, spaces and line ends.
    void type(const std::string& text);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
