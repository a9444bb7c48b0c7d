#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"

#include <gtest/gtest.h>
#include <wayland-client.h>

#include <QCoreApplication>
#include <chrono>
#include <thread>

namespace tessarine {
namespace {

void noteDone(void* data, wl_callback*, std::uint32_t) {
    *static_cast<bool*>(data) = true;
}

constexpr wl_callback_listener doneListener{.done = noteDone};

/// Until a thread of Qt's has read something for the main one; false when it doesn't in time.
bool hasRead(wl_display* display) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (wl_display_prepare_read(display) == 0) {
        wl_display_cancel_read(display);
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

TEST(QtWayland, anAnswerThatQtHasReadIsNotWaitedForAnyMore) {
    const QtWayland connection;
    auto* const display = QtWayland::display();
    QCoreApplication::processEvents(); // Qt's thread reads from then on
    bool isDone = false;
    auto* const callback = wl_display_sync(display);
    wl_callback_add_listener(callback, &doneListener, &isDone);
    wl_display_flush(display);
    ASSERT_TRUE(hasRead(display));
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_TRUE(connection.waitUntil([&] { return isDone; }));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, QtWayland::patience / 2);
    wl_callback_destroy(callback);
}

} // namespace
} // namespace tessarine
