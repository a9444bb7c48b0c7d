#pragma once

#include "launcherapp/panel/PanelPlacement.h"
#include "launcherapp/panel/view/CommandKey.h"
#include "launcherapp/panel/view/Footer.h"
#include "launcherapp/panel/view/PanelViewServices.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/panel/view/rows/RowImages.h"

#include <QImage>
#include <QPointer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>

namespace tessarine {

class ActionsMenuView;
class FieldRow;
class FilterMenuView;
class ModeParts;
class QueryField;
class RowList;
class ShortcutSheet;

/// The tree of the panel's parts, drawn from the model: field row, list, footer, and what lies over
/// them. It shows and never decides. Main thread only.
class PanelRoot : public QWidget {
    Q_OBJECT

public:
    /// Where a part that comes with a mode is put.
    enum class Slot {
        aboveList,  ///< the strip of currencies, the head of a person's card
        besideList, ///< a clipping's preview, on the side that the settings say
        belowList,  ///< the same, below
    };

    /// How the panel meets the desktop behind it.
    enum class Blending {
        mixed, ///< rounded, and letting a little of it through
        opaque,
    };

    PanelRoot(QWidget* parent, PanelViewServices services);
    ~PanelRoot() override;

    /// `heights` has changed.
    std::function<void()> heightChanged;

    QueryField& field();

    RowList& list() { return *list_; }

    Footer& footer() { return *footer_; }

    RowImages& images() { return images_; }

    ShortcutSheet& sheet() { return *sheet_; }

    const PanelStyle& style() const { return style_; }

    /// Takes over what the model has now.
    void refresh();
    /// Takes over palette, text size and font.
    void restyle();

    void setBlending(Blending blending);
    /// Holds the text at one size, for a picture; nothing lets it follow the settings.
    void setTextScale(std::optional<TextScale> scale);
    /// Draws until all pictures are there that a screen of this density shows.
    void settle(double scale);
    void setCommandKey(CommandKey key);

    /// Where a clipping's preview is put.
    ClipPreviewPlacement previewPlacement() const;
    /// Holds the preview in one place, for a picture; nothing lets it follow the settings.
    void holdPreview(std::optional<ClipPreviewPlacement> placement);

    /// Puts a part into a slot, which owns nothing; null empties it, and what was in it is hidden.
    /// Its size hint counts.
    void setAccessory(Slot slot, QWidget* accessory);

    void showSheet();
    void hideSheet();
    bool isSheetShown() const;

    /// Heights of the parts, and of all of them.
    PanelPlacement::Heights heights() const;
    int wantedHeight() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// What the picture of the corners was drawn with.
    struct CornersOf {
        Color ground;
        Color border;
        int scale = 0;

        bool operator==(const CornersOf&) const = default;
    };

    int overlayHeight() const;
    int besideHeight() const;
    int accessoryHeight(Slot slot) const;
    QWidget* accessory(Slot slot) const;
    void takeOver();
    void place();
    void placeList(QRect room);
    void placeMenus();
    void drawGround(QPainter& painter, const QRectF& plate) const;
    void drawGroundByCorners(QPainter& painter, int scale);

    PanelViewServices services_;
    PanelStyle style_;
    RowImages images_;
    FieldRow* fieldRow_;
    RowList* list_;
    Footer* footer_;
    ActionsMenuView* actions_;
    FilterMenuView* filter_;
    ShortcutSheet* sheet_;
    std::unique_ptr<ModeParts> modeParts_;
    std::array<QPointer<QWidget>, 3> accessories_;
    Blending blending_ = Blending::mixed;
    std::optional<TextScale> heldTextScale_;
    std::optional<ClipPreviewPlacement> heldPlacement_;
    PanelPlacement::Heights toldHeights_;
    QImage corners_; ///< all four of a plate without edges; none until it is drawn
    CornersOf cornersOf_;
};

} // namespace tessarine
