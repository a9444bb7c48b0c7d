#include "launcherapp/panel/view/LauncherPanel.h"

namespace tessarine {

LauncherPanel::LauncherPanel()
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setAttribute(Qt::WA_TranslucentBackground);
}

LauncherPanel::~LauncherPanel() = default;

} // namespace tessarine
