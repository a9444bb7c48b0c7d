#pragma once

#include "launcherapp/panel/view/menus/MenuView.h"

namespace tessarine {

class SearchModel;

/// The actions of the selected row, or of the panel; open while the model has any.
class ActionsMenuView : public MenuView {
    Q_OBJECT

public:
    ActionsMenuView(QWidget* parent,
                    SearchModel& model,
                    const PanelStyle& style,
                    RowImages& images);

    void refresh();

    int currentItem() const override;
    void activate(int index) override;

private:
    SearchModel& model_;
};

/// What the clipboard's list can be narrowed to.
class FilterMenuView : public MenuView {
    Q_OBJECT

public:
    FilterMenuView(QWidget* parent, SearchModel& model, const PanelStyle& style, RowImages& images);

    void refresh();

    int currentItem() const override;
    void activate(int index) override;

private:
    SearchModel& model_;
};

} // namespace tessarine
