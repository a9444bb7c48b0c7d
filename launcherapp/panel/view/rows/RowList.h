#pragma once

#include "LauncherCore/query/RowCredit.h"
#include "launcherapp/panel/view/CommandKey.h"
#include "launcherapp/panel/view/items/ItemView.h"
#include "launcherapp/panel/view/rows/RowPainter.h"

#include <QPoint>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class CreditResolver;
class Prefs;
class RowImages;
class SearchModel;
struct PanelStyle;

/// The list of results: as many rows as the settings say, scrolled by whole rows so that the
/// selected one is always seen. Main thread only.
class RowList : public ItemView {
    Q_OBJECT

public:
    struct Sources {
        SearchModel& model;
        Prefs& prefs;
        CreditResolver& credits;
        RowImages& images;
        const PanelStyle& style;
    };

    RowList(QWidget* parent, Sources sources);

    /// The user asked for the menu of the selected row at this place of the list.
    std::function<void(const QPoint& place)> menuAsked;

    /// Takes over what the model has now.
    void refresh();
    void restyle();
    /// Shows the digits as keys to press, or not.
    void setCommandKey(CommandKey key);

    /// Draws the mark of a running application on the first one, whatever runs: for a picture.
    void markFirstApp();

    /// Height for the rows that are shown at a time; 0 for an empty list.
    int wantedHeight() const;

    /// Looks up now the credits that were asked for, which otherwise arrive after the paint.
    void lookUpCredits();

    int itemCount() const override;
    Item item(int index) const override;
    QRect itemRectangle(int index) const override;
    int currentItem() const override;
    void activate(int index) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    int rowsShown() const;
    int rowsThatFit() const;
    void keepSelectionSeen();
    void scrollTo(int first);
    void setHovered(int index);
    RowLook look(int index) const;
    const ResolvedCredit* credit(const ResultRow& row);
    void drawScrollMark(QPainter& painter) const;

    Sources sources_;
    std::vector<RowLines> lines_; ///< of each row, shaped when it is first drawn
    std::string listed_;          ///< the first row's id, to know another list by
    int first_ = 0;               ///< the topmost row that is shown
    int hovered_ = -1;
    std::string hoveredID_; ///< the id of that row
    int pressed_ = -1;
    std::optional<QPoint> pointer_;
    CommandKey commandKey_ = CommandKey::up;
    bool marksFirstApp_ = false;
    int wheelRemainder_ = 0; ///< eighths of a degree that made no row yet
    std::vector<RowCreditSpec> creditsWanted_;
};

} // namespace tessarine
