#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// What the program does when its compositor dies. Qt says one line of it and ends the process on
/// the spot; this hears that line first. One at a time, main thread only.
class LostDisplay {
public:
    /// `save` is called once, in the last moments, with what happened and what follows in words for
    /// the log: it brings what waits to the disk, waits for no display and returns. After it the
    /// program starts itself anew, with the words that it was started with, and waits for the
    /// compositor; after `mostDeaths` in a minute it ends instead.
    LostDisplay(char** argv, std::function<void(const std::string& words)> save);
    ~LostDisplay();
    LostDisplay(const LostDisplay&) = delete;
    LostDisplay& operator=(const LostDisplay&) = delete;

    /// For a program that has started itself anew: waits until the compositor is back, a minute at
    /// most. False when it isn't by then. Any other start goes on at once, with true. Before the
    /// application object.
    static bool awaitReturn();

    /// A compositor that ends us time and again, for what we ask of it perhaps, is left alone.
    static constexpr std::size_t mostDeaths = 3;

    /// The times of the deaths of the last minute with one `now`, by any clock that goes on;
    /// `earlier` is what this gave before, or empty. Nothing once there are `mostDeaths`.
    static std::optional<std::string> deaths(std::string_view earlier, std::chrono::seconds now);
};

} // namespace tessarine
