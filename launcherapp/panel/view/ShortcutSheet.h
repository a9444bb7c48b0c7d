#pragma once

#include "launcherapp/query/PanelKeys.h"

#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>
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

    /// Whether there is something behind an action; while this is empty there is behind each.
    std::function<bool(PanelKeyAction action)> offers;

    /// Chords that do the same stand on one line, the nine digits as one chord.
    std::vector<Line> lines() const;

    QSize wantedSize() const;

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void drawLine(QPainter& painter, const Line& line, const QRect& place) const;
    int chordsWidth(const Line& line) const;

    const PanelStyle& style_;
};

} // namespace tessarine
