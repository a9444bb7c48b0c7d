#include "launcherapp/platform/linux/wayland/windows/WindowChange.h"

#include <QMetaObject>
#include <utility>

namespace tessarine {

void WindowChange::tellSoon() {
    if (std::exchange(isTelling_, true))
        return;
    QMetaObject::invokeMethod(
        &loop_,
        [this] {
            isTelling_ = false;
            observers_.tell();
        },
        Qt::QueuedConnection);
}

} // namespace tessarine
