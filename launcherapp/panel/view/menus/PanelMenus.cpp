#include "launcherapp/panel/view/menus/PanelMenus.h"

#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/query/SearchModel.h"

#include <QLocale>
#include <utility>

namespace tessarine {

ActionsMenuView::ActionsMenuView(QWidget* parent,
                                 SearchModel& model,
                                 const PanelStyle& style,
                                 RowImages& images)
    : MenuView(parent, style, images), model_(model) {
    setAccessibleName(QStringLiteral("Actions"));
}

void ActionsMenuView::refresh() {
    setVisible(!model_.actions().empty());
    std::vector<Entry> entries;
    for (const auto& action : model_.actions()) {
        if (action.isSeparator())
            entries.emplace_back();
        else
            entries.push_back({.title = Drawing::harmless(action.title),
                               .detail = Drawing::harmless(action.shortcut),
                               .symbol = action.symbol.value_or(""),
                               .isDestructive = action.destructive,
                               .isNote = action.isNote()});
    }
    setEntries(std::move(entries));
}

int ActionsMenuView::currentItem() const {
    return model_.actions().empty() ? -1 : static_cast<int>(model_.actionSelection());
}

void ActionsMenuView::activate(int index) {
    model_.runAction(static_cast<std::size_t>(index), SearchModel::ActionDriver::click);
}

FilterMenuView::FilterMenuView(QWidget* parent,
                               SearchModel& model,
                               const PanelStyle& style,
                               RowImages& images)
    : MenuView(parent, style, images), model_(model) {
    setAccessibleName(QStringLiteral("Filter"));
}

void FilterMenuView::refresh() {
    setVisible(model_.filterMenuOpen());
    if (!model_.filterMenuOpen())
        return;
    const auto chosen = model_.clipFilter().value_or(std::string(FilterMenuItem::everything));
    const QLocale locale;
    std::vector<Entry> entries;
    for (const auto& item : model_.filterMenuItems())
        entries.push_back({.title = Drawing::harmless(item.title),
                           .detail = locale.toString(static_cast<qlonglong>(item.count)),
                           .isChecked = item.key == chosen});
    setEntries(std::move(entries));
}

int FilterMenuView::currentItem() const {
    return model_.filterMenuOpen() ? static_cast<int>(model_.filterMenuSelection()) : -1;
}

void FilterMenuView::activate(int index) {
    model_.commitFilterMenu(static_cast<std::size_t>(index));
}

} // namespace tessarine
