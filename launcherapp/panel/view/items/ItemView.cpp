#include "launcherapp/panel/view/items/ItemView.h"

#include <QAccessible>

namespace tessarine {

ItemView::ItemView(QWidget* parent, Role role) : QWidget(parent), role_(role) {
    setFocusPolicy(Qt::NoFocus);
    installItemViewAccessibility();
}

ItemView::~ItemView() = default;

int ItemView::itemAt(const QPoint& place) const {
    for (int i = 0; i < itemCount(); ++i) {
        if (itemRectangle(i).contains(place))
            return i;
    }
    return -1;
}

void ItemView::announceCurrent() {
    if (!QAccessible::isActive())
        return;
    const int current = isVisible() ? currentItem() : -1;
    const auto item = current < 0 ? Item() : this->item(current);
    if (current == announcedIndex_ && item == announcedItem_)
        return;
    announcedIndex_ = current;
    announcedItem_ = item;
    if (current < 0)
        return;
    QAccessibleEvent descendant(this, QAccessible::ActiveDescendantChanged);
    descendant.setChild(current);
    QAccessible::updateAccessibility(&descendant);
    // Readers follow the focus of the tree they see, and there it is the item that has it, as in
    // every field with a list below it.
    QAccessibleEvent focus(this, QAccessible::Focus);
    focus.setChild(current);
    QAccessible::updateAccessibility(&focus);
}

} // namespace tessarine
