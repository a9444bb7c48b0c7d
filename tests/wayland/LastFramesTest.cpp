#include "launcherapp/platform/linux/desktop/LastFrames.h"

#include "tests/linux/EventLoop.h"

#include <gtest/gtest.h>
#include <wayland-client.h>

#include <QApplication>
#include <QThread>
#include <QWidget>
#include <atomic>
#include <chrono>
#include <dlfcn.h>
#include <semaphore>
#include <thread>

namespace {

/// Qt's thread ends the object of a frame in less than a microsecond. Here it waits for the main
/// thread to hide the window, and takes as long from then on.
constexpr std::chrono::milliseconds endTakes{1};
std::atomic<bool> isToWait;
std::atomic<bool> isEnding;
std::binary_semaphore hides{0};

} // namespace

/// In the place of libwayland's own for the whole program, Qt's libraries included.
extern "C" void wl_proxy_destroy(wl_proxy* proxy) {
    static auto* const real =
        reinterpret_cast<decltype(&wl_proxy_destroy)>(::dlsym(RTLD_NEXT, "wl_proxy_destroy"));
    if (!isToWait || QThread::currentThread() == qApp->thread() || !isToWait.exchange(false))
        return real(proxy);
    isEnding = true;
    hides.try_acquire_for(std::chrono::seconds(10));
    std::this_thread::sleep_for(endTakes);
    real(proxy);
    isEnding = false;
}

namespace tessarine {
namespace {

TEST(LastFrames, aWindowWaitsForTheThreadThatHearsOfItsLastFrame) {
    QWidget widget;
    isToWait = true;
    widget.show();
    ASSERT_TRUE(spinUntil([] { return isEnding.load(); })) << "no frame was drawn";
    hides.release();
    widget.hide();
    EXPECT_FALSE(isEnding);
}

/// Its first frame may not be told yet, or never.
TEST(LastFrames, aWindowThatGoesAtOnceIsNotHeldUpForLong) {
    QWidget widget;
    for (int i = 0; i < 20; ++i) {
        widget.show();
        spinFor(i);
        const auto begun = std::chrono::steady_clock::now();
        widget.hide();
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(250));
    }
}

} // namespace
} // namespace tessarine
