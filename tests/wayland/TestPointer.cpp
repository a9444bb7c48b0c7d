#include "tests/wayland/TestPointer.h"

#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <linux/input-event-codes.h>
#include <wayland-client.h>
#include <wlr-virtual-pointer-unstable-v1.h>

#include <cstdint>
#include <stdexcept>

namespace tessarine {

struct TestPointer::Parts {
    Parts(int desktopWidth, int desktopHeight)
        : width(static_cast<std::uint32_t>(desktopWidth)),
          height(static_cast<std::uint32_t>(desktopHeight)) {
        if (!connection.answers())
            throw std::runtime_error("no compositor answers");
        manager = connection.registry().bindFirst<zwlr_virtual_pointer_manager_v1>(
            zwlr_virtual_pointer_manager_v1_interface, 1);
        if (!manager)
            throw std::runtime_error("the compositor takes no pointer");
        pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, nullptr);
        connection.roundTrip();
    }

    ~Parts() {
        if (pointer)
            zwlr_virtual_pointer_v1_destroy(pointer);
        if (manager)
            zwlr_virtual_pointer_manager_v1_destroy(manager);
    }

    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    void finish() {
        zwlr_virtual_pointer_v1_frame(pointer);
        connection.roundTrip();
    }

    void button(std::uint32_t state) {
        zwlr_virtual_pointer_v1_button(pointer, ++time, BTN_LEFT, state);
        finish();
    }

    WaylandConnection connection;
    zwlr_virtual_pointer_manager_v1* manager = nullptr;
    zwlr_virtual_pointer_v1* pointer = nullptr;
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t time = 0;
};

TestPointer::TestPointer(int width, int height) : parts_(std::make_unique<Parts>(width, height)) {}

TestPointer::~TestPointer() = default;

void TestPointer::move(int x, int y) {
    zwlr_virtual_pointer_v1_motion_absolute(parts_->pointer,
                                            ++parts_->time,
                                            static_cast<std::uint32_t>(x),
                                            static_cast<std::uint32_t>(y),
                                            parts_->width,
                                            parts_->height);
    parts_->finish();
}

void TestPointer::press() {
    parts_->button(WL_POINTER_BUTTON_STATE_PRESSED);
}

void TestPointer::release() {
    parts_->button(WL_POINTER_BUTTON_STATE_RELEASED);
}

void TestPointer::click(int x, int y) {
    move(x, y);
    press();
    release();
}

} // namespace tessarine
