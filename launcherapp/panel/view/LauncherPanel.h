#pragma once

#include <QWidget>

namespace tessarine {

/// The panel's top-level widget: frameless, translucent where the display can mix, with one view
/// tree inside. It decides nothing: keys go to its hooks, the controller places it. Main thread
/// only.
class LauncherPanel : public QWidget {
    Q_OBJECT

public:
    LauncherPanel();
    ~LauncherPanel() override;
};

} // namespace tessarine
