#include "launcherapp/panel/view/items/SpokenPart.h"

#include "launcherapp/panel/view/items/ItemView.h"

namespace tessarine {

SpokenPart::SpokenPart(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::NoFocus);
    installItemViewAccessibility();
    hide();
}

void SpokenPart::say(const QString& text) {
    if (text != accessibleName())
        setAccessibleName(text);
}

} // namespace tessarine
