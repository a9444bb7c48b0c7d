#pragma once

#include "launcherapp/panel/view/PanelRoot.h"
#include "launcherapp/panel/view/PanelViewServices.h"
#include "launcherapp/panel/view/drawing/PanelShadow.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/query/PanelKeys.h"

#include <QWidget>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace tessarine {

class QueryField;
enum class CaretPlace;
enum class FieldCommand;

/// The panel's top-level widget: frameless, with one view tree inside. It decides nothing: keys go
/// to the model or to its hooks, the controller places it. Where the display mixes, it is larger
/// than the panel by its contents margins, which hold the shadow; where not, they are nothing. Main
/// thread only.
class LauncherPanel : public QWidget {
    Q_OBJECT

public:
    explicit LauncherPanel(PanelViewServices services);
    ~LauncherPanel() override;

    // What keys and clicks ask for. Each does what it says to the model until it is set otherwise;
    // those marked (none) do nothing until then.
    std::function<void()> onEscape;
    std::function<void()> onCommandReturn;
    std::function<void(int digit)> onDigit;
    std::function<void()> onPreview; ///< (none) while it is empty its keys are the field's
    std::function<void()> onActions; ///< opens the menu, or closes it
    /// The menu at a place of the panel: of a row, or of the panel itself where there is no row.
    std::function<void(Point at, std::optional<std::size_t> row)> onMenu;
    std::function<void()> onFavorite;
    std::function<void()> onCopy;      ///< and hides the panel when something was copied
    std::function<void()> onCopyToTop; ///< the same among clippings
    std::function<void()> onCopyField; ///< of a person's card
    std::function<void()> onSettings;
    std::function<void()> onShortcuts; ///< shows the sheet, or takes it away
    std::function<void()> onResignKey; ///< (none) a press beside the panel
    /// (none) `heights` has changed.
    std::function<void()> onHeights;

    QueryField& field() { return root_->field(); }

    PanelRoot& root() { return *root_; }

    /// Without mixing the panel is square and opaque and has no shadow.
    void setBlending(PanelRoot::Blending blending);

    /// Height of a row as it is drawn now.
    int rowHeight() const { return root_->style().rowHeight; }

    PanelPlacement::Heights heights() const { return root_->heights(); }

    /// Has read what the first keys would else wait for, soon and between other events.
    void warm();

    /// The panel itself, in this widget's coordinates.
    QRect panelRectangle() const { return contentsRect(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void setHooks();
    bool offers(PanelKeyAction action) const;
    bool chordPressed(const PanelChord& chord);
    void actOn(const PanelChord& chord);
    void askForMenu(const QPoint& place);
    bool perform(FieldCommand command, CaretPlace caret);
    void restyle();
    void preferenceChanged(std::string_view key);

    PanelViewServices services_;
    PanelRoot* root_; ///< the widget tree owns it
    PanelShadow shadow_;
    PanelRoot::Blending blending_ = PanelRoot::Blending::mixed;
    int usualCursorFlash_;
    Subscription modelChanges_;
    Subscription appearanceChanges_;
    Subscription desktopChanges_;
    Subscription prefsChanges_;
};

} // namespace tessarine
