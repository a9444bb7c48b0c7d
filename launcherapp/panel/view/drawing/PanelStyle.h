#pragma once

#include "launcherapp/panel/PanelPlacement.h"
#include "launcherapp/panel/appearance/Palette.h"
#include "launcherapp/shell/Prefs.h"

#include <QColor>
#include <QFont>

namespace tessarine {

/// What the panel is drawn with: one object, shared by all its parts and set anew as a whole when
/// the palette or the text's size changes. A value.
struct PanelStyle {
    // Logical pixels. The first ones make the height that the controller gives the window.
    static constexpr int fieldRowHeight = static_cast<int>(PanelPlacement::fieldHeight);
    static constexpr int headerHeight = static_cast<int>(PanelPlacement::headerHeight);
    static constexpr int separatorHeight = static_cast<int>(PanelPlacement::separatorHeight);
    static constexpr int listPadding = static_cast<int>(PanelPlacement::listPadding);
    static constexpr int footerHeight = static_cast<int>(PanelPlacement::footerHeight);

    static constexpr int edge = 18;      ///< from the panel's side to icons and texts
    static constexpr int iconSide = 30;  ///< of the slot that a row's picture stands in
    static constexpr int textStart = 62; ///< where the field's text and the rows' titles begin
    static constexpr qreal cornerRadius = 14;
    static constexpr qreal rowRadius = 9;
    static constexpr qreal menuRadius = 11;

    PanelStyle() = default;

    /// `desktopFont` is the one that the desktop gives its programs; its size is not used.
    PanelStyle(const Palette& palette, TextScale scale, const QFont& desktopFont);

    Palette palette;
    QFont field;
    QFont title;
    QFont answer;  ///< of a computed answer's row
    QFont heading; ///< the name over a person's card
    QFont subtitle;
    QFont small; ///< credits, digits, footers
    int rowHeight = 0;
    int menuItemHeight = 0;
};

inline QColor toQt(Color color) {
    return {color.red, color.green, color.blue, color.alpha};
}

} // namespace tessarine
