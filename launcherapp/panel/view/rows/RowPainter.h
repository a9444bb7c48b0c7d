#pragma once

#include "launcherapp/panel/view/drawing/FittedPicture.h"
#include "launcherapp/panel/view/rows/TextLine.h"
#include "launcherapp/query/ResultRow.h"

#include <QPainter>
#include <QRect>
#include <Qt>
#include <string>

namespace tessarine {

class RowImages;
struct PanelStyle;
struct ResolvedCredit;

/// How one row stands in the list at the moment.
struct RowLook {
    QRect rectangle; ///< of the whole row
    Qt::LayoutDirection direction = Qt::LeftToRight;
    bool isRunning = false;
    bool isSelected = false;
    bool isHovered = false;
    int digit = 0;             ///< 1 to 9; 0 for none
    bool isDigitAsked = false; ///< Ctrl is held, so the digit is a key to press
};

/// The shaped texts and the fitted picture of a row, kept from one paint to the next.
struct RowLines {
    FittedPicture picture;
    TextLine title;
    TextLine subtitle;
    TextLine credit;
};

/// Draws rows. Main thread only; the style and the pictures outlive it.
class RowPainter {
public:
    RowPainter(const PanelStyle& style, RowImages& images) : style_(style), images_(images) {}

    /// `credit` is null for a row without one, and for one that is not looked up yet.
    void draw(QPainter& painter,
              const ResultRow& row,
              const ResolvedCredit* credit,
              const std::string& query,
              const RowLook& look,
              RowLines& lines) const;

private:
    void drawBackground(QPainter& painter, const RowLook& look) const;
    void drawIcon(QPainter& painter,
                  const ResultRow& row,
                  const RowLook& look,
                  const QRect& slot,
                  FittedPicture& picture) const;
    void drawTile(QPainter& painter, const RowLook& look, const QRect& slot) const;
    void drawMark(QPainter& painter,
                  const std::string& glyph,
                  const RowLook& look,
                  const QRect& slot) const;
    void drawMonogram(QPainter& painter, const ResultRow& row, const QRect& slot) const;
    void drawSymbolTile(QPainter& painter,
                        const ResultRow& row,
                        const RowLook& look,
                        const QRect& slot) const;
    void drawDigit(QPainter& painter, const RowLook& look) const;
    void drawCreditIcon(QPainter& painter,
                        const ResolvedCredit& credit,
                        const QColor& color,
                        const QRect& slot) const;
    /// The logical width that it took.
    int drawCredit(QPainter& painter,
                   const ResultRow& row,
                   const ResolvedCredit* credit,
                   const RowLook& look,
                   TextLine& line) const;
    void drawTexts(QPainter& painter,
                   const ResultRow& row,
                   const std::string& query,
                   const RowLook& look,
                   int room,
                   RowLines& lines) const;

    const PanelStyle& style_;
    RowImages& images_;
};

} // namespace tessarine
