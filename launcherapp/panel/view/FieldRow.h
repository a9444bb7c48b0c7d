#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <string>

namespace tessarine {

class QueryField;
class RowImages;
class SearchModel;
struct PanelStyle;

/// The panel's head: the field, a symbol that tells what is searched, and at the far end the name
/// of the mode that is on. The field keeps its place whatever the mode. Main thread only.
class FieldRow : public QWidget {
    Q_OBJECT

public:
    FieldRow(QWidget* parent, SearchModel& model, const PanelStyle& style, RowImages& images);

    QueryField& field() { return *field_; }

    void refresh();
    void restyle();

    /// Where the mode's name stands; empty for none. Among clippings a click on it opens the filter
    /// menu.
    QRect chipRectangle() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void place();
    void drawChip(QPainter& painter) const;

    SearchModel& model_;
    const PanelStyle& style_;
    RowImages& images_;
    QueryField* field_; ///< the widget tree owns it
    std::string symbol_;
    QString chip_;
};

} // namespace tessarine
