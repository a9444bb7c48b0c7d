#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <vector>

namespace tessarine {

/// A list that never has the keyboard: the field keeps it, and the current item is what its keys
/// act on. Screen readers see the items as children, and the current one as what has the user's
/// attention. Main thread only.
class ItemView : public QWidget {
    Q_OBJECT

public:
    enum class Role { list, menu };

    struct Item {
        QString name;
        bool isDestructive = false;
        bool isSeparator = false;
        bool isNote = false; ///< to be read, never current

        bool operator==(const Item&) const = default;
    };

    ItemView(QWidget* parent, Role role);
    ~ItemView() override;

    Role role() const { return role_; }

    /// Of all, those that are scrolled away included.
    virtual int itemCount() const = 0;
    virtual Item item(int index) const = 0;
    /// Empty for one that is scrolled away. In the widget's own coordinates.
    virtual QRect itemRectangle(int index) const = 0;
    /// -1 for none.
    virtual int currentItem() const = 0;
    /// As a click on it would.
    virtual void activate(int index) = 0;

    int itemAt(const QPoint& place) const; ///< -1 for none

    /// The widget whose keys move the current item; may be null.
    QWidget* controller() const { return controller_; }

    void setController(QWidget* controller) { controller_ = controller; }

protected:
    /// Tells screen readers when another item has become current, or the current one reads
    /// otherwise than before.
    void announceCurrent();

private:
    Role role_;
    QWidget* controller_ = nullptr;
    int announcedIndex_ = -1;
    Item announcedItem_;
};

/// Makes screen readers see item views and what is read beside them; once, before the first of them
/// is looked at.
void installItemViewAccessibility();

} // namespace tessarine
