#pragma once

#include <QSocketNotifier>
#include <memory>

namespace tessarine {

/// Ends a notifier that may be the one that calls: it goes when that is over. Its socket may be
/// closed already, which would wake the loop for ever. Nothing happens for null.
inline void retire(std::unique_ptr<QSocketNotifier> notifier) {
    if (!notifier)
        return;
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
}

} // namespace tessarine
