#pragma once

#include <QObject>

class QCoreApplication;

namespace tessarine {

/// Lets no window of Qt's go from a Wayland compositor while the news that its last frame is drawn
/// is under way. Qt hears that on a thread of its own and forgets the window on the main one; up to
/// Qt 6.4 both may then end one object at the same time, which ends the program. A window that
/// waits for no frame goes at once, any other after a round trip to the compositor. While this
/// lives; main thread only.
class LastFrames : public QObject {
public:
    /// For the windows that are made from now on. `application` is one on Wayland, and outlives
    /// this.
    explicit LastFrames(QCoreApplication& application);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void visibleChanged(bool isVisible);
};

} // namespace tessarine
