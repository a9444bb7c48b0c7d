#include "launcherapp/platform/linux/wayland/windows/ActiveChange.h"

#include <QMetaObject>
#include <utility>

namespace tessarine {

void ActiveChange::tellSoon() {
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
