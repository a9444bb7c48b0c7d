#pragma once

#include "launcherapp/panel/view/items/ItemView.h"

#include <QString>
#include <string>
#include <vector>

namespace tessarine {

class RowImages;
struct PanelStyle;

/// A menu drawn inside the panel: a popup of the toolkit would take the keyboard away from the
/// field. It scrolls where the panel has no room for all of it. Main thread only.
class MenuView : public ItemView {
    Q_OBJECT

public:
    struct Entry {
        QString title; ///< empty for a separator
        QString detail;
        std::string symbol; ///< empty for none
        bool isDestructive = false;
        bool isChecked = false;
        bool isNote = false; ///< only to be read

        bool isSeparator() const { return title.isEmpty(); }

        bool canBeChosen() const { return !isSeparator() && !isNote; }
    };

    MenuView(QWidget* parent, const PanelStyle& style, RowImages& images);

    /// Room that all entries need.
    QSize wantedSize() const;

    int itemCount() const override;
    Item item(int index) const override;
    QRect itemRectangle(int index) const override;

protected:
    /// Shows other entries, or the same with another one current.
    void setEntries(std::vector<Entry> entries);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    int heightOf(const Entry& entry) const;
    int contentHeight() const;
    QRect place(int index) const; ///< scrolled, not cut off
    void keepCurrentSeen();
    void drawEntry(QPainter& painter, int index) const;

    const PanelStyle& style_;
    RowImages& images_;
    std::vector<Entry> entries_;
    int scrolled_ = 0; ///< pixels above the top
    int hovered_ = -1;
};

} // namespace tessarine
