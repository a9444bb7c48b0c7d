#pragma once

#include <memory>

namespace tessarine {

/// A pointer of the seat, as if a mouse were plugged in, over the one or all outputs. Lasts as long
/// as this object. Main thread only.
class TestPointer {
public:
    /// The size of the whole desktop, in logical pixels. Throws std::runtime_error where the
    /// compositor takes no pointer.
    explicit TestPointer(int width = 1280, int height = 800);
    ~TestPointer();
    TestPointer(const TestPointer&) = delete;
    TestPointer& operator=(const TestPointer&) = delete;

    /// Each returns when the compositor has it.
    void move(int x, int y);
    void press();
    void release();
    void click(int x, int y);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
