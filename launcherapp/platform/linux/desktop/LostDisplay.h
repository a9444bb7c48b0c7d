#pragma once

#include <functional>

namespace tessarine {

/// What the program does when its compositor dies. Qt says one line of it and ends the process on
/// the spot; this hears that line first. One at a time, main thread only.
class LostDisplay {
public:
    /// `save` is called once, in the last moments: it brings what waits to the disk and waits for
    /// no display. After it the program starts itself anew, with the words that it was started
    /// with, and waits for the compositor.
    LostDisplay(char** argv, std::function<void()> save);
    ~LostDisplay();
    LostDisplay(const LostDisplay&) = delete;
    LostDisplay& operator=(const LostDisplay&) = delete;

    /// For a program that has started itself anew: waits until the compositor is back, a minute at
    /// most. False when it isn't by then. Any other start goes on at once, with true. Before the
    /// application object.
    static bool awaitReturn();
};

} // namespace tessarine
