#pragma once

#include "launcherapp/panel/appearance/ShownText.h"

#include <QFont>
#include <QPainter>
#include <QString>
#include <QTextLayout>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// One line of foreign text, shaped once and drawn many times, with the characters marked that the
/// query names. It stands alone, so no direction inside it reaches what is beside it.
class TextLine {
public:
    /// What decides how it looks but for its colours.
    struct Content {
        std::string text;
        std::string query; ///< what is marked; empty for nothing
        QFont font;
        qreal width = 0; ///< room that it has; more is cut by whole characters
        ShownText::Cut cut = ShownText::Cut::end;

        bool operator==(const Content&) const = default;
    };

    struct Colors {
        QColor text;
        QColor matched;
    };

    TextLine() = default;

    /// Shapes the text; nothing happens when it is the same as before.
    void set(Content content);

    /// Draws it beginning at the left of the rectangle, or at the right of one that is mirrored,
    /// and in the middle of its height.
    void draw(QPainter& painter,
              const QRectF& rectangle,
              Qt::LayoutDirection direction,
              const Colors& colors) const;

    qreal width() const { return width_; }

    bool isEmpty() const { return content_.text.empty(); }

private:
    struct Piece {
        int start = 0;
        int length = 0;
    };

    void shape(const std::string& text);
    std::string cut(const std::string& text) const;

    Content content_;
    std::unique_ptr<QTextLayout> layout_;
    std::vector<Piece> matched_; ///< in UTF-16 units of the layout's text
    qreal width_ = 0;
};

} // namespace tessarine
