#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <vector>

namespace tessarine {

struct PanelStyle;

/// The list of the panel's chords, drawn from the table that they are matched with. Main thread
/// only.
class ShortcutSheet : public QWidget {
    Q_OBJECT

public:
    struct Line {
        QString label;
        std::vector<QStringList> chords; ///< any of them does it
    };

    ShortcutSheet(QWidget* parent, const PanelStyle& style);

    /// Chords that do the same stand on one line, the nine digits as one chord.
    static std::vector<Line> lines();

    QSize wantedSize() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void drawLine(QPainter& painter, const Line& line, const QRect& place) const;
    int chordsWidth(const Line& line) const;

    const PanelStyle& style_;
};

} // namespace tessarine
