#include "launcherapp/platform/linux/input/PressTime.h"

#include <algorithm>
#include <chrono>

namespace tessarine {

Seconds pressedAt(std::uint32_t time, Seconds now) {
    using std::chrono::milliseconds;
    constexpr std::int32_t rounding = 10;      // its clock may be ahead by a tick
    constexpr std::int32_t longestWay = 30000; // an event that waited longer is no press any more
    const auto nowMilliseconds =
        static_cast<std::uint32_t>(std::chrono::floor<milliseconds>(now).count());
    const auto age = static_cast<std::int32_t>(nowMilliseconds - time);
    if (age < -rounding || age > longestWay)
        return now;
    return now - milliseconds(std::max(age, 0));
}

} // namespace tessarine
