// What assistive programs see of an item view: the view as a list or menu, its items as children.

#include "launcherapp/panel/view/items/ItemView.h"
#include "launcherapp/panel/view/items/SpokenPart.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QPointer>
#include <memory>
#include <vector>

namespace tessarine {

namespace {

/// One item. The view's interface owns it and keeps it for as long as the view lives: another row
/// in the same place is the same item with another name.
class ItemAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    ItemAccessible(ItemView* view, int index) : view_(view), index_(index) {}

    bool isValid() const override { return view_ && index_ < view_->itemCount(); }

    QObject* object() const override { return nullptr; }

    QWindow* window() const override { return view_ ? view_->window()->windowHandle() : nullptr; }

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(view_);
    }

    QAccessibleInterface* child(int) const override { return nullptr; }

    QAccessibleInterface* childAt(int, int) const override { return nullptr; }

    int childCount() const override { return 0; }

    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? view_->item(index_).name : QString();
    }

    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        const auto rectangle = isValid() ? view_->itemRectangle(index_) : QRect();
        return rectangle.isEmpty()
                   ? QRect()
                   : QRect(view_->mapToGlobal(rectangle.topLeft()), rectangle.size());
    }

    QAccessible::Role role() const override {
        if (!view_ || view_->role() == ItemView::Role::list)
            return QAccessible::ListItem;
        const bool isSeparator = isValid() && view_->item(index_).isSeparator;
        return isSeparator ? QAccessible::Separator : QAccessible::MenuItem;
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const bool isCurrent = view_->currentItem() == index_;
        const auto item = view_->item(index_);
        const bool canBeCurrent = !item.isSeparator && !item.isNote;
        state.disabled = item.isNote;
        state.selectable = canBeCurrent;
        state.focusable = canBeCurrent;
        state.selected = isCurrent;
        state.focused = isCurrent && view_->isVisible();
        state.active = isCurrent;
        const bool isScrolledAway = view_->itemRectangle(index_).isEmpty();
        state.invisible = !view_->isVisible();
        state.offscreen = isScrolledAway;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& name) override {
        if (isValid() && name == pressAction())
            view_->activate(index_);
    }

    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QPointer<ItemView> view_;
    int index_;
};

class ItemViewAccessible : public QAccessibleWidget {
public:
    explicit ItemViewAccessible(ItemView* view)
        : QAccessibleWidget(view,
                            view->role() == ItemView::Role::menu ? QAccessible::PopupMenu
                                                                 : QAccessible::List),
          view_(view) {}

    ~ItemViewAccessible() override {
        for (const auto id : children_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return view_->itemCount(); }

    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= view_->itemCount())
            return nullptr;
        while (children_.size() <= static_cast<std::size_t>(index))
            children_.push_back(QAccessible::registerAccessibleInterface(
                new ItemAccessible(view_, static_cast<int>(children_.size()))));
        return QAccessible::accessibleInterface(children_[static_cast<std::size_t>(index)]);
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        for (std::size_t i = 0; i < children_.size(); ++i) {
            if (QAccessible::accessibleInterface(children_[i]) == child)
                return static_cast<int>(i);
        }
        return -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override {
        return child(view_->itemAt(view_->mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface* focusChild() const override { return child(view_->currentItem()); }

    QList<std::pair<QAccessibleInterface*, QAccessible::Relation>>
    relations(QAccessible::Relation match) const override {
        auto found = QAccessibleWidget::relations(match);
        if (view_->controller() && match.testFlag(QAccessible::Controlled))
            found.append({QAccessible::queryAccessibleInterface(view_->controller()),
                          QAccessible::Controlled});
        return found;
    }

private:
    ItemView* view_;
    mutable std::vector<QAccessible::Id> children_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
    if (auto* part = qobject_cast<SpokenPart*>(object))
        return new QAccessibleWidget(part, QAccessible::StaticText);
    auto* view = qobject_cast<ItemView*>(object);
    return view ? new ItemViewAccessible(view) : nullptr;
}

} // namespace

void installItemViewAccessibility() {
    static const bool installed = (QAccessible::installFactory(make), true);
    Q_UNUSED(installed);
}

} // namespace tessarine
