#pragma once

#include "launcherapp/panel/view/drawing/FittedPicture.h"
#include "launcherapp/panel/view/items/SpokenPart.h"
#include "launcherapp/panel/view/rows/TextLine.h"
#include "launcherapp/query/PersonCard.h"

namespace tessarine {

struct PanelStyle;

/// Above the fields of a person's card, whose they are: photo or first letter, name, and a line
/// that tells them apart. Main thread only.
class PersonHead : public SpokenPart {
    Q_OBJECT

public:
    PersonHead(QWidget* parent, const PanelStyle& style);

    void setPerson(const PersonCard& person);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawPhoto(QPainter& painter, const QRect& place);

    const PanelStyle& style_;
    PersonCard person_;
    FittedPicture photo_;
    TextLine name_;
    TextLine line_;
};

} // namespace tessarine
