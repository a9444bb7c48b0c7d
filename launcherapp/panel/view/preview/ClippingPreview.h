#pragma once

#include "launcherapp/panel/view/drawing/FittedPicture.h"
#include "launcherapp/panel/view/items/SpokenPart.h"
#include "launcherapp/panel/view/rows/TextLine.h"
#include "launcherapp/query/RowPreview.h"
#include "launcherapp/shell/Prefs.h"

#include <QString>
#include <vector>

namespace tessarine {

class RowImages;
struct PanelStyle;

/// The selected clipping, larger than its row: its text with its lines, its picture, or the files
/// that it names; and below, what is known of it. Main thread only.
class ClippingPreview : public SpokenPart {
    Q_OBJECT

public:
    ClippingPreview(QWidget* parent, const PanelStyle& style, RowImages& images);

    void setPreview(RowPreview preview);
    /// Which edge parts it from the list.
    void setPlacement(ClipPreviewPlacement placement);

    /// As much as is wanted below the list.
    QSize sizeHint() const override;
    /// Beside the list it is as high as that, and no lower than this.
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect drawFacts(QPainter& painter, QRect place);
    void drawText(QPainter& painter, const RowPreview::Text& text, const QRect& place);
    void drawPicture(QPainter& painter, const RowPreview::Picture& picture, const QRect& place);
    void drawFiles(QPainter& painter, const RowPreview::Files& files, const QRect& place);
    void drawEdge(QPainter& painter) const;

    const PanelStyle& style_;
    RowImages& images_;
    RowPreview preview_;
    ClipPreviewPlacement placement_ = ClipPreviewPlacement::right;
    FittedPicture picture_;
    QString text_; ///< harmless, its lines kept
    std::vector<TextLine> files_;
    std::vector<TextLine> facts_;
};

} // namespace tessarine
