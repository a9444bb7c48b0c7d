#include "launcherapp/platform/MainQueue.h"

#include <cstdio>
#include <cstdlib>

namespace tessarine {

void requireMainThread(const MainQueue& queue) {
    if (queue.isMainThread())
        return;
    std::fputs("tessarine: a service was changed off the main thread\n", stderr);
    std::abort();
}

} // namespace tessarine
