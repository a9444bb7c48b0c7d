#pragma once

#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <fake-input.h>
#include <linux/input-event-codes.h>

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <thread>

namespace tessarine {

/// A keyboard and a pointer of KWin's seat, which it gives to programs whose desktop entries ask
/// for it, as with-kwin's does. Keys are those of the kernel ("linux/input-event-codes.h"). Main
/// thread only.
class KWinInput {
public:
    /// Throws std::runtime_error where KWin takes none.
    KWinInput() {
        input_ = connection_.registry().bindFirst<org_kde_kwin_fake_input>(
            org_kde_kwin_fake_input_interface, ORG_KDE_KWIN_FAKE_INPUT_KEYBOARD_KEY_SINCE_VERSION);
        if (!input_)
            throw std::runtime_error("KWin takes no input");
        org_kde_kwin_fake_input_authenticate(input_, "tests", "they type");
    }

    ~KWinInput() { org_kde_kwin_fake_input_destroy(input_); }

    KWinInput(const KWinInput&) = delete;
    KWinInput& operator=(const KWinInput&) = delete;

    /// Presses and lets go of each key, one after the other. Returns when KWin has them.
    void strike(std::initializer_list<std::uint32_t> keys) {
        for (const auto key : keys) {
            for (const std::uint32_t state : {1U, 0U})
                org_kde_kwin_fake_input_keyboard_key(input_, key, state);
        }
        connection_.roundTrip();
    }

    void click(int x, int y) {
        org_kde_kwin_fake_input_pointer_motion_absolute(
            input_, wl_fixed_from_int(x), wl_fixed_from_int(y));
        for (const std::uint32_t state : {1U, 0U})
            org_kde_kwin_fake_input_button(input_, BTN_LEFT, state);
        connection_.roundTrip();
    }

    /// With the button down, in steps of that many pixels.
    void drag(int x, int y, int steps, int right, int down) {
        for (int step = 0; step <= steps; ++step) {
            org_kde_kwin_fake_input_pointer_motion_absolute(
                input_, wl_fixed_from_int(x + step * right), wl_fixed_from_int(y + step * down));
            if (step == 0)
                org_kde_kwin_fake_input_button(input_, BTN_LEFT, 1);
            connection_.roundTrip();
            std::this_thread::sleep_for(std::chrono::milliseconds(20)); // a hand's pace
        }
        org_kde_kwin_fake_input_button(input_, BTN_LEFT, 0);
        connection_.roundTrip();
    }

    void tap(int x, int y) {
        constexpr std::uint32_t finger = 0;
        org_kde_kwin_fake_input_touch_down(
            input_, finger, wl_fixed_from_int(x), wl_fixed_from_int(y));
        org_kde_kwin_fake_input_touch_frame(input_);
        org_kde_kwin_fake_input_touch_up(input_, finger);
        org_kde_kwin_fake_input_touch_frame(input_);
        connection_.roundTrip();
    }

private:
    WaylandConnection connection_;
    org_kde_kwin_fake_input* input_ = nullptr;
};

} // namespace tessarine
